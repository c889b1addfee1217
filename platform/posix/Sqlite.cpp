// SPDX-License-Identifier: MIT
#include "platform/posix/Sqlite.h"

#include <array>
#include <cerrno>
#include <sqlite3.h>

namespace kel {

namespace {

/// With what the system has refused a write to the database, or to its log.
int systemError(sqlite3* database)
{
    int error = 0;
    for (const int which : {SQLITE_FCNTL_FILE_POINTER, SQLITE_FCNTL_JOURNAL_POINTER}) {
        sqlite3_file* file = nullptr;
        sqlite3_file_control(database, "main", which, &file);
        if (error == 0 && file && file->pMethods)
            file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &error);
    }
    return error;
}

void check(sqlite3* database, int result)
{
    if (result != SQLITE_OK)
        throw database
            ? SqliteFailure(sqlite3_extended_errcode(database), sqlite3_errmsg(database), systemError(database))
            : SqliteFailure(result, sqlite3_errstr(result));
}

/// A file's name with what has a meaning in an address written as numbers.
std::string asUri(const std::filesystem::path& file)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char character : file.native()) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '?' || character == '#' || character == '%')
            uri += {'%', kDigits[code / 16], kDigits[code % 16]};
        else
            uri += character;
    }
    return uri;
}

} // namespace

bool SqliteFailure::isDamage() const noexcept
{
    const int kind = code_ & 0xFF;
    return kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB;
}

bool SqliteFailure::isAccess() const noexcept
{
    const int kind = code_ & 0xFF;
    return kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY;
}

bool SqliteFailure::isBusy() const noexcept
{
    const int kind = code_ & 0xFF;
    return kind == SQLITE_BUSY || kind == SQLITE_LOCKED;
}

bool SqliteFailure::isFull() const noexcept
{
    const int kind = code_ & 0xFF;
    const bool isOverLimit = kind == SQLITE_IOERR && (systemError_ == EDQUOT || systemError_ == EFBIG);
    // The second: there is no room for the memory that its users share.
    return kind == SQLITE_FULL || code_ == SQLITE_IOERR_SHMSIZE || isOverLimit;
}

bool SqliteFailure::isConflict() const noexcept
{
    return (code_ & 0xFF) == SQLITE_CONSTRAINT;
}

void SqliteDatabase::Close::operator()(sqlite3* database) const noexcept
{
    sqlite3_close_v2(database);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, Mode mode, int patience)
{
    const std::string name = mode == Mode::Frozen ? asUri(file) + "?immutable=1" : file.native();
    const int flags = mode == Mode::Frozen ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI : SQLITE_OPEN_READWRITE;
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    database_.reset(opened);
    check(opened, result);
    sqlite3_busy_timeout(opened, patience);
}

void SqliteDatabase::run(const char* statements)
{
    check(handle(), sqlite3_exec(handle(), statements, nullptr, nullptr, nullptr));
}

std::int64_t SqliteDatabase::numberOf(const char* query)
{
    SqliteStatement statement(*this, query);
    SqliteStatement::Run row(statement);
    return row.next() ? row.numberAt(0) : 0;
}

int SqliteDatabase::changes() const noexcept
{
    return sqlite3_changes(handle());
}

bool SqliteDatabase::hasMoved() const noexcept
{
    int moved = 0;
    sqlite3_file_control(handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void SqliteDatabase::demandOwnFile() const
{
    // Through SQLite's own handle: closing another one would give up the locks on the file.
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    constexpr std::string_view kBeginning("SQLite format 3\0", 16);
    std::array<char, kBeginning.size()> found{};
    if (!file || !file->pMethods)
        return;
    const int result = file->pMethods->xRead(file, found.data(), static_cast<int>(found.size()), 0);
    if (result == SQLITE_OK && std::string_view(found.data(), found.size()) == kBeginning)
        return;
    if (result != SQLITE_OK && result != SQLITE_IOERR_SHORT_READ)
        throw SqliteFailure(result, sqlite3_errstr(result));
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    throw SqliteFailure(SQLITE_NOTADB, "it is no database, or something else has been written over it");
}

void SqliteStatement::Finalize::operator()(sqlite3_stmt* statement) const noexcept
{
    sqlite3_finalize(statement);
}

SqliteStatement::SqliteStatement(SqliteDatabase& database, const char* text)
{
    sqlite3_stmt* prepared = nullptr;
    const int result = sqlite3_prepare_v3(database.handle(), text, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement_.reset(prepared);
    check(database.handle(), result);
}

SqliteStatement::Run::~Run()
{
    sqlite3_reset(statement_.statement_.get());
    sqlite3_clear_bindings(statement_.statement_.get());
}

void SqliteStatement::Run::bound(int result)
{
    check(sqlite3_db_handle(statement_.statement_.get()), result);
}

SqliteStatement::Run& SqliteStatement::Run::text(std::string_view value)
{
    // A null address would bind no text but nothing.
    bound(sqlite3_bind_text64(statement_.statement_.get(), ++places_, value.data() ? value.data() : "", value.size(),
                              SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

SqliteStatement::Run& SqliteStatement::Run::blob(std::string_view value)
{
    bound(sqlite3_bind_blob64(statement_.statement_.get(), ++places_, value.data() ? value.data() : "", value.size(),
                              SQLITE_STATIC));
    return *this;
}

SqliteStatement::Run& SqliteStatement::Run::number(std::int64_t value)
{
    bound(sqlite3_bind_int64(statement_.statement_.get(), ++places_, value));
    return *this;
}

bool SqliteStatement::Run::next()
{
    const int result = sqlite3_step(statement_.statement_.get());
    if (result == SQLITE_ROW)
        return true;
    if (result != SQLITE_DONE)
        check(sqlite3_db_handle(statement_.statement_.get()), result);
    return false;
}

std::string SqliteStatement::Run::textAt(int column) const
{
    sqlite3_stmt* statement = statement_.statement_.get();
    const void* data = sqlite3_column_blob(statement, column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    return data ? std::string(static_cast<const char*>(data), size) : std::string();
}

std::int64_t SqliteStatement::Run::numberAt(int column) const
{
    return sqlite3_column_int64(statement_.statement_.get(), column);
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database) : database_(database)
{
    database_.run("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction()
{
    if (open_)
        sqlite3_exec(database_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void SqliteTransaction::commit()
{
    database_.run("COMMIT");
    open_ = false;
}

} // namespace kel
