// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/Bench.h"
#include "cli/check/CheckResult.h"

#include <string>
#include <utility>
#include <vector>

namespace kel {

// A report is a transcript with a longer head, in sections: each is the transcript of one opening of the line.
//
//     # report: kelreader check 8.1.0
//     # model: 13
//     # fact: latency-timer = 16
//     # section: question 1
//     # line: 19200,N,8,2
//     > 1B "QSTS" 0D
//     + 8.3
//     < "0000000  100"
//     # modem: cts dsr
//     # errors: 0 parity, 0 framing, 2 overrun
//     # result: {"stage":"answers","check":"the reader answers","status":"pass"}

[[nodiscard]] std::string sectionLine(const std::string& name);
/// The errors that a line counted and the state of its wires, if known; may be empty.
[[nodiscard]] std::string sectionEndLines(const Section& section);
[[nodiscard]] std::string factLine(const std::string& name, const std::string& value);
[[nodiscard]] std::string resultLine(const CheckResult& result);

/// The content of a report.
struct CheckReport {
    std::string head; ///< the lines before the first section
    std::vector<Section> sections;
    CheckResults results;
    ReportBench::Facts facts;
    bool masked = false;
    bool whole = false; ///< whether its last line is there
};

/// The last line of a report that was written to its end.
inline constexpr const char* kReportEnd = "# end of report\n";

/// UsageError, one sentence with the file's name, for a text that is none, or broken.
[[nodiscard]] CheckReport parseReport(const std::string& text, const std::string& fileName);

/// A result as JSON.
[[nodiscard]] std::string resultJson(const CheckResult& result);

} // namespace kel
