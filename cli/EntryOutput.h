// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"
#include "store/Entry.h"

#include <functional>
#include <memory>
#include <string>

namespace kel {

/// Writes what a store holds.
class EntryOutput {
public:
    using Write = std::function<void(const std::string& text)>;

    virtual ~EntryOutput() = default;
    virtual void entry(const Entry& entry) = 0;
    /// Before the first entry, and if there is none.
    virtual void begin() {}
};

/// As lines of JSON, as a table for a spreadsheet (csv), or for people (table). The latter two have only sheets.
[[nodiscard]] std::unique_ptr<EntryOutput> entryOutput(const std::string& format, EntryOutput::Write write);

/// The line of JSON of an entry: a scan's line with where it comes from.
[[nodiscard]] Json jsonEntry(const Entry& entry);

} // namespace kel
