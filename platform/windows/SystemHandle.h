// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <utility>

namespace kel {

/// A handle of the system that is closed at the end.
class SystemHandle {
public:
    SystemHandle() = default;
    explicit SystemHandle(HANDLE handle) noexcept : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    ~SystemHandle()
    {
        if (handle_)
            ::CloseHandle(handle_);
    }
    SystemHandle(SystemHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    SystemHandle& operator=(SystemHandle&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }

    [[nodiscard]] explicit operator bool() const noexcept { return handle_ != nullptr; }
    [[nodiscard]] HANDLE get() const noexcept { return handle_; }

private:
    HANDLE handle_ = nullptr;
};

} // namespace kel
