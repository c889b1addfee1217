// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/Sqlite.h"
#include "store/Entry.h"
#include "store/EntryTexts.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// Which entries to read; an empty text sets no condition.
struct StoreFilter {
    std::string reader{};
    std::string batch{};
    std::string since{};  ///< from this time on, as the store writes times
    bool failures = true; ///< the reports of the readers, too
};

/// Which sheets to search for; an empty text, or false, sets no condition.
struct SheetSearch {
    std::string reader{};
    std::string batch{};
    std::string since{};   ///< from this time on, as the store writes times
    std::string barcode{}; ///< a part of one of the barcodes
    bool rejected = false;
    bool blank = false;
};

/// What a search has found, newest first.
struct FoundSheets {
    std::vector<Entry> sheets{};
    std::int64_t next = 0; ///< where to go on: the sheets before this id have not been searched; 0 if there are none
};

/// A batch of a store.
struct StoredBatch {
    std::string station{};
    std::string reader{};
    std::string name{};
    std::int64_t sheets = 0; ///< the number of its last sheet
};

/// Reads a store, also while another process writes to it. Every failure is a StoreProblem.
class StoredSheets {
public:
    explicit StoredSheets(const std::filesystem::path& file);

    using Take = std::function<bool(const Entry& entry)>;
    /// Learns of a row that is not as it was written, and what is wrong with it: a sentence.
    using Damaged = std::function<void(std::int64_t id, const std::string& sentence)>;

    /// Hands out the entries after an id, in their order, until `take` answers false. The id of the last. A damaged row
    /// is left out if somebody is to learn of it, and a StoreProblem if nobody is.
    std::int64_t read(const StoreFilter& filter, std::int64_t after, const Take& take, const Damaged& damaged = {});

    using TakeTexts = std::function<bool(const EntryTexts& entry)>;

    /// The same for all entries as they are written, for whoever passes them on. What is JSON is sound.
    std::int64_t readTexts(std::int64_t after, const TakeTexts& take, const Damaged& damaged = {});

    /// Searches sheets with ids below `before`, or the newest of all if it is 0: at most this many, and no longer than
    /// a person waits for a page.
    [[nodiscard]] FoundSheets find(const SheetSearch& search, std::int64_t before, std::size_t most);

    /// The sheet of an id, if there is one.
    [[nodiscard]] std::optional<Entry> sheet(std::int64_t id);

    /// The last id that was assigned, to a sheet or a report.
    [[nodiscard]] std::int64_t lastId();

    /// Whether the file is gone from its place, or another one has taken it.
    [[nodiscard]] bool hasMoved() const noexcept { return database_.hasMoved(); }

    /// The batches with sheets that began last, newest first.
    [[nodiscard]] std::vector<StoredBatch> batches(std::size_t most);

private:
    [[nodiscard]] SqliteStatement statement(const char* text);
    using Visit = std::function<bool(std::int64_t id, bool isFailure)>;
    std::int64_t walk(const StoreFilter& filter, std::int64_t after, const Visit& visit);
    [[nodiscard]] std::optional<Entry> sheetOf(std::int64_t id, const Damaged& damaged);
    [[nodiscard]] std::optional<EntryTexts> textsAt(std::int64_t id, bool isFailure);
    [[nodiscard]] std::optional<EntryTexts> sheetTexts(std::int64_t id);
    [[nodiscard]] std::optional<EntryTexts> failureTexts(std::int64_t id);
    [[nodiscard]] bool isWhole(std::int64_t id, const Damaged& damaged, const std::function<void()>& read) const;

    std::filesystem::path file_;
    SqliteDatabase database_;
    SqliteStatement ids_;
    SqliteStatement sheetRow_;
    SqliteStatement failureRow_;
};

/// A time that a person has written, as the store writes times: a date, or date and time, of this place ("2024-01-31",
/// "2024-01-31 12:00"), or of UTC with a Z at its end. nullopt for any other text.
[[nodiscard]] std::optional<std::string> storeTimeOf(const std::string& text);

} // namespace kel
