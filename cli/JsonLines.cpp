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
