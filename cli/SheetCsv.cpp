#include "cli/SheetCsv.h"

#include "formats/JsonValue.h"
#include "host/Failure.h"
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

struct TextOfValue {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return trueOrFalse(value); }
    std::string operator()(Int32 value) const { return CStr(value); }
    std::string operator()(const std::string& value) const { return value; }
};

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

void SheetCsv::writeHeading()
{
    if (!headingWritten_)
        write_(csvLine(fields_ ? host::columnsOf(*fields_) : csvHeading()));
    headingWritten_ = true;
}

void SheetCsv::sheet(const host::Sheet& event)
{
    writeHeading();
    if (!fields_) {
        write_(csvLine(csvFields(event)));
        return;
    }
    std::vector<std::string> row;
    for (const host::FieldValue& value : host::rowOf(*fields_, event))
        row.push_back(std::visit(TextOfValue{}, value));
    write_(csvLine(row));
}

void SheetCsv::failure(const host::Failure& event)
{
    tell_(host::failureSentence(event) + "\n");
}

void SheetCsv::end(const host::BatchEnd& event)
{
    static_cast<void>(event);
    writeHeading();
}

} // namespace kel
