// SPDX-License-Identifier: MIT
#include "store/StoredSheets.h"

#include "formats/JsonValue.h"
#include "store/SheetStore.h"
#include "store/StorePlace.h"
#include "store/StoreProblem.h"
#include "store/StoreSchema.h"

#include <algorithm>
#include <ctime>
#include <utility>
#include <vector>

namespace kel {

namespace {

constexpr int kReadPatience = 30'000;

// No transaction of a reader lasts longer than these take: a writer's log would grow meanwhile.
constexpr int kAtOnce = 500;

constexpr const char* kFind = R"(
    SELECT sheet.id, 0 FROM sheet JOIN batch ON batch.id = sheet.batch
    WHERE sheet.id > ?1 AND (?2 = '' OR reader = ?2) AND (?3 = '' OR name = ?3) AND time >= ?4
    UNION ALL
    SELECT failure.id, 1 FROM failure JOIN batch ON batch.id = failure.batch
    WHERE failure.id > ?1 AND (?2 = '' OR reader = ?2) AND (?3 = '' OR name = ?3) AND time >= ?4 AND ?5
    ORDER BY 1 LIMIT ?6)";

// How many ids one query of a search goes through, and one search.
constexpr std::int64_t kLookedAtOnce = 20'000;
constexpr std::int64_t kLookedAtMost = 400'000;

constexpr const char* kSearch = R"(
    SELECT sheet.id FROM sheet JOIN batch ON batch.id = sheet.batch
    WHERE sheet.id < ?1 AND sheet.id >= ?2 AND (?3 = '' OR reader = ?3) AND (?4 = '' OR name = ?4) AND time >= ?5
          AND (?6 = '' OR instr(barcodes, ?6)) AND (NOT ?7 OR rejected)
          AND (NOT ?8 OR (record IS NULL AND NOT ifnull(instr(side1, '"marks":[['), 0)
                          AND NOT ifnull(instr(side2, '"marks":[['), 0)))
    ORDER BY sheet.id DESC LIMIT ?9)";

constexpr const char* kSheet = R"(
    SELECT identity, store, station, reader, name, time, model, threshold, form, number, side1, side2,
           side1TimingMarks, side2TimingMarks, barcodes, record, rejected, printed, printedLines
    FROM sheet JOIN batch ON batch.id = sheet.batch JOIN setup ON setup.id = sheet.setup WHERE sheet.id = ?)";

constexpr const char* kFailure = R"(
    SELECT identity, store, station, reader, name, time, afterSheet, line, number, type, description, source, title
    FROM failure JOIN batch ON batch.id = failure.batch WHERE failure.id = ?)";

template <class Make>
auto opened(const std::filesystem::path& file, Make&& make)
{
    std::optional<decltype(make())> result;
    onStore(file, [&] { result.emplace(make()); });
    return std::move(*result);
}

EntryTexts originAt(const SqliteStatement::Run& row, std::int64_t id)
{
    return {
        .id = id,
        .identity = row.textAt(0),
        .origin = {.store = row.textAt(1), .station = row.textAt(2), .reader = row.textAt(3), .batch = row.textAt(4)},
        .time = row.textAt(5)};
}

/// A part of a text as it stands within the JSON of the texts.
std::string writtenPart(const std::string& part)
{
    const std::string text = jsonText(validUtf8(part));
    return text.substr(1, text.size() - 2);
}

/// Reads a local time, or one of UTC.
std::optional<std::time_t> pointOf(const std::string& text, const char* format, bool utc)
{
    std::tm parts{};
    parts.tm_isdst = -1;
    const char* const end = ::strptime(text.c_str(), format, &parts);
    if (!end || *end != '\0')
        return std::nullopt;
    const int day = parts.tm_mday;
    const std::time_t point = utc ? ::timegm(&parts) : std::mktime(&parts);
    if (parts.tm_mday != day) // the month has fewer
        return std::nullopt;
    return point;
}

} // namespace

