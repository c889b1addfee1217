// SPDX-License-Identifier: MIT
#include "store/SentMark.h"

#include "store/StoreProblem.h"
#include "store/StoreSchema.h"

#include <optional>
#include <utility>

namespace kel {

namespace {

SqliteDatabase opened(const std::filesystem::path& store, int patience)
{
    std::optional<SqliteDatabase> database;
    onStore(store, [&] {
        database.emplace(store, SqliteDatabase::Mode::Shared, patience);
        checkStore(*database, store);
        // What a crash takes back is sent again, and the stream knows it.
        database->run("PRAGMA synchronous = NORMAL");
    });
    return std::move(*database);
}

} // namespace

SentMark::SentMark(std::filesystem::path store, int patience)
    : store_(std::move(store)), database_(opened(store_, patience))
{
}

void SentMark::want(bool wanted)
{
    if (number("SELECT sends FROM store") != (wanted ? 1 : 0)) // a store that is full can be read
        change("UPDATE store SET sends = ?", wanted ? 1 : 0);
}

std::int64_t SentMark::last()
{
    return number("SELECT sent FROM store");
}

void SentMark::move(std::int64_t id)
{
    change("UPDATE store SET sent = ?", id);
}

void SentMark::hold(std::int64_t id, const std::string& reason)
{
    change("INSERT OR REPLACE INTO held VALUES (?, ?)", id, reason);
}

void SentMark::release(std::int64_t id)
{
    change("DELETE FROM held WHERE id = ?", id);
}

std::vector<std::int64_t> SentMark::held()
{
    std::vector<std::int64_t> ids;
    onStore(store_, [&] {
        SqliteStatement query(database_, "SELECT id FROM held ORDER BY id");
        SqliteStatement::Run rows(query);
        while (rows.next())
            ids.push_back(rows.numberAt(0));
    });
    return ids;
}

std::string SentMark::reason()
{
    std::string reason;
    onStore(store_, [&] {
        SqliteStatement query(database_, "SELECT reason FROM held ORDER BY id DESC LIMIT 1");
        SqliteStatement::Run row(query);
        if (row.next())
            reason = row.textAt(0);
    });
    return reason;
}

std::int64_t SentMark::unsent()
{
    // What was forgotten is older than what is there.
    return number(R"(
        SELECT last + 1 - min((SELECT ifnull(min(id), last + 1) FROM sheet WHERE id > sent),
                              (SELECT ifnull(min(id), last + 1) FROM failure WHERE id > sent)) +
               (SELECT count(*) FROM held
                WHERE id <= sent AND (id IN (SELECT id FROM sheet) OR id IN (SELECT id FROM failure)))
        FROM store)");
}

std::int64_t SentMark::number(const char* query)
{
    std::int64_t result = 0;
    onStore(store_, [&] {
        SqliteStatement statement(database_, query);
        SqliteStatement::Run row(statement);
        row.next();
        result = row.numberAt(0);
    });
    return result;
}

void SentMark::change(const char* statement, std::int64_t value, std::optional<std::string_view> text)
{
    onStore(store_, [&] {
        SqliteStatement prepared(database_, statement);
        SqliteStatement::Run run(prepared);
        run.number(value);
        if (text)
            run.text(*text);
        run.next();
    });
}

} // namespace kel
