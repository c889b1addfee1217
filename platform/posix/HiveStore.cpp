// SPDX-License-Identifier: MIT
#include "platform/posix/HiveStore.h"

#include "platform/RegistryTransaction.h"
#include "platform/posix/HiveDatabase.h"
#include "types/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <time.h>
#include <utility>

namespace kel {

namespace {

// How often a file that another process removes is made again.
constexpr int kTries = 100;

/// A path as it is stored: without the empty names that doubled or outer backslashes would give.
std::string normalized(std::string_view subKey)
{
    std::string path;
    for (const std::string& name : split(subKey, '\\')) {
        if (name.empty())
            continue;
        if (!path.empty())
            path += '\\';
        path += name;
    }
    return path;
}

bool isTooDeep(const std::string& path)
{
    return std::count(path.begin(), path.end(), '\\') >= static_cast<std::ptrdiff_t>(kDeepestKey);
}

std::string timeStamp()
{
    const time_t now = ::time(nullptr);
    tm parts{};
    ::gmtime_r(&now, &parts);
    std::array<char, 32> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &parts);
    return std::string(text.data(), length);
}

} // namespace

HiveStore::HiveStore(HiveFile file) : file_(std::move(file)) {}

HiveStore::~HiveStore() = default;

/// Runs `work` on the open database. Where there is none, or it fails, the answer is `fallback`. Damage that shows sets
/// the file aside; a write then goes into a new one.
template <class Result, class Work>
Result HiveStore::withDatabase(bool create, Result fallback, Work&& work)
{
    for (int tries = 0; tries < 2; ++tries) {
        try {
            Result result = open(create) ? work(*database_) : fallback;
            if (database_ && database_->isFrozen())
                database_.reset();
            return result;
        } catch (const SqliteFailure& failure) {
            const bool aside = failure.isDamage() && setAside(failure.what());
            database_.reset();
            if (!aside || !create)
                return fallback;
        }
    }
    return fallback;
}

/// Whether the database is open and has tables. A file that has gone from its place, or that another has replaced, is
/// let go.
bool HiveStore::open(bool create)
{
    if (database_ && database_->hasMoved())
        database_.reset();
    for (int tries = 0; !database_; ++tries) {
        if (create && !createFile())
            return false;
        // While it is opened, nobody sets it aside.
        const FileDescriptor lock = lockFolder(LOCK_SH);
        opened_ = identity();
        if (opened_) {
            openFile(create);
            if (!database_->ready(create))
                return false;
            break;
        }
        if (!create || tries == kTries)
            return false;
    }
    if (!database_->ready(create))
        return false;
    if (std::exchange(beginsTogether_, false))
        database_->begin();
    return true;
}

/// A user who may only read can make no files beside the hive's, as they are needed where others may write at the same
/// time. Without a log that waits to be worked in, the file alone is all there is.
void HiveStore::openFile(bool create)
{
    try {
        database_ = std::make_unique<HiveDatabase>(file_, SqliteDatabase::Mode::Shared);
    } catch (const SqliteFailure& failure) {
        std::error_code absent;
        const std::uintmax_t log = std::filesystem::file_size(file_.file.native() + "-wal", absent);
        if (create || !failure.isAccess() || (!absent && log > 0))
            throw;
        database_ = std::make_unique<HiveDatabase>(file_, SqliteDatabase::Mode::Frozen);
    }
}

std::optional<HiveStore::Identity> HiveStore::identity() const
{
    struct stat facts {};
    if (::stat(file_.file.c_str(), &facts) != 0)
        return std::nullopt;
    return Identity{facts.st_dev, facts.st_ino};
}

/// The file is made under its name with its rights and never opened here: to close it would drop the locks that
/// another thread holds on it.
bool HiveStore::createFile() const
{
    if (identity())
        return true;
    std::error_code ignored;
    const std::filesystem::path folder = file_.file.parent_path();
    std::filesystem::create_directories(folder.parent_path(), ignored);
    // What the process masks out of the rights of new files is put back.
    if (::mkdir(folder.c_str(), file_.folderMode()) == 0)
        ::chmod(folder.c_str(), file_.folderMode());
    if (::mknod(file_.file.c_str(), S_IFREG | file_.fileMode(), 0) != 0)
        return errno == EEXIST;
    ::chmod(file_.file.c_str(), file_.fileMode());
    return true;
}

