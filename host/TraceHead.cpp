// SPDX-License-Identifier: MIT
#include "host/TraceHead.h"

#include "formats/JsonValue.h"
#include "host/Batch.h"
#include "host/ModelLookup.h"
#include "host/PropertyTable.h"
#include "host/UsageError.h"
#include "types/Text.h"

#include <charconv>
#include <sstream>

namespace kel::host {

namespace {

std::string propertyText(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/// The settings of a reader that differ from its model's defaults. The model has a key of its own, and a session begins
/// without a stop.
void addSettings(TraceLog::Head& head, const clsKELReader& reader)
{
    clsKELReader usual;
    if (usual.Profiles()->Exists(CStr(reader.ReaderType()))) // a number that was set may be no model's
        usual.LoadDefaults(reader.ReaderType());
    for (const PropertyRow& row : readerProperties()) {
        if (row.name == "ReaderType" || row.name == "CancelScan")
            continue;
        const Json value = row.get(reader);
        if (value != row.get(usual))
            head.emplace_back("set", std::string(row.name) + "=" + propertyText(value));
    }
}

/// A print text whose date is the session's.
std::string datedText(const std::string& text)
{
    return replaceAll(text, "{date}", filledIn("{date}", 0, ""));
}

/// The values of a head, each with its place for messages.
class HeadReader {
public:
    HeadReader(const Transcript& transcript, const std::string& text, const std::string& fileName)
        : transcript_(transcript), text_(text), fileName_(fileName)
    {
    }

    template <class Use>
    void use(const std::string& key, Use take) const
    {
        const std::optional<std::string> value = transcript_.value(key);
        if (!value)
            return;
        try {
            take(*value);
        } catch (const UsageError& error) {
            throw UsageError(fileName_ + ", line " + std::to_string(lineOf(key)) + ": " + error.what());
        }
    }

    template <class Number>
    [[nodiscard]] static Number number(const std::string& text)
    {
        Number value{};
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size())
            throw UsageError("'" + text + "' is not a number in range.");
        return value;
    }

private:
    [[nodiscard]] int lineOf(const std::string& key) const
    {
        std::istringstream lines(text_);
        int number = 0;
        for (std::string line; std::getline(lines, line);) {
            ++number;
            const std::size_t begin = line.find_first_not_of(" \t#");
            if (begin != std::string::npos && line.compare(begin, key.size() + 1, key + ":") == 0)
                return number;
        }
        return number;
    }

    const Transcript& transcript_;
    const std::string& text_;
    const std::string& fileName_;
};

} // namespace

TraceLog::Head traceHead(const Request& request, const clsKELReader& reader)
{
    TraceLog::Head head{{"model", CStr(static_cast<Int32>(reader.ReaderType()))}};
    if (!request.form.source.empty())
        head.emplace_back("form", request.form.source);
    else if (request.form.side1Rows)
        head.emplace_back("form", sizesText(request.form));
    if (request.answerKey && !request.answerKey->source.empty())
        head.emplace_back("answer-key", request.answerKey->source);
    addSettings(head, reader);
    if (request.sheetsBefore != 0)
        head.emplace_back("sheets-before", CStr(request.sheetsBefore));
    if (request.maxSheets != -1)
        head.emplace_back("max-sheets", CStr(request.maxSheets));
    if (request.rejectBlank)
        head.emplace_back("reject-blank", "true");
    std::string sheets;
    for (const Int32 sheet : request.rejectSheets)
        sheets += (sheets.empty() ? "" : ",") + CStr(sheet);
    if (!sheets.empty())
        head.emplace_back("reject-sheets", sheets);
    const Print& print = request.print;
    const std::optional<std::string>* texts[] = {&print.print1, &print.print2, &print.print3};
    for (int i = 0; i < 3; ++i) {
        if (*texts[i])
            head.emplace_back("print" + std::to_string(i + 1), datedText(**texts[i]));
    }
    if (print.distance)
        head.emplace_back("print-distance", CStr(*print.distance));
    return head;
}

Request requestOfTranscript(const Transcript& transcript, const std::string& text, const std::string& fileName)
{
    Request request;
    request.port = Int16{1};
    request.assignments = transcript.values("set");
    const HeadReader head(transcript, text, fileName);
    head.use("model", [&](const std::string& value) { request.model = modelNamed(value); });
    if (!request.model)
        throw UsageError(fileName + ": no model; write '# model: N' above the first line of the dialogue.");
    head.use("form", [&](const std::string& value) { request.form = parseForm(value, "the form"); });
    head.use("answer-key",
             [&](const std::string& value) { request.answerKey = parseAnswerKey(value, "the answer key"); });
    head.use("port", [&](const std::string& value) { request.port = HeadReader::number<Int16>(value); });
    head.use("sheets-before",
             [&](const std::string& value) { request.sheetsBefore = HeadReader::number<Int32>(value); });
    head.use("max-sheets", [&](const std::string& value) { request.maxSheets = HeadReader::number<Int32>(value); });
    head.use("reject-blank", [&](const std::string&) { request.rejectBlank = true; });
    head.use("reject-sheets", [&](const std::string& value) {
        for (const std::string& sheet : split(value, ','))
            request.rejectSheets.insert(HeadReader::number<Int32>(sheet));
    });
    head.use("print1", [&](const std::string& value) { request.print.print1 = value; });
    head.use("print2", [&](const std::string& value) { request.print.print2 = value; });
    head.use("print3", [&](const std::string& value) { request.print.print3 = value; });
    head.use("print-distance",
             [&](const std::string& value) { request.print.distance = HeadReader::number<Int16>(value); });
    return request;
}

} // namespace kel::host
