#pragma once

#include "platform/posix/Sqlite.h"
#include "store/Entry.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace kel {

/// Which entries are wanted; an empty text is no condition.
struct StoreFilter {
    std::string reader{};
    std::string batch{};
    std::string since{};  ///< from this time on, as the store writes times
    bool failures = true; ///< the reports of the readers, too
};

/// Reads a store, also while somebody writes to it. Every failure is a StoreProblem.
class StoredSheets {
public:
    explicit StoredSheets(const std::filesystem::path& file);

    using Take = std::function<bool(const Entry& entry)>;

    /// Hands out the entries after an id, in their order, until `take` answers false. The id of the last.
    std::int64_t read(const StoreFilter& filter, std::int64_t after, const Take& take);

    /// What became of old entries.
    struct Forgotten {
        std::int64_t sheets = 0; ///< that are gone
        std::int64_t kept = 0;   ///< sheets and reports that are old too, and that the stream does not have yet
    };

    /// Which old entries go.
    enum class Forget {
        SentAlone, ///< those that a stream is to have, and does not have yet, stay
        All,
    };

    /// Removes what is older than a time, a little at a time so that a writer does not wait.
    Forgotten forget(const std::string& before, Forget which);

private:
    [[nodiscard]] std::optional<Entry> sheetOf(std::int64_t id);
    [[nodiscard]] std::optional<Entry> failureOf(std::int64_t id);

    std::filesystem::path file_;
    SqliteDatabase database_;
};

/// A time that a person has written, as the store writes times: a date, or date and time, of this place
/// ("2024-01-31", "2024-01-31 12:00"), or of UTC with a Z at its end. Nothing for a text that is none.
[[nodiscard]] std::optional<std::string> storeTimeOf(const std::string& text);

} // namespace kel
