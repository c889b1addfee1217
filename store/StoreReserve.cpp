// SPDX-License-Identifier: MIT
#include "store/StoreReserve.h"

#include "store/StorePlace.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace kel {

namespace {

// More than a full log, which goes into the store first, and what the removal of a few sheets adds to it.
constexpr off_t kReserve = off_t{8} << 20;
constexpr mode_t kReserveMode = 0660;

/// The reserve's file, locked; none if it cannot be opened, or somebody else has it.
FileDescriptor locked(const std::filesystem::path& store, int flags) noexcept
{
    try {
        const std::string name = placeOf(store).string() + "-reserve";
        FileDescriptor file(retrying([&] { return ::open(name.c_str(), O_RDWR | O_CLOEXEC | flags, kReserveMode); }));
        if (file.isOpen() && retrying([&] { return ::flock(file.number(), LOCK_EX | LOCK_NB); }) == 0)
            return file;
    } catch (const std::exception&) { // a reserve is a help, and no more
    }
    return {};
}

bool isFilled(const FileDescriptor& file) noexcept
{
    struct stat status {};
    return ::fstat(file.number(), &status) == 0 && status.st_size >= kReserve;
}

/// A reserve does not fill the disk that it is to help with.
bool hasRoom(const FileDescriptor& file) noexcept
{
    struct statvfs disk {};
    return ::fstatvfs(file.number(), &disk) == 0 && disk.f_bavail >= 2 * kReserve / disk.f_frsize;
}

void fillUp(const FileDescriptor& file) noexcept
{
    if (!isFilled(file) && hasRoom(file) && ::posix_fallocate(file.number(), 0, kReserve) != 0)
        static_cast<void>(::ftruncate(file.number(), 0));
}

} // namespace

void makeReserve(const std::filesystem::path& store) noexcept
{
    if (const FileDescriptor file = locked(store, O_CREAT); file.isOpen())
        fillUp(file);
}

ReleasedReserve::ReleasedReserve(const std::filesystem::path& store) noexcept
{
    FileDescriptor file = locked(store, 0);
    if (file.isOpen() && isFilled(file) && ::ftruncate(file.number(), 0) == 0)
        file_ = std::move(file);
}

ReleasedReserve::~ReleasedReserve()
{
    if (file_.isOpen())
        fillUp(file_);
}

} // namespace kel
