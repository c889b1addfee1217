// SPDX-License-Identifier: MIT
#include "store/StoreLock.h"

#include "store/StoreProblem.h"

#include <array>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>

namespace kel {

namespace {

constexpr mode_t kLockMode = 0660;

std::string contents(int file)
{
    std::array<char, 256> text{};
    const ssize_t count = ::pread(file, text.data(), text.size(), 0);
    return count > 0 ? std::string(text.data(), static_cast<std::size_t>(count)) : "another program";
}

} // namespace

StoreLock::StoreLock(const std::filesystem::path& store, const std::string& owner)
{
    const std::string name = store.string() + "-lock";
    file_ = FileDescriptor(retrying([&] { return ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kLockMode); }));
    if (!file_.isOpen())
        throw StoreProblem("The store " + store.string() + " cannot be written: " + name + ": " + std::strerror(errno) +
                           ". May this user write in its folder?");
    if (retrying([&] { return ::flock(file_.number(), LOCK_EX | LOCK_NB); }) != 0)
        throw StoreProblem("The store " + store.string() + " is in use by " + contents(file_.number()) +
                           ", and a store has one writer; end that one, or name another store.");
    // Who has it is a help for people alone; without it the lock is as good.
    const std::string text = owner + ", process " + std::to_string(::getpid());
    if (::ftruncate(file_.number(), 0) == 0) [[maybe_unused]]
        const ssize_t written = ::pwrite(file_.number(), text.data(), text.size(), 0);
}

} // namespace kel