/// The hive's folder, locked for as long as the result lives; not open where that is not possible.
FileDescriptor HiveStore::lockFolder(int kind) const
{
    FileDescriptor folder(::open(file_.file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen() && retrying([&] { return ::flock(folder.number(), kind); }) < 0)
        return FileDescriptor();
    return folder;
}

/// Gives a damaged file another name. Processes that find the damage at the same time come here one after the other;
/// the later ones see that another file stands there by then, and leave it in peace. True if the way is free.
bool HiveStore::setAside(const std::string& damage)
{
    const FileDescriptor lock = lockFolder(LOCK_EX);
    if (!lock.isOpen())
        return false;
    return identity() != opened_ || rename(damage);
}

bool HiveStore::rename(const std::string& damage)
{
    const std::string name = file_.file.native();
    std::string aside = name + ".damaged-" + timeStamp();
    std::error_code failed;
    for (int number = 2; std::filesystem::exists(aside, failed); ++number)
        aside = name + ".damaged-" + timeStamp() + "-" + std::to_string(number);
    // What a process that died has left half done belongs to the damaged file, and goes first: a new file must not
    // meet it.
    for (const char* companion : {"-journal", "-wal", "-shm"})
        std::filesystem::rename(name + companion, aside + companion, failed);
    std::filesystem::rename(name, aside, failed);
    if (failed) {
        tell("The settings file " + name + " is damaged (" + damage + ") and cannot be set aside: " + failed.message() +
             ". Until it is moved away, no setting is read or written.");
        return false;
    }
    tell("The settings file " + name + " is damaged (" + damage + "). It was set aside as " + aside +
         "; a new one begins with the next setting that is written.");
    return true;
}

/// Says something once, however often it happens.
void HiveStore::tell(const std::string& text)
{
    if (told_ == text)
        return;
    told_ = text;
    std::cerr << text + "\n";
}

std::optional<RegistryValue> HiveStore::read(std::string_view subKey, std::string_view name)
{
    return withDatabase(false, std::optional<RegistryValue>(),
                        [&](HiveDatabase& database) { return database.read(normalized(subKey), name); });
}

bool HiveStore::create(std::string_view subKey)
{
    const std::string path = normalized(subKey);
    if (isTooDeep(path))
        return false;
    return withDatabase(true, false, [&](HiveDatabase& database) {
        database.create(path);
        return true;
    });
}

bool HiveStore::write(std::string_view subKey, std::string_view name, const RegistryValue& value)
{
    const std::string path = normalized(subKey);
    if (isTooDeep(path))
        return false;
    return withDatabase(true, false, [&](HiveDatabase& database) {
        database.write(path, name, value);
        return true;
    });
}

/// What the body writes is one transaction. If the database is lost in its midst, nothing of it stays.
bool HiveStore::together(const std::function<bool()>& body)
{
    // A hive that is only read is not made for it.
    beginsTogether_ = true;
    static_cast<void>(withDatabase(false, false, [](HiveDatabase&) { return true; }));
    bool done = false;
    try {
        done = body();
    } catch (...) {
        beginsTogether_ = false;
        withDatabase(false, false, [](HiveDatabase& database) { return database.end(false); });
        throw;
    }
    if (std::exchange(beginsTogether_, false))
        return done; // there is no hive, and so nothing was written
    return withDatabase(false, false, [&](HiveDatabase& database) { return database.end(done); });
}

bool HiveStore::removeValue(std::string_view subKey, std::string_view name)
{
    return withDatabase(false, false,
                        [&](HiveDatabase& database) { return database.removeValue(normalized(subKey), name); });
}

bool HiveStore::removeKey(std::string_view subKey)
{
    return withDatabase(false, false, [&](HiveDatabase& database) { return database.removeKey(normalized(subKey)); });
}

bool HiveStore::exists(std::string_view subKey)
{
    const std::string path = normalized(subKey);
    return path.empty() || withDatabase(false, false, [&](HiveDatabase& database) { return database.exists(path); });
}

std::vector<std::string> HiveStore::valueNames(std::string_view subKey)
{
    return withDatabase(false, std::vector<std::string>(),
                        [&](HiveDatabase& database) { return database.valueNames(normalized(subKey)); });
}

std::vector<std::string> HiveStore::subKeys(std::string_view subKey)
{
    return withDatabase(false, std::vector<std::string>(),
                        [&](HiveDatabase& database) { return database.subKeys(normalized(subKey)); });
}

} // namespace kel
