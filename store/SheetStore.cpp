// SPDX-License-Identifier: MIT
#include "store/SheetStore.h"

#include "formats/JsonValue.h"
#include "platform/posix/Sqlite.h"
#include "store/EntryTexts.h"
#include "store/StoreProblem.h"
#include "store/StoreSchema.h"
#include "types/Text.h"

#include <array>
#include <fcntl.h>
#include <utility>

namespace kel {

namespace {

// Nobody else writes but who forgets old sheets, a few at a time.
constexpr int kWritePatience = 1000;
constexpr mode_t kStoreMode = 0660;

/// SQLite is to open what exists; a new file has the access rights of a store.
void makeFile(const std::filesystem::path& file)
{
    const FileDescriptor made(retrying([&] { return ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kStoreMode); }));
}

} // namespace

std::string storeTime(std::chrono::system_clock::time_point moment)
{
    const auto whole = std::chrono::floor<std::chrono::seconds>(moment);
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(moment - whole).count();
    return storeTime(std::chrono::system_clock::to_time_t(whole), static_cast<int>(rest));
}

std::string storeTime(std::time_t seconds, int milliseconds)
{
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    constexpr int kThreeDigits = 1000;
    return std::string(text.data(), length) + "." + std::to_string(kThreeDigits + milliseconds).substr(1) + "Z";
}

/// The open file, with what is written to it.
class SheetStore::Writer {
public:
    Writer(const std::filesystem::path& file, const Clock& clock)
        : clock_(clock), database_(file, SqliteDatabase::Mode::Shared, kWritePatience),
          tables_(prepared(database_, file)),
          nextId_(database_, "UPDATE store SET last = last + 1 RETURNING last, identity"),
          addSetup_(database_, "INSERT INTO setup (model, threshold, form) VALUES (?, ?, ?) ON CONFLICT DO UPDATE SET "
                               "model = excluded.model RETURNING id"),
          addBatch_(database_, "INSERT INTO batch (store, station, reader, name) VALUES (?, ?, ?, ?) ON CONFLICT DO "
                               "UPDATE SET name = excluded.name RETURNING id, sheets"),
          countSheet_(database_, "UPDATE batch SET sheets = max(sheets, ?) WHERE id = ?"),
          addSheet_(database_, "INSERT INTO sheet VALUES (?, ?, ?, ?, ?, ?, nullif(?, ''), nullif(?, ''), ?, ?, ?, "
                               "nullif(?, ''), ?, ?, ?) ON CONFLICT (identity) DO NOTHING"),
          addFailure_(database_, "INSERT INTO failure VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) "
                                 "ON CONFLICT (identity) DO NOTHING"),
          addUnread_(database_, "INSERT INTO unread (time, subject, reason, content) VALUES (?, ?, ?, ?) "
                                "ON CONFLICT DO NOTHING")
    {
    }

    void write(const std::vector<Waiting*>& group)
    {
        // What is written to a file that has lost its name would be gone with the program.
        if (database_.hasMoved())
            throw StoreProblem("The store's file is no longer in its place.");
        SqliteTransaction transaction(database_);
        for (const Waiting* waiting : group) {
            isOwn_ = waiting->own;
            for (Entry& entry : waiting->entries)
                write(entry);
            for (const UnreadMessage& message : waiting->unread)
                write(message);
        }
        transaction.commit();
    }

private:
    static bool prepared(SqliteDatabase& database, const std::filesystem::path& file)
    {
        prepareStore(database, file);
        database.run("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON");
        return true;
    }

    void write(Entry& entry)
    {
        identify(entry);
        const std::int64_t batch = batchOf(entry);
        auto* const sheet = std::get_if<ReadSheetEntry>(&entry.what);
        if (!sheet)
            return write(entry, std::get<ReportEntry>(entry.what), batch);
        try {
            write(entry, *sheet, batch);
        } catch (const SqliteFailure& failure) {
            if (!failure.isConflict())
                throw;
            throw EntryRefused("Sheet " + CStr(sheet->sheet.number) + " of the batch " + entry.origin.batch +
                               " of the reader " + entry.origin.reader + " already exists, as another sheet.");
        }
    }

    void identify(Entry& entry)
    {
        SqliteStatement::Run run(nextId_);
        run.next();
        entry.id = run.numberAt(0);
        if (!isOwn_)
            return;
        entry.origin.store = run.textAt(1);
        entry.identity = entry.origin.store + "-" + std::to_string(entry.id);
        entry.time = storeTime(clock_());
    }

    std::int64_t batchOf(const Entry& entry)
    {
        SqliteStatement::Run run(addBatch_);
        run.text(entry.origin.store).text(entry.origin.station).text(entry.origin.reader).text(entry.origin.batch);
        run.next();
        lastSheet_ = static_cast<Int32>(run.numberAt(1));
        return run.numberAt(0);
    }

