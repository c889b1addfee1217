// SPDX-License-Identifier: MIT
#include "platform/posix/HiveDatabase.h"

#include <algorithm>
#include <sqlite3.h>

namespace kel {

namespace {

// Another process writes for milliseconds; a crowd of them may take longer.
constexpr int kLockPatience = 30000;

constexpr std::int64_t kVersion = 1;

constexpr const char* kTables = R"(
    CREATE TABLE key (
        id INTEGER PRIMARY KEY,
        path TEXT NOT NULL UNIQUE COLLATE NOCASE,
        above INTEGER REFERENCES key ON DELETE CASCADE,
        name TEXT NOT NULL COLLATE NOCASE
    );
    CREATE INDEX key_above ON key (above, name);
    CREATE TABLE value (
        key INTEGER NOT NULL REFERENCES key ON DELETE CASCADE,
        name TEXT NOT NULL COLLATE NOCASE,
        type INTEGER NOT NULL,
        data BLOB NOT NULL,
        PRIMARY KEY (key, name)
    ) WITHOUT ROWID;
    INSERT INTO key (path, above, name) VALUES ('', NULL, '');
    PRAGMA user_version = 1;
)";

} // namespace

HiveDatabase::Statements::Statements(SqliteDatabase& database)
    : findKey(database, "SELECT id FROM key WHERE path = ?"),
      addKey(database, "INSERT INTO key (path, above, name) VALUES (?, ?, ?) RETURNING id"),
      removeKey(database, "DELETE FROM key WHERE path = ? AND above IS NOT NULL"),
      readValue(database, "SELECT value.type, value.data FROM key JOIN value ON value.key = key.id "
                          "WHERE key.path = ? AND value.name = ?"),
      // A value that is there keeps its name as it was written first.
      writeValue(database, "INSERT INTO value (key, name, type, data) VALUES (?, ?, ?, ?) "
                           "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data"),
      removeValue(database, "DELETE FROM value WHERE key = (SELECT id FROM key WHERE path = ?) AND name = ?"),
      listValues(database, "SELECT value.name FROM key JOIN value ON value.key = key.id WHERE key.path = ? "
                           "ORDER BY value.name"),
      listKeys(database, "SELECT below.name FROM key JOIN key AS below ON below.above = key.id WHERE key.path = ? "
                         "ORDER BY below.name")
{
}

HiveDatabase::HiveDatabase(const HiveFile& file, SqliteDatabase::Mode mode)
    : forAll_(file.forAll), mode_(mode), database_(file.file, mode, kLockPatience)
{
    // A write lasts longer than this process at once, and longer than the machine a moment later.
    database_.run("PRAGMA foreign_keys = ON; PRAGMA synchronous = NORMAL");
    check();
}

bool HiveDatabase::ready(bool create)
{
    if (statements_)
        return true;
    if (version() == 0 && create) {
        chooseJournal();
        createTables();
    }
    if (version() != kVersion)
        return false;
    statements_.emplace(database_);
    return true;
}

/// With a write-ahead log, a write is a hundred times faster. But the log needs a folder in which its readers may
/// write; so a hive that others read does without. The file remembers the choice.
void HiveDatabase::chooseJournal()
{
    if (forAll_)
        return;
    try {
        database_.run("PRAGMA journal_mode = WAL");
    } catch (const SqliteFailure& failure) {
        // Another process is about to make the same choice.
        if (failure.isDamage())
            throw;
    }
}

void HiveDatabase::check()
{
    SqliteStatement statement(database_, "PRAGMA quick_check(1)");
    SqliteStatement::Run run(statement);
    if (run.next() && run.textAt(0) != "ok")
        throw SqliteFailure(SQLITE_CORRUPT, run.textAt(0));
}

std::int64_t HiveDatabase::version()
{
    SqliteStatement statement(database_, "PRAGMA user_version");
    SqliteStatement::Run run(statement);
    return run.next() ? run.numberAt(0) : 0;
}

