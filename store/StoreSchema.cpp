// SPDX-License-Identifier: MIT
#include "store/StoreSchema.h"

#include "store/StoreProblem.h"

#include <iterator>
#include <string>

namespace kel {

namespace {

// "KELR" as a number: says whose file it is, to programs that look at files.
constexpr std::int64_t kApplication = 0x4B454C52;

/// What makes a store of version n + 1 of one of version n; version 0 is an empty file.
constexpr const char* kSteps[] = {
    R"(
    CREATE TABLE store (
        identity TEXT NOT NULL,
        last INTEGER NOT NULL -- the id that was given last
    );
    INSERT INTO store VALUES (lower(hex(randomblob(16))), 0);
    CREATE TABLE setup (
        id INTEGER PRIMARY KEY,
        model INTEGER NOT NULL,
        threshold INTEGER NOT NULL,
        form TEXT NOT NULL,
        UNIQUE (model, threshold, form)
    );
    CREATE TABLE batch (
        id INTEGER PRIMARY KEY,
        store TEXT NOT NULL,
        station TEXT NOT NULL,
        reader TEXT NOT NULL,
        name TEXT NOT NULL,
        sheets INTEGER NOT NULL DEFAULT 0, -- the number that was given last
        UNIQUE (store, station, reader, name)
    );
    CREATE TABLE sheet (
        id INTEGER PRIMARY KEY,
        identity TEXT NOT NULL UNIQUE,
        batch INTEGER NOT NULL REFERENCES batch,
        number INTEGER NOT NULL,
        time TEXT NOT NULL,
        setup INTEGER NOT NULL REFERENCES setup,
        side1 TEXT,
        side2 TEXT,
        side1TimingMarks INTEGER NOT NULL,
        side2TimingMarks INTEGER NOT NULL,
        barcodes TEXT NOT NULL,
        record TEXT,
        rejected INTEGER NOT NULL,
        printed INTEGER NOT NULL,
        printedLines TEXT NOT NULL,
        UNIQUE (batch, number)
    );
    CREATE INDEX sheet_time ON sheet (time);
    CREATE TABLE failure (
        id INTEGER PRIMARY KEY,
        identity TEXT NOT NULL UNIQUE,
        batch INTEGER NOT NULL REFERENCES batch,
        afterSheet INTEGER NOT NULL,
        time TEXT NOT NULL,
        line INTEGER NOT NULL,
        number INTEGER NOT NULL,
        type INTEGER NOT NULL,
        description TEXT NOT NULL,
        source TEXT NOT NULL,
        title TEXT NOT NULL
    );
    CREATE INDEX failure_time ON failure (time);
    CREATE VIEW sheets AS
        SELECT sheet.id, batch.station, batch.reader, batch.name AS batch, sheet.number, sheet.time, setup.model,
               sheet.side1, sheet.side2, sheet.side1TimingMarks, sheet.side2TimingMarks, sheet.barcodes, sheet.record,
               sheet.rejected, sheet.printed
        FROM sheet JOIN batch ON batch.id = sheet.batch JOIN setup ON setup.id = sheet.setup;
    )",
    R"(
    ALTER TABLE store ADD COLUMN sends INTEGER NOT NULL DEFAULT 0; -- whether a stream is to have what the store holds
    ALTER TABLE store ADD COLUMN sent INTEGER NOT NULL DEFAULT 0; -- the stream has all up to this id
    CREATE TABLE unread ( -- messages from a stream that hold no entry
        id INTEGER PRIMARY KEY,
        time TEXT NOT NULL,
        subject TEXT NOT NULL,
        reason TEXT NOT NULL,
        content BLOB NOT NULL,
        UNIQUE (subject, content)
    );
    )",
    R"(
    CREATE TABLE held ( -- entries up to the mark that the stream does not take
        id INTEGER PRIMARY KEY,
        reason TEXT NOT NULL
    );
    )",
};
static_assert(std::size(kSteps) == kStoreVersion);

std::int64_t versionOf(SqliteDatabase& database)
{
    return database.numberOf("PRAGMA user_version");
}

/// The version of a store that this program may have written, or 0 for an empty file.
std::int64_t knownVersion(SqliteDatabase& database, const std::filesystem::path& file)
{
    std::error_code error;
    if (std::filesystem::file_size(file, error) > 0 && !error)
        database.demandOwnFile(); // SQLite would find a beginning in the log
    const std::int64_t version = versionOf(database);
    const bool isEmpty = database.numberOf("SELECT count(*) FROM sqlite_schema") == 0;
    if (!isEmpty && database.numberOf("PRAGMA application_id") != kApplication)
        throw StoreProblem("The file " + file.string() + " is a database, but no store of sheets; name another one.");
    if (version > kStoreVersion)
        throw StoreProblem("The store " + file.string() + " has version " + std::to_string(version) +
                           ", and this program knows versions up to " + std::to_string(kStoreVersion) +
                           "; use the newer kelreader that wrote it.");
    return version;
}

} // namespace

void prepareStore(SqliteDatabase& database, const std::filesystem::path& file)
{
    if (knownVersion(database, file) == kStoreVersion)
        return;
    if (versionOf(database) == 0)
        database.run("PRAGMA auto_vacuum = INCREMENTAL"); // only an empty file takes it
    SqliteTransaction transaction(database);
    // Another process may have been faster.
    for (std::int64_t version = knownVersion(database, file); version < kStoreVersion; ++version)
        database.run(kSteps[version]);
    const std::string marks = "PRAGMA application_id = " + std::to_string(kApplication) +
                              "; PRAGMA user_version = " + std::to_string(kStoreVersion);
    database.run(marks.c_str());
    transaction.commit();
}

void checkStore(SqliteDatabase& database, const std::filesystem::path& file)
{
    const std::int64_t version = knownVersion(database, file);
    if (version < kStoreVersion)
        throw StoreProblem("The store " + file.string() + " has version " + std::to_string(version) +
                           ", which a scan or a station brings up to date when it opens it; run one of them first.");
}

} // namespace kel
