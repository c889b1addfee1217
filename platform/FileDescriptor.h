// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace kel {

/// Repeats a system call as long as a signal interrupts it; its result is below 0 for a failure.
template <class Call>
auto retrying(Call&& call) -> decltype(call())
{
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

/// Owns an open file descriptor, or none.
class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }

    // On Linux a close that a signal interrupts has closed all the same, and must not be repeated.
    void close() noexcept
    {
        if (isOpen())
            ::close(std::exchange(number_, -1));
    }

private:
    int number_ = -1;
};

} // namespace kel
