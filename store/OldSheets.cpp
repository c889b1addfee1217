// SPDX-License-Identifier: MIT
#include "store/OldSheets.h"

#include "platform/posix/Sqlite.h"
#include "store/StorePlace.h"
#include "store/StoreProblem.h"
#include "store/StoreReserve.h"
#include "store/StoreSchema.h"

#include <utility>

namespace kel {

namespace {

constexpr int kForgetPatience = 30'000;

/// What is removed at once.
struct Portion {
    int entries = 0;
    int pages = 0;
    bool emptiesLog = false; ///< afterwards, so that the next portion needs no more room
};

// Far less than a writer waits for.
constexpr Portion kUsualPortion{.entries = 100, .pages = 500};
// No sheets are so large that ten of them do not go into the reserve.
constexpr Portion kSmallPortion{.entries = 10, .pages = 100, .emptiesLog = true};

/// Removes old entries from an open store.
class Forgetting {
public:
    Forgetting(const std::filesystem::path& file, Portion portion, const ForgetPause& pause)
        : database_(existingStore(file), SqliteDatabase::Mode::Shared, kForgetPatience), portion_(portion),
          pause_(pause)
    {
        checkStore(database_, file);
        if (portion_.emptiesLog)
            emptyLog();
    }

    void run(const std::string& before, Forget which, Forgotten& forgotten)
    {
        forgotten.kept = 0;
        for (const char* table : {"sheet", "failure"})
            forgetIn(table, before, which, forgotten);
        giveBackPages();
        emptyLog();
    }

private:
    void forgetIn(const std::string& table, const std::string& before, Forget which, Forgotten& forgotten)
    {
        // The mark may move meanwhile.
        const std::string old = " FROM " + table + " WHERE time < ?1";
        const std::string sent = old + " AND (?2 OR NOT (SELECT sends FROM store) OR " +
                                 "(id <= (SELECT sent FROM store) AND id NOT IN (SELECT id FROM held)))";
        SqliteStatement removal(database_, ("DELETE FROM " + table + " WHERE id IN (SELECT id" + sent + " LIMIT " +
                                            std::to_string(portion_.entries) + ")")
                                               .c_str());
        int gone = 0;
        do {
            inPortion([&] {
                SqliteTransaction transaction(database_);
                SqliteStatement::Run(removal).text(before).number(which == Forget::All).next();
                gone = database_.changes();
                transaction.commit();
            });
            if (table == "sheet")
                forgotten.sheets += gone;
        } while (gone == portion_.entries);
        SqliteStatement rest(database_, ("SELECT count(*)" + old).c_str());
        SqliteStatement::Run row(rest);
        row.text(before).next();
        forgotten.kept += row.numberAt(0);
    }

    /// Makes the file smaller.
    void giveBackPages()
    {
        const std::string some = "PRAGMA incremental_vacuum(" + std::to_string(portion_.pages) + ")";
        std::int64_t free = freePages();
        for (std::int64_t before = free + 1; free > 0 && free < before; free = freePages()) {
            before = free;
            inPortion([&] { database_.run(some.c_str()); });
        }
    }

    [[nodiscard]] std::int64_t freePages() { return database_.numberOf("PRAGMA freelist_count"); }

    template <class Work>
    void inPortion(Work&& work)
    {
        const auto begin = std::chrono::steady_clock::now();
        work();
        if (portion_.emptiesLog)
            emptyLog();
        pause_(std::chrono::steady_clock::now() - begin);
    }

    /// The first checkpoint holds nobody up, and leaves little to the second.
    void emptyLog() { database_.run("PRAGMA wal_checkpoint(PASSIVE); PRAGMA wal_checkpoint(TRUNCATE)"); }

    SqliteDatabase database_;
    Portion portion_;
    const ForgetPause& pause_;
};

/// Whether the disk had room for the work.
template <class Work>
bool hadRoom(Work&& work)
{
    try {
        work();
        return true;
    } catch (const SqliteFailure& failure) {
        if (!failure.isFull())
            throw;
        return false;
    }
}

} // namespace

Forgotten forgetOldSheets(const std::filesystem::path& file, const std::string& before, Forget which,
                          const ForgetPause& pause)
{
    Forgotten forgotten;
    onStore(file, [&] {
        const auto forget = [&](const Portion& portion) {
            return hadRoom([&] { Forgetting(file, portion, pause).run(before, which, forgotten); });
        };
        if (forget(kUsualPortion))
            return;
        const ReleasedReserve reserve(file);
        if (!reserve || !forget(kSmallPortion))
            throw StoreProblem(
                "The disk of the store " + file.string() +
                " is full, and to remove sheets needs some room, too. Make room for 10 MB there by other "
                "means, and try again.");
    });
    return forgotten;
}

} // namespace kel