std::optional<std::string> storeTimeOf(const std::string& text)
{
    const bool utc = text.ends_with('Z');
    std::string rest = utc ? text.substr(0, text.size() - 1) : text;
    int milliseconds = 0;
    constexpr std::size_t kFraction = 4; // ".123"
    if (rest.size() > kFraction && rest[rest.size() - kFraction] == '.') {
        const std::string digits = rest.substr(rest.size() - kFraction + 1);
        if (digits.find_first_not_of("0123456789") != std::string::npos)
            return std::nullopt;
        milliseconds = std::stoi(digits);
        rest.resize(rest.size() - kFraction);
    }
    for (const char* format :
         {"%Y-%m-%d", "%Y-%m-%d %H:%M", "%Y-%m-%d %H:%M:%S", "%Y-%m-%dT%H:%M", "%Y-%m-%dT%H:%M:%S"}) {
        if (const auto point = pointOf(rest, format, utc))
            return storeTime(*point, milliseconds);
    }
    return std::nullopt;
}

StoredSheets::StoredSheets(const std::filesystem::path& file)
    : file_(existingStore(file)),
      database_(opened(file,
                       [&] {
                           SqliteDatabase database(file, SqliteDatabase::Mode::Shared, kReadPatience);
                           checkStore(database, file);
                           return database;
                       })),
      ids_(statement(kFind)), sheetRow_(statement(kSheet)), failureRow_(statement(kFailure))
{
}

SqliteStatement StoredSheets::statement(const char* text)
{
    return opened(file_, [&] { return SqliteStatement(database_, text); });
}

std::int64_t StoredSheets::read(const StoreFilter& filter, std::int64_t after, const Take& take, const Damaged& damaged)
{
    return walk(filter, after, [&](std::int64_t id, bool isFailure) {
        std::optional<Entry> entry;
        const bool isGood = isWhole(id, damaged, [&] {
            if (auto texts = textsAt(id, isFailure))
                entry = entryOf(std::move(*texts));
        });
        return !isGood || !entry || take(*entry);
    });
}

std::int64_t StoredSheets::readTexts(std::int64_t after, const TakeTexts& take, const Damaged& damaged)
{
    return walk({}, after, [&](std::int64_t id, bool isFailure) {
        std::optional<EntryTexts> texts;
        const bool isGood = isWhole(id, damaged, [&] {
            texts = textsAt(id, isFailure);
            if (texts)
                demandJson(*texts);
        });
        return !isGood || !texts || take(*texts);
    });
}

std::int64_t StoredSheets::walk(const StoreFilter& filter, std::int64_t after, const Visit& visit)
{
    onStore(file_, [&] {
        std::vector<std::pair<std::int64_t, bool>> found;
        do {
            found.clear();
            {
                SqliteStatement::Run rows(ids_);
                rows.number(after).text(filter.reader).text(filter.batch).text(filter.since);
                rows.number(filter.failures).number(kAtOnce);
                while (rows.next())
                    found.emplace_back(rows.numberAt(0), rows.numberAt(1) != 0);
            }
            for (const auto& [id, isFailure] : found) {
                after = id;
                if (!visit(id, isFailure))
                    return;
            }
        } while (found.size() == kAtOnce);
    });
    return after;
}

FoundSheets StoredSheets::find(const SheetSearch& search, std::int64_t before, std::size_t most)
{
    FoundSheets found;
    onStore(file_, [&] {
        if (before == 0)
            before = database_.numberOf("SELECT ifnull(max(id), 0) + 1 FROM sheet");
        const std::int64_t end = std::max<std::int64_t>(before - kLookedAtMost, 1);
        const std::string barcode = writtenPart(search.barcode);
        SqliteStatement query(database_, kSearch);
        while (before > end && found.sheets.size() < most) {
            const std::int64_t from = std::max(before - kLookedAtOnce, end);
            std::vector<std::int64_t> ids;
            {
                SqliteStatement::Run rows(query);
                rows.number(before).number(from).text(search.reader).text(search.batch).text(search.since);
                rows.text(barcode).number(search.rejected).number(search.blank);
                rows.number(static_cast<std::int64_t>(most - found.sheets.size()));
                while (rows.next())
                    ids.push_back(rows.numberAt(0));
            }
            before = from;
            for (const std::int64_t id : ids) {
                // Whoever reads the store from end to end learns of a damaged one.
                if (std::optional<Entry> entry = sheetOf(id, [](std::int64_t, const std::string&) {}))
                    found.sheets.push_back(std::move(*entry));
                if (found.sheets.size() == most)
                    before = id;
            }
        }
        found.next = before > 1 ? before : 0;
    });
    return found;
}

