// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"

#include <string>
#include <vector>

namespace kel {

/// Takes the marks, barcodes and record fields out of a report's lines, and leaves the protocol: what ends rows and
/// replies, lengths and times stay.
class SheetMask {
public:
    explicit SheetMask(kelReaderType model) : model_(model) {}

    /// The next line of the report, with its end. What may be mailed by now comes back: a sheet's lines when the sheet
    /// is whole.
    [[nodiscard]] std::string masked(const std::string& line);

private:
    [[nodiscard]] std::string takeReply();
    [[nodiscard]] bool bringsSheet(const std::string& sent) const;

    kelReaderType model_;
    std::string before_;               // what the host sent last
    bool inSheets_ = false;            // the section is one with sheets
    bool ofSheet_ = false;             // what comes now is a sheet's
    std::vector<std::string> waiting_; // lines of a sheet that may not be whole
};

/// The bytes that bring a sheet, with the marks, barcodes and fields in them blanked. `sent` is what they came upon.
[[nodiscard]] std::string maskedSheet(kelReaderType model, const std::string& sent, std::string bytes);

} // namespace kel
