#include "cli/JsonLines.h"

#include "cli/FailureSentence.h"
#include "types/LineText.h"

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

Json jsonTexts(const TextArray& texts)
{
    Json elements = Json::array();
    for (const std::string& text : texts.elements())
        elements.push_back(textOfLine(text));
    return elements;
}

} // namespace

std::string jsonLine(const ScannedSheet& event)
{
    Json line = {{"event", "sheet"},
                 {"sheet", event.sheet},
                 {"side1", jsonMarks(event.side1)},
                 {"side2", jsonMarks(event.side2)},
                 {"side1TimingMarks", event.side1TimingMarks},
                 {"side2TimingMarks", event.side2TimingMarks},
                 {"barcodes", jsonTexts(event.barcodes)},
                 {"rejected", event.rejected},
                 {"printed", event.printed}};
    if (event.record)
        line["record"] = *event.record;
    return jsonText(line);
}

std::string jsonLine(const ReportedFailure& event)
{
    return jsonText({{"event", "failure"},
                     {"line", event.line},
                     {"number", event.number},
                     {"type", event.type},
                     {"description", jsonValue(event.description)},
                     {"source", jsonValue(event.source)},
                     {"title", jsonValue(event.title)}});
}

std::string jsonLine(const BatchEnd& event)
{
    return jsonText({{"event", "end"},
                     {"started", event.started},
                     {"sheets", event.sheets},
                     {"cancelScan", event.cancelScan},
                     {"result", event.result}});
}

void JsonLines::failure(const ReportedFailure& event)
{
    write_(jsonLine(event) + "\n");
    if (tell_)
        tell_(failureSentence(event) + "\n");
}

} // namespace kel