std::optional<Entry> StoredSheets::sheet(std::int64_t id)
{
    std::optional<Entry> entry;
    onStore(file_, [&] { entry = sheetOf(id, {}); });
    return entry;
}

std::int64_t StoredSheets::lastId()
{
    std::int64_t last = 0;
    onStore(file_, [&] { last = database_.numberOf("SELECT last FROM store"); });
    return last;
}

std::vector<StoredBatch> StoredSheets::batches(std::size_t most)
{
    std::vector<StoredBatch> found;
    onStore(file_, [&] {
        SqliteStatement query(database_,
                              "SELECT station, reader, name, sheets FROM batch WHERE sheets > 0 ORDER BY id DESC "
                              "LIMIT ?");
        SqliteStatement::Run rows(query);
        rows.number(static_cast<std::int64_t>(most));
        while (rows.next())
            found.push_back({.station = rows.textAt(0),
                             .reader = rows.textAt(1),
                             .name = rows.textAt(2),
                             .sheets = rows.numberAt(3)});
    });
    return found;
}

std::optional<Entry> StoredSheets::sheetOf(std::int64_t id, const Damaged& damaged)
{
    std::optional<Entry> entry;
    static_cast<void>(isWhole(id, damaged, [&] {
        if (auto texts = sheetTexts(id))
            entry = entryOf(std::move(*texts));
    }));
    return entry;
}

/// Reads a row, and sees whether it is as it was written.
bool StoredSheets::isWhole(std::int64_t id, const Damaged& damaged, const std::function<void()>& read) const
{
    std::string reason;
    try {
        read();
        return true;
    } catch (const JsonRefusal& refusal) {
        reason = validUtf8(refusal.what());
    } catch (const SqliteFailure& failure) {
        if (!failure.isDamage())
            throw;
        reason = failure.what();
    }
    const std::string sentence =
        "The store " + file_.string() + " is damaged at sheet " + std::to_string(id) + ": " + reason + ".";
    if (!damaged)
        throw StoreProblem(sentence);
    damaged(id, sentence);
    return false;
}

/// Nothing if somebody has just had it forgotten.
std::optional<EntryTexts> StoredSheets::textsAt(std::int64_t id, bool isFailure)
{
    return isFailure ? failureTexts(id) : sheetTexts(id);
}

std::optional<EntryTexts> StoredSheets::sheetTexts(std::int64_t id)
{
    SqliteStatement::Run row(sheetRow_);
    if (!row.number(id).next())
        return std::nullopt;
    EntryTexts entry = originAt(row, id);
    entry.what = SheetTexts{.setup = {.model = static_cast<kelReaderType>(row.numberAt(6)),
                                      .threshold = static_cast<Int16>(row.numberAt(7)),
                                      .form = row.textAt(8)},
                            .number = static_cast<Int32>(row.numberAt(9)),
                            .side1 = row.textAt(10),
                            .side2 = row.textAt(11),
                            .side1TimingMarks = static_cast<Int16>(row.numberAt(12)),
                            .side2TimingMarks = static_cast<Int16>(row.numberAt(13)),
                            .barcodes = row.textAt(14),
                            .record = row.textAt(15),
                            .rejected = row.numberAt(16) != 0,
                            .printed = row.numberAt(17) != 0,
                            .printedLines = row.textAt(18)};
    return entry;
}

std::optional<EntryTexts> StoredSheets::failureTexts(std::int64_t id)
{
    SqliteStatement::Run row(failureRow_);
    if (!row.number(id).next())
        return std::nullopt;
    EntryTexts entry = originAt(row, id);
    ReportEntry report;
    report.afterSheet = static_cast<Int32>(row.numberAt(6));
    report.failure.line = static_cast<Int32>(row.numberAt(7));
    report.failure.number = static_cast<Int32>(row.numberAt(8));
    report.failure.type = static_cast<Int32>(row.numberAt(9));
    report.failure.description = row.textAt(10);
    report.failure.source = row.textAt(11);
    report.failure.title = row.textAt(12);
    entry.what = std::move(report);
    return entry;
}

} // namespace kel
