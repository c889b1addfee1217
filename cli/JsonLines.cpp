#include "cli/JsonLines.h"

#include "host/Failure.h"
#include "types/LineText.h"
#include "types/Text.h"

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

Json jsonItem(const DictionaryItem& item)
{
    if (const auto* number = std::get_if<Int32>(&item))
        return *number;
    if (const auto* text = std::get_if<std::string>(&item))
        return textOfLine(*text);
    return nullptr;
}

std::string keyName(const DictionaryKey& key)
{
    const auto* number = std::get_if<Int32>(&key);
    return number ? CStr(*number) : textOfLine(std::get<std::string>(key));
}

} // namespace

Json jsonRecord(const Dictionary& fields)
{
    Json record = Json::object();
    const std::vector<DictionaryKey> keys = fields.Keys();
    const std::vector<DictionaryItem> items = fields.Items();
    for (std::size_t i = 0; i < keys.size(); ++i)
        record[keyName(keys[i])] = jsonItem(items[i]);
    return record;
}

std::string jsonLine(const host::Sheet& event)
{
    Json line = {{"event", "sheet"},
                 {"sheet", event.number},
                 {"side1", jsonMarks(event.side1)},
                 {"side2", jsonMarks(event.side2)},
                 {"side1TimingMarks", event.side1TimingMarks},
                 {"side2TimingMarks", event.side2TimingMarks},
                 {"barcodes", jsonTexts(event.barcodes)},
                 {"rejected", event.rejected},
                 {"printed", event.printed}};
    if (event.record)
        line["record"] = jsonRecord(*event.record);
    return jsonText(line);
}

std::string jsonLine(const host::Failure& event)
{
    return jsonText({{"event", "failure"},
                     {"line", event.line},
                     {"number", event.number},
                     {"type", event.type},
                     {"description", jsonValue(event.description)},
                     {"source", jsonValue(event.source)},
                     {"title", jsonValue(event.title)}});
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
