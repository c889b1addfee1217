// SPDX-License-Identifier: MIT
#include "recording/ReportSections.h"

#include <algorithm>

namespace kel {

bool isReport(std::string_view text)
{
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    return text.starts_with(kReportMark);
}

std::vector<ReportSection> reportSections(std::string_view text)
{
    std::vector<ReportSection> sections(1);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string_view line = text.substr(0, end);
        if (line.starts_with(kSectionMark)) {
            std::string_view name = line.substr(kSectionMark.size());
            name = name.substr(0, name.find_first_of("\r\n"));
            sections.push_back({.name = std::string(name), .text = {}});
        }
        sections.back().text += line;
        text.remove_prefix(end);
    }
    return sections;
}

std::string sessionOfReport(const std::string& text)
{
    if (!isReport(text))
        return text;
    const std::vector<ReportSection> sections = reportSections(text);
    const ReportSection* session = nullptr;
    for (const ReportSection& section : sections) {
        const bool isStart = section.name.starts_with(kStartSection);
        if (section.name == kSheetsSection || (isStart && (!session || session->name != kSheetsSection)))
            session = &section;
    }
    std::string result;
    for (const ReportSection& section : sections) {
        if (section.name.empty() || &section == session)
            result += section.text;
        else
            result.append(static_cast<std::size_t>(std::ranges::count(section.text, '\n')), '\n');
    }
    return result;
}

} // namespace kel
