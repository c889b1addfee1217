// SPDX-License-Identifier: MIT
#pragma once

#include "strings/LanguageLoad.h"
#include "types/Export.h"

#include <atomic>
#include <mutex>

namespace kel {

inline constexpr const char* kLanguageFileName = "LKELReader81.txt";

/// The texts of a language file. The first text that is asked for loads them; a load that fails leaves nothing, and the
/// next call repeats it. Safe from several threads.
class KEL_INTERNAL LanguageDatabase {
public:
    explicit LanguageDatabase(std::string fileName = kLanguageFileName) : fileName_(std::move(fileName)) {}
    LanguageDatabase(const LanguageDatabase&) = delete;
    LanguageDatabase& operator=(const LanguageDatabase&) = delete;

    /// The text of an index, or what stands in its place. The index -1 of the call that loads the file gives an empty
    /// text; once the texts are there it lies outside the table as any other negative one.
    [[nodiscard]] std::string RTString(Int32 Index)
    {
        if (const StringTable* const table = table_.load(std::memory_order_acquire))
            return lookUp(*table, Index);
        return loadAndLookUp(Index);
    }

    /// Asks for a language, as "/L=NAME" on the command line does. To be called before the first text is asked for.
    void askFor(std::string language);

    /// The languages that the file has; none if it cannot be read.
    [[nodiscard]] std::vector<std::string> languageNames() const;

    /// The state that the loads so far have left.
    [[nodiscard]] LanguageState state() const;

private:
    [[nodiscard]] static std::string lookUp(const StringTable& table, Int32 Index)
    {
        return table.textOr(Index, "Invalid Index");
    }

    [[nodiscard]] std::string loadAndLookUp(Int32 Index);

    const std::string fileName_;
    std::string asked_;
    /// Held during a load. While a load shows a box, the host's pump may ask for a text on the same thread.
    mutable std::recursive_mutex loading_;
    LanguageState state_;
    std::unique_ptr<const StringTable> loaded_;
    std::atomic<const StringTable*> table_ = nullptr;
};

/// The database of the process, which VBLM_RTString asks.
[[nodiscard]] KEL_INTERNAL LanguageDatabase& languageDatabase();

/// Replaces the process's database with a new one, for tests. No other thread may be using the old one.
void renewLanguageDatabase(std::string fileName = kLanguageFileName);

} // namespace kel
