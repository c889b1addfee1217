// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "host/Failure.h"
#include "types/Enumerations.h"

#include <cstdint>
#include <string>
#include <variant>

namespace kel {

/// Where a sheet comes from.
struct Origin {
    std::string store{}; ///< the identity of the store that saved it first
    std::string station{};
    std::string reader{};
    std::string batch{};

    friend bool operator==(const Origin&, const Origin&) = default;
};

/// The settings of the reader that read it.
struct Setup {
    kelReaderType model{};
    Int16 threshold = 0;
    std::string form{}; ///< JSON on one line, as a form file; empty if nothing is known
};

/// A sheet that was read. Its number runs within the batch, over all sessions of the reader.
struct ReadSheetEntry {
    Setup setup{};
    host::Sheet sheet{};
};

/// What a reader reported.
struct ReportEntry {
    Int32 afterSheet = 0; ///< the number of the batch's last sheet before it, 0 if there is none
    host::Failure failure{};
};

/// What a store holds: in the order in which it came, each with a number of its own.
struct Entry {
    std::int64_t id = 0;    ///< from 1, in the store's order; never used twice
    std::string identity{}; ///< the same in every store that it comes to
    Origin origin{};
    std::string time{}; ///< UTC, 2024-01-31T12:00:00.000Z
    std::variant<ReadSheetEntry, ReportEntry> what{};

    [[nodiscard]] const ReadSheetEntry* sheet() const { return std::get_if<ReadSheetEntry>(&what); }
    [[nodiscard]] const ReportEntry* report() const { return std::get_if<ReportEntry>(&what); }
};

/// A message from a stream without an entry.
struct UnreadMessage {
    std::string subject{};
    std::string reason{}; ///< why not, a sentence
    std::string content{};
};

} // namespace kel
