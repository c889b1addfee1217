// SPDX-License-Identifier: MIT
#pragma once

#include "store/Entry.h"

#include <cstdint>
#include <string>
#include <variant>

namespace kel {

/// A sheet as its row has it: what is JSON there stays text, for whoever passes it on.
struct SheetTexts {
    Setup setup{};
    Int32 number = 0;
    std::string side1{}; ///< empty for a side without bounds
    std::string side2{};
    Int16 side1TimingMarks = -1;
    Int16 side2TimingMarks = -1;
    std::string barcodes{};
    std::string record{}; ///< empty for a sheet without one
    bool rejected = false;
    bool printed = false;
    std::string printedLines{};
};

/// An entry as its row has it.
struct EntryTexts {
    std::int64_t id = 0;
    std::string identity{};
    Origin origin{};
    std::string time{};
    std::variant<SheetTexts, ReportEntry> what{};

    [[nodiscard]] const SheetTexts* sheet() const { return std::get_if<SheetTexts>(&what); }
    [[nodiscard]] const ReportEntry* report() const { return std::get_if<ReportEntry>(&what); }
};

[[nodiscard]] SheetTexts textsOf(const ReadSheetEntry& read);
[[nodiscard]] EntryTexts textsOf(const Entry& entry);

/// The values of the texts. JsonRefusal for a text that does not fit.
[[nodiscard]] Entry entryOf(EntryTexts texts);

/// JsonRefusal for a text that is not JSON.
void demandJson(const EntryTexts& texts);

} // namespace kel
