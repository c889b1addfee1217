// SPDX-License-Identifier: MIT
#include "store/SheetRows.h"

#include "formats/JsonValue.h"
#include "store/SheetJson.h"
#include "types/LineText.h"
#include "types/Text.h"

namespace kel {

namespace {

std::string marksOnly(const MarkArray& marks)
{
    std::string text;
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            if (marks(row, column) == 0)
                continue;
            if (!text.empty())
                text += ' ';
            text += CStr(row) + ":" + CStr(column) + "=" + CStr(marks(row, column));
        }
    }
    return text;
}

std::string joined(const TextArray& texts)
{
    std::string result;
    for (const std::string& text : texts.elements()) {
        if (!text.empty())
            result += (result.empty() ? "" : " ") + textOfLine(text);
    }
    return result;
}

std::string trueOrFalse(bool value)
{
    return value ? "true" : "false";
}

std::vector<std::string> joinedFields(std::vector<std::string> fields, const std::vector<std::string>& more)
{
    fields.insert(fields.end(), more.begin(), more.end());
    return fields;
}

} // namespace

std::string csvLine(const std::vector<std::string>& fields)
{
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            line += ',';
        if (fields[i].find_first_of(",\"\r\n") == std::string::npos)
            line += fields[i];
        else
            line += '"' + replaceAll(fields[i], "\"", "\"\"") + '"';
    }
    return line + "\n";
}

std::vector<std::string> csvHeading()
{
    return {"sheet", "rejected", "printed", "side1TimingMarks", "side2TimingMarks", "barcodes",
            "side1", "side2",    "record"};
}

std::vector<std::string> csvFields(const host::Sheet& sheet)
{
    return {CStr(sheet.number),
            trueOrFalse(sheet.rejected),
            trueOrFalse(sheet.printed),
            CStr(sheet.side1TimingMarks),
            CStr(sheet.side2TimingMarks),
            joined(sheet.barcodes),
            marksOnly(sheet.side1),
            marksOnly(sheet.side2),
            sheet.record ? jsonText(jsonRecord(*sheet.record)) : ""};
}

std::string csvEntryHeading()
{
    return csvLine(joinedFields({"station", "reader", "batch", "time"}, csvHeading()));
}

std::string csvEntry(const Entry& entry)
{
    const ReadSheetEntry* const read = entry.sheet();
    if (!read)
        return {};
    return csvLine(joinedFields({entry.origin.station, entry.origin.reader, entry.origin.batch, entry.time},
                                csvFields(read->sheet)));
}

} // namespace kel
