// SPDX-License-Identifier: MIT
#include "store/SheetStore.h"

#include "formats/JsonValue.h"
#include "platform/posix/Sqlite.h"
#include "store/EntryTexts.h"
#include "store/StorePlace.h"
#include "store/StoreProblem.h"
#include "store/StoreReserve.h"
#include "store/StoreSchema.h"
#include "types/Text.h"

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kel {

namespace {

// Nobody else writes but who forgets old sheets, a few at a time.
constexpr int kWritePatience = 1000;
// Changes a file only once, and then fails at once if somebody reads it.
constexpr const char* kLogFirst = "PRAGMA journal_mode = WAL";
constexpr mode_t kStoreMode = 0660;
constexpr int kWritesToLookAtReserve = 100;

/// The file beside a store with its last sheets.
std::filesystem::path logOf(const std::filesystem::path& place)
{
    return place.string() + "-wal";
}

bool isEmptyOrMissing(const std::filesystem::path& file)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    return error || size == 0;
}

/// What is left beside a place from which a store has gone belongs to whoever still has that one open: another store
/// has files of its own.
void removeFilesBeside(const std::filesystem::path& place)
{
    if (!isEmptyOrMissing(logOf(place)))
        return;
    std::error_code ignored;
    std::filesystem::remove(logOf(place), ignored);
    std::filesystem::remove(place.string() + "-shm", ignored);
}

/// A new store is there at once and whole, for others who look for it.
void makeFile(const std::filesystem::path& file)
{
    // One that exists is not opened: closing it again would give up the locks of others in this process.
    if (std::filesystem::exists(file))
        return;
    const std::filesystem::path place = placeOf(file);
    if (!isEmptyOrMissing(logOf(place)))
        throw StoreProblem("There is no store " + file.string() + ", but " + logOf(place).string() +
                           " holds sheets of the store that was there. Move it to where that store is now, and give it "
                           "the name of that store with -wal after it.");
    removeFilesBeside(place);
    const std::filesystem::path made = place.string() + "-new";
    for (const char* const left : {"-journal", "-wal", "-shm", ""})
        std::filesystem::remove(made.string() + left);
    const FileDescriptor created(
        retrying([&] { return ::open(made.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kStoreMode); }));
    {
        SqliteDatabase database(made, SqliteDatabase::Mode::Shared, kWritePatience);
        prepareStore(database, made);
        database.run(kLogFirst); // as long as nobody reads it
    }
    std::filesystem::rename(made, place);
    const std::filesystem::path folder = place.has_parent_path() ? place.parent_path() : std::filesystem::path(".");
    const FileDescriptor names(retrying([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    ::fsync(names.number());
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
          place_(retrying([&] { return ::open(file.c_str(), O_PATH | O_CLOEXEC); })),
          tables_(prepared(database_, file)),
          nextId_(database_, "UPDATE store SET last = last + 1 RETURNING last, identity, lower(hex(randomblob(4)))"),
          addSetup_(database_, "INSERT INTO setup (model, threshold, form) VALUES (?, ?, ?) ON CONFLICT DO UPDATE SET "
                               "model = excluded.model RETURNING id"),
          addBatch_(database_, "INSERT INTO batch (store, station, reader, name) VALUES (?, ?, ?, ?) ON CONFLICT DO "
                               "UPDATE SET name = excluded.name RETURNING id, sheets"),
          lastOfBatch_(database_,
                       "SELECT sheets FROM batch JOIN store ON batch.store = store.identity WHERE station = ? "
                       "AND reader = ? AND name = ?"),
          countSheet_(database_, "UPDATE batch SET sheets = max(sheets, ?) WHERE id = ?"),
          addSheet_(database_, "INSERT INTO sheet VALUES (?, ?, ?, ?, ?, ?, nullif(?, ''), nullif(?, ''), ?, ?, ?, "
                               "nullif(?, ''), ?, ?, ?) ON CONFLICT (identity) DO NOTHING"),
          addFailure_(database_, "INSERT INTO failure VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) "
                                 "ON CONFLICT (identity) DO NOTHING"),
          addUnread_(database_, "INSERT INTO unread (time, subject, reason, content) VALUES (?, ?, ?, ?) "
                                "ON CONFLICT DO NOTHING")
    {
    }

    /// Whether the file is gone from its place, or another one has taken it.
    [[nodiscard]] bool hasMoved() const noexcept { return database_.hasMoved(); }

    /// Sees that all sheets are in a file that has a name, and gives the sentence that says in which. The last sheets
    /// are still in the log, which stays where the file was.
    [[nodiscard]] std::string leave(const std::filesystem::path& file)
    {
        const std::string next = " In a new store in its place the numbers of each batch begin at 1 again.";
        if (hasName()) {
            SqliteStatement everything(database_, "PRAGMA wal_checkpoint(TRUNCATE)");
            SqliteStatement::Run row(everything);
            if (!row.next() || row.numberAt(0) != 0)
                throw StoreProblem("The store " + file.string() +
                                   " has been moved away while another program was reading its last sheets; they go "
                                   "to it when that one has done so.");
            return "The store " + file.string() + " has been moved away, with all its sheets." + next;
        }
        const std::string rescued =
            file.string() + "-" + storeTime(std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()));
        SqliteStatement copy(database_, "VACUUM INTO ?");
        SqliteStatement::Run(copy).text(rescued).next();
        database_.run("PRAGMA wal_checkpoint(TRUNCATE)");
        return "The store " + file.string() + " has been deleted or replaced. All its sheets are in " + rescued + "." +
               next;
    }

    void write(const std::vector<Waiting*>& group)
    {
        database_.demandOwnFile();
        SqliteTransaction transaction(database_);
        for (Waiting* const waiting : group) {
            isOwn_ = waiting->own;
            for (Entry& entry : waiting->entries)
                write(entry);
            for (const UnreadMessage& message : waiting->unread)
                write(message);
            if (waiting->asked)
                waiting->lastNumber = lastNumber(*waiting->asked);
        }
        transaction.commit();
    }

private:
    /// Whether the open file has a name at all, wherever.
    [[nodiscard]] bool hasName() const noexcept
    {
        struct stat status {};
        return ::fstat(place_.number(), &status) == 0 && status.st_nlink > 0;
    }

    static bool prepared(SqliteDatabase& database, const std::filesystem::path& file)
    {
        prepareStore(database, file);
        database.run(kLogFirst);
        database.run("PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON");
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
        // A store may be copied or put back, and goes on with the numbers that another one has given.
        entry.identity = entry.origin.store + "-" + std::to_string(entry.id) + "-" + run.textAt(2);
        entry.time = storeTime(clock_());
    }

    Int32 lastNumber(const Origin& origin)
    {
        SqliteStatement::Run run(lastOfBatch_);
        run.text(origin.station).text(origin.reader).text(origin.batch);
        return run.next() ? static_cast<Int32>(run.numberAt(0)) : 0;
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
    FileDescriptor place_; // leaves the locks alone
    bool tables_;          // made before the statements that name them
    SqliteStatement nextId_;
    SqliteStatement addSetup_;
    SqliteStatement addBatch_;
    SqliteStatement lastOfBatch_;
    SqliteStatement countSheet_;
    SqliteStatement addSheet_;
    SqliteStatement addFailure_;
    SqliteStatement addUnread_;
    bool isOwn_ = true;
    Int32 lastSheet_ = 0;
};

SheetStore::SheetStore(std::filesystem::path file, const std::string& owner, Clock clock, WhenBusy whenBusy)
    : file_(std::move(file)), clock_(std::move(clock)), lock_(file_, owner)
{
    try {
        onStore(file_, [&] { openFile(); });
    } catch (const StoreBusy&) {
        if (whenBusy == WhenBusy::Refuse)
            throw;
    }
}

void SheetStore::openFile()
{
    makeFile(file_);
    writer_ = std::make_unique<Writer>(file_, clock_);
}

SheetStore::~SheetStore()
{
    try {
        static_cast<void>(leaveMoved());
    } catch (const std::exception&) { // the log keeps what it has, and no other store is made there
    }
}

/// Whether the file had gone from its place; if so, it has all its sheets now, and is open no more.
std::optional<std::string> SheetStore::leaveMoved()
{
    if (!writer_ || !writer_->hasMoved())
        return std::nullopt;
    std::string sentence = writer_->leave(file_);
    removeFilesBeside(placeOf(file_));
    writer_.reset();
    return sentence;
}

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
    demand(mine);
}

void SheetStore::open()
{
    Waiting mine;
    demand(mine);
}

Int32 SheetStore::lastNumber(const Origin& origin)
{
    Waiting mine{.asked = &origin};
    demand(mine);
    return mine.lastNumber;
}

void SheetStore::demand(Waiting& mine)
{
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
    onStore(file_, [&] {
        if (const auto left = leaveMoved())
            throw StoreProblem(*left);
    });
    try {
        onStore(file_, [&] {
            if (!writer_)
                openFile();
            writer_->write(group);
        });
    } catch (...) {
        writer_.reset();
        throw;
    }
    if (writes_++ % kWritesToLookAtReserve == 0)
        makeReserve(file_);
}

} // namespace kel