void HiveDatabase::createTables()
{
    SqliteTransaction transaction(database_);
    // Another process may have been faster.
    if (version() == 0)
        database_.run(kTables);
    transaction.commit();
}

std::optional<std::int64_t> HiveDatabase::findKey(const std::string& path)
{
    SqliteStatement::Run run(statements_->findKey);
    if (!run.text(path).next())
        return std::nullopt;
    return run.numberAt(0);
}

void HiveDatabase::begin()
{
    together_.emplace(database_);
}

bool HiveDatabase::end(bool keep)
{
    keep = keep && together_;
    if (keep)
        together_->commit();
    together_.reset();
    return keep;
}

/// Runs statements as one transaction, or as a part of the one that is under way.
template <class Work>
void HiveDatabase::asOne(Work&& work)
{
    if (together_) {
        work();
        return;
    }
    SqliteTransaction transaction(database_);
    work();
    transaction.commit();
}

/// The key's row; it is made, and those of the keys above it, if need be.
std::int64_t HiveDatabase::makeKey(const std::string& path)
{
    // Where the names of the keys that are missing begin, the lowest one first.
    std::vector<std::size_t> missing;
    std::size_t end = path.size();
    std::optional<std::int64_t> row = findKey(path);
    while (!row) {
        if (end == 0)
            throw SqliteFailure(SQLITE_CORRUPT, "the hive's own row is missing");
        const std::size_t split = path.rfind('\\', end - 1);
        missing.push_back(split == std::string::npos ? 0 : split + 1);
        end = split == std::string::npos ? 0 : split;
        row = findKey(path.substr(0, end));
    }
    for (auto begin = missing.rbegin(); begin != missing.rend(); ++begin) {
        end = std::min(path.find('\\', *begin), path.size());
        const std::string whole = path.substr(0, end);
        const std::string name = path.substr(*begin, end - *begin);
        SqliteStatement::Run run(statements_->addKey);
        run.text(whole).number(*row).text(name).next();
        row = run.numberAt(0);
    }
    return *row;
}

std::optional<RegistryValue> HiveDatabase::read(const std::string& path, std::string_view name)
{
    SqliteStatement::Run run(statements_->readValue);
    if (!run.text(path).text(name).next())
        return std::nullopt;
    return RegistryValue{static_cast<RegistryType>(run.numberAt(0)), run.textAt(1)};
}

void HiveDatabase::create(const std::string& path)
{
    asOne([&] { static_cast<void>(makeKey(path)); });
}

void HiveDatabase::write(const std::string& path, std::string_view name, const RegistryValue& value)
{
    asOne([&] {
        const std::int64_t key = makeKey(path);
        SqliteStatement::Run(statements_->writeValue)
            .number(key)
            .text(name)
            .number(static_cast<std::int64_t>(value.type))
            .blob(value.data)
            .next();
    });
}

bool HiveDatabase::removeValue(const std::string& path, std::string_view name)
{
    SqliteStatement::Run(statements_->removeValue).text(path).text(name).next();
    return database_.changes() > 0;
}

bool HiveDatabase::removeKey(const std::string& path)
{
    SqliteStatement::Run(statements_->removeKey).text(path).next();
    return database_.changes() > 0;
}

bool HiveDatabase::exists(const std::string& path)
{
    return findKey(path).has_value();
}

std::vector<std::string> HiveDatabase::list(SqliteStatement& statement, const std::string& path)
{
    std::vector<std::string> names;
    SqliteStatement::Run run(statement);
    run.text(path);
    while (run.next())
        names.push_back(run.textAt(0));
    return names;
}

std::vector<std::string> HiveDatabase::valueNames(const std::string& path)
{
    return list(statements_->listValues, path);
}

std::vector<std::string> HiveDatabase::subKeys(const std::string& path)
{
    return list(statements_->listKeys, path);
}

} // namespace kel
