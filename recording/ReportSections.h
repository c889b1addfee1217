// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// How a section of a report begins; after it stands its name.
inline constexpr std::string_view kSectionMark = "# section: ";

/// How a report begins.
inline constexpr std::string_view kReportMark = "# report: ";

/// The names of the sections in which a whole session was held: sheets and, without them, the last start.
inline constexpr std::string_view kSheetsSection = "sheets";
inline constexpr std::string_view kStartSection = "start";

/// The text of a section, its mark included. The part before the first has no name.
struct ReportSection {
    std::string name;
    std::string text;
};

/// Whether a text is a report: a transcript in sections with a head for all of them.
[[nodiscard]] bool isReport(std::string_view text);

[[nodiscard]] std::vector<ReportSection> reportSections(std::string_view text);

/// A report as the transcript of one session: that of its sheets or, if there were none, of its last start. What
/// belongs to other sections is an empty line, so that lines keep their numbers. Any other text is as it is.
[[nodiscard]] std::string sessionOfReport(const std::string& text);

} // namespace kel
