// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"

#include "host/Failure.h"
#include "store/SheetJson.h"

namespace kel {

namespace {

Json jsonMarks(const MarkArray& marks)
{
    Json rows = Json::array();
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        Json cells = Json::array();
        for (Int32 column = 1; column <= marks.columns(); ++column)
            cells.push_back(marks(row, column));
        rows.push_back(std::move(cells));
    }
    return rows;
}

struct JsonOfValue {
    Json operator()(std::monostate) const { return nullptr; }
    template <class Value>
    Json operator()(const Value& value) const
    {
        return value;
    }
};

} // namespace

Json jsonSheet(const host::Sheet& event)
{
    Json line = {{"event", "sheet"},
                 {"sheet", event.number},
                 {"side1", jsonMarks(event.side1)},
                 {"side2", jsonMarks(event.side2)},
                 {"side1TimingMarks", event.side1TimingMarks},
                 {"side2TimingMarks", event.side2TimingMarks},
                 {"barcodes", jsonTexts(event.barcodes.elements())},
                 {"rejected", event.rejected},
                 {"printed", event.printed}};
    if (event.record)
        line["record"] = jsonRecord(*event.record);
    return line;
}

Json jsonFailure(const host::Failure& event)
{
    return {{"event", "failure"},
            {"line", event.line},
            {"number", event.number},
            {"type", event.type},
            {"description", jsonValue(event.description)},
            {"source", jsonValue(event.source)},
            {"title", jsonValue(event.title)}};
}

std::string jsonLine(const host::Sheet& event)
{
    return jsonText(jsonSheet(event));
}

std::string jsonLine(const host::Sheet& event, const std::vector<host::Field>& fields)
{
    const std::vector<std::string> columns = host::columnsOf(fields);
    const std::vector<host::FieldValue> row = host::rowOf(fields, event);
    Json line = {{"event", "sheet"}};
    for (std::size_t i = 0; i < columns.size(); ++i)
        line[columns[i]] = std::visit(JsonOfValue{}, row[i]);
    return jsonText(line);
}

std::string jsonLine(const host::Failure& event)
{
    return jsonText(jsonFailure(event));
}

std::string jsonLine(const host::BatchEnd& event)
{
    return jsonText({{"event", "end"},
                     {"started", event.started},
                     {"sheets", event.sheets},
                     {"cancelScan", event.cancelScan},
                     {"result", event.result}});
}

void JsonLines::failure(const host::Failure& event)
{
    write_(jsonLine(event) + "\n");
    if (tell_)
        tell_(host::failureSentence(event) + "\n");
}

} // namespace kel