    std::int64_t setupOf(const Setup& setup)
    {
        SqliteStatement::Run run(addSetup_);
        run.number(setup.model).number(setup.threshold).text(setup.form).next();
        return run.numberAt(0);
    }

    void write(const Entry& entry, ReadSheetEntry& read, std::int64_t batch)
    {
        host::Sheet& sheet = read.sheet;
        if (isOwn_)
            sheet.number = lastSheet_ + 1;
        SqliteStatement::Run(countSheet_).number(sheet.number).number(batch).next();
        const std::int64_t setup = setupOf(read.setup);
        const SheetTexts texts = textsOf(read);
        SqliteStatement::Run(addSheet_)
            .number(entry.id)
            .text(entry.identity)
            .number(batch)
            .number(sheet.number)
            .text(entry.time)
            .number(setup)
            .text(texts.side1)
            .text(texts.side2)
            .number(sheet.side1TimingMarks)
            .number(sheet.side2TimingMarks)
            .text(texts.barcodes)
            .text(texts.record)
            .number(sheet.rejected)
            .number(sheet.printed)
            .text(texts.printedLines)
            .next();
    }

    void write(const UnreadMessage& message)
    {
        const std::string time = storeTime(std::chrono::system_clock::now());
        const std::string reason = validUtf8(message.reason);
        const std::string subject = validUtf8(message.subject);
        SqliteStatement::Run(addUnread_).text(time).text(subject).text(reason).blob(message.content).next();
    }

    void write(const Entry& entry, ReportEntry& report, std::int64_t batch)
    {
        if (isOwn_)
            report.afterSheet = lastSheet_;
        const std::string description = validUtf8(report.failure.description);
        const std::string source = validUtf8(report.failure.source);
        const std::string title = validUtf8(report.failure.title);
        SqliteStatement::Run(addFailure_)
            .number(entry.id)
            .text(entry.identity)
            .number(batch)
            .number(report.afterSheet)
            .text(entry.time)
            .number(report.failure.line)
            .number(report.failure.number)
            .number(report.failure.type)
            .text(description)
            .text(source)
            .text(title)
            .next();
    }

    const Clock& clock_;
    SqliteDatabase database_;
    bool tables_; // made before the statements that name them
    SqliteStatement nextId_;
    SqliteStatement addSetup_;
    SqliteStatement addBatch_;
    SqliteStatement countSheet_;
    SqliteStatement addSheet_;
    SqliteStatement addFailure_;
    SqliteStatement addUnread_;
    bool isOwn_ = true;
    Int32 lastSheet_ = 0;
};

SheetStore::SheetStore(std::filesystem::path file, const std::string& owner, Clock clock)
    : file_(std::move(file)), clock_(std::move(clock)), lock_(file_, owner)
{
    makeFile(file_);
    onStore(file_, [&] { writer_ = std::make_unique<Writer>(file_, clock_); });
}

SheetStore::~SheetStore() = default;

void SheetStore::add(Entry& entry)
{
    add(std::span(&entry, 1));
}

void SheetStore::add(std::span<Entry> entries)
{
    if (entries.empty())
        return;
    Waiting mine{.entries = entries, .own = entries.front().identity.empty()};
    waitFor(mine);
    if (!mine.problem)
        return;
    for (Entry& entry : entries) {
        if (mine.own)
            entry.identity.clear();
    }
    std::rethrow_exception(mine.problem);
}

void SheetStore::setAside(std::span<const UnreadMessage> messages)
{
    Waiting mine{.unread = messages};
    waitFor(mine);
    if (mine.problem)
        std::rethrow_exception(mine.problem);
}

void SheetStore::waitFor(Waiting& mine)
{
    std::unique_lock lock(mutex_);
    waiting_.push_back(&mine);
    while (!mine.done) {
        if (writing_) {
            written_.wait(lock);
            continue;
        }
        // This thread writes for all that wait now; whoever comes meanwhile waits for the next round.
        const std::vector<Waiting*> group = std::exchange(waiting_, {});
        writing_ = true;
        lock.unlock();
        std::exception_ptr problem;
        try {
            write(group);
        } catch (...) {
            problem = std::current_exception();
        }
        lock.lock();
        writing_ = false;
        for (Waiting* const waiting : group) {
            waiting->problem = problem;
            waiting->done = true;
        }
        written_.notify_all();
    }
}

void SheetStore::write(const std::vector<Waiting*>& group)
{
    try {
        onStore(file_, [&] {
            if (!writer_) {
                makeFile(file_);
                writer_ = std::make_unique<Writer>(file_, clock_);
            }
            writer_->write(group);
        });
    } catch (...) {
        writer_.reset();
        throw;
    }
}

} // namespace kel
