// SPDX-License-Identifier: MIT
#include "store/SentMark.h"

#include "store/StoreProblem.h"
#include "store/StoreSchema.h"

#include <optional>
#include <utility>

namespace kel {

namespace {

// Readers store their sheets first.
constexpr int kPatience = 30'000;

SqliteDatabase opened(const std::filesystem::path& store)
{
    std::optional<SqliteDatabase> database;
    onStore(store, [&] {
        database.emplace(store, SqliteDatabase::Mode::Shared, kPatience);
        checkStore(*database, store);
        // What a crash takes back is sent again, and the stream knows it.
        database->run("PRAGMA synchronous = NORMAL");
    });
    return std::move(*database);
}

} // namespace

SentMark::SentMark(std::filesystem::path store) : store_(std::move(store)), database_(opened(store_)) {}

void SentMark::want(bool wanted)
{
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

std::int64_t SentMark::unsent()
{
    return number("SELECT last - sent FROM store");
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

void SentMark::change(const char* statement, std::int64_t value)
{
    onStore(store_, [&] {
        SqliteStatement prepared(database_, statement);
        SqliteStatement::Run(prepared).number(value).next();
    });
}

} // namespace kel
