// SPDX-License-Identifier: MIT
#include "stream/EntryMessage.h"

#include "formats/JsonValue.h"
#include "store/SheetJson.h"
#include "store/StoredSheets.h"
#include "types/Text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kel {

namespace {

/// A name as a part of a subject, where dots part and "*" and ">" stand for others.
std::string partOf(std::string name)
{
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    };
    std::replace_if(
        name.begin(), name.end(), [&](char c) { return !isPlain(c); }, '_');
    return name.empty() ? "_" : name;
}

/// A form that is no JSON is a text.
std::string formText(const std::string& form)
{
    if (form.empty())
        return "null";
    try {
        return jsonText(parseJson(form));
    } catch (const JsonRefusal&) {
        return jsonText(validUtf8(form));
    }
}

std::string formOf(const Json& form)
{
    if (form.is_null())
        return {};
    return form.is_string() ? form.get<std::string>() : jsonText(form);
}

/// An object that is written member by member. What is JSON already goes in as it is.
class ObjectText {
public:
    ObjectText& json(const char* name, std::string_view text)
    {
        text_ += text_.size() > 1 ? ",\"" : "\"";
        text_ += name;
        text_ += "\":";
        text_ += text;
        return *this;
    }
    ObjectText& text(const char* name, std::string_view value) { return json(name, jsonText(validUtf8(value))); }
    ObjectText& number(const char* name, Int32 value) { return json(name, CStr(value)); }
    ObjectText& truth(const char* name, bool value) { return json(name, value ? "true" : "false"); }

    [[nodiscard]] std::string end() &&
    {
        text_ += '}';
        return std::move(text_);
    }

private:
    std::string text_ = "{";
};

std::string_view orNull(const std::string& text)
{
    return text.empty() ? std::string_view("null") : std::string_view(text);
}

std::string objectOf(const SheetTexts& sheet)
{
    ObjectText object;
    object.number("number", sheet.number)
        .number("model", sheet.setup.model)
        .number("threshold", sheet.setup.threshold)
        .json("side1", orNull(sheet.side1))
        .json("side2", orNull(sheet.side2))
        .number("side1TimingMarks", sheet.side1TimingMarks)
        .number("side2TimingMarks", sheet.side2TimingMarks)
        .json("barcodes", sheet.barcodes)
        .json("record", orNull(sheet.record))
        .truth("rejected", sheet.rejected)
        .truth("printed", sheet.printed)
        .json("printedLines", sheet.printedLines)
        .json("form", formText(sheet.setup.form));
    return std::move(object).end();
}

std::string objectOf(const ReportEntry& report)
{
    const host::Failure& failure = report.failure;
    ObjectText object;
    object.number("afterSheet", report.afterSheet)
        .number("line", failure.line)
        .number("number", failure.number)
        .number("type", failure.type)
        .text("description", failure.description)
        .text("source", failure.source)
        .text("title", failure.title);
    return std::move(object).end();
}

// Readers of one value each.

JsonReader into(std::string& target)
{
    return [&target](const Json& v, const JsonPlace& p) { target = readJsonText(v, p); };
}

JsonReader into(std::string& target, const char* what)
{
    return [&target, what](const Json& v, const JsonPlace& p) {
        target = readJsonText(v, p);
        if (target.empty())
            p.refuse(std::string("is empty; it has to be ") + what);
    };
}

JsonReader into(bool& target)
{
    return [&target](const Json& v, const JsonPlace& p) { target = readJsonTruth(v, p); };
}

JsonReader into(Int16& target)
{
    using Limits = std::numeric_limits<Int16>;
    return
        [&target](const Json& v, const JsonPlace& p) { target = readJsonNumber(v, p, Limits::min(), Limits::max()); };
}

JsonReader into(Int32& target, Int32 lowest = std::numeric_limits<Int32>::min())
{
    return [&target, lowest](const Json& v, const JsonPlace& p) {
        target = readJsonLongNumber(v, p, lowest, std::numeric_limits<Int32>::max());
    };
}

JsonReader into(MarkArray& target)
{
    return [&target](const Json& v, const JsonPlace&) { target = sideOf(v); };
}

JsonReader into(std::vector<std::string>& target)
{
    return [&target](const Json& v, const JsonPlace&) { target = lineTextsOf(v); };
}

/// An object that has each of the keys once and no other.
void readWhole(const Json& value, const JsonPlace& place, const JsonKeyReaders& readers)
{
    readJsonObject(value, place, readers);
    for (const auto& reader : readers) {
        if (!value.contains(reader.first))
            place.refuse("has no \"" + reader.first + "\"");
    }
}

ReadSheetEntry readSheet(const Json& value, const JsonPlace& place)
{
    ReadSheetEntry read;
    host::Sheet& sheet = read.sheet;
    Int32 model = 0;
    std::vector<std::string> barcodes;
    readWhole(value, place,
              {{"number", into(sheet.number, 1)},
               {"model",
                [&](const Json& v, const JsonPlace& p) { model = readJsonLongNumber(v, p, 0, kReaderTypeCount - 1); }},
               {"threshold", into(read.setup.threshold)},
               {"side1", into(sheet.side1)},
               {"side2", into(sheet.side2)},
               {"side1TimingMarks", into(sheet.side1TimingMarks)},
               {"side2TimingMarks", into(sheet.side2TimingMarks)},
               {"barcodes", into(barcodes)},
               {"record",
                [&](const Json& v, const JsonPlace&) {
                    if (!v.is_null())
                        sheet.record = recordOf(v);
                }},
               {"rejected", into(sheet.rejected)},
               {"printed", into(sheet.printed)},
               {"printedLines", into(sheet.printedLines)},
               {"form", [&](const Json& v, const JsonPlace&) { read.setup.form = formOf(v); }}});
    read.setup.model = static_cast<kelReaderType>(model);
    sheet.barcodes = TextArray::of(1, std::move(barcodes));
    return read;
}

ReportEntry readReport(const Json& value, const JsonPlace& place)
{
    ReportEntry report;
    host::Failure& failure = report.failure;
    readWhole(value, place,
              {{"afterSheet", into(report.afterSheet, 0)},
               {"line", into(failure.line)},
               {"number", into(failure.number)},
               {"type", into(failure.type)},
               {"description", into(failure.description)},
               {"source", into(failure.source)},
               {"title", into(failure.title)}});
    return report;
}

/// Of another version nothing is known, not even its other keys.
void demandVersion(const Json& message)
{
    if (!message.is_object())
        JsonPlace{}.refuse("has to be an object");
    const JsonPlace place = JsonPlace{}.key("version");
    if (!message.contains("version"))
        JsonPlace{}.refuse("has no \"version\"");
    const Int32 version = readJsonLongNumber(message["version"], place, 1, std::numeric_limits<Int32>::max());
    if (version != kMessageVersion)
        place.refuse("is " + CStr(version) + ", and this program reads version " + CStr(Int32{kMessageVersion}));
}

} // namespace

StreamMessage messageOf(const EntryTexts& entry, const std::string& root)
{
    const char* const kind = entry.sheet() ? "sheet" : "report";
    ObjectText message;
    message.number("version", kMessageVersion)
        .text("identity", entry.identity)
        .text("store", entry.origin.store)
        .text("station", entry.origin.station)
        .text("reader", entry.origin.reader)
        .text("batch", entry.origin.batch)
        .text("time", entry.time)
        .json(kind, entry.sheet() ? objectOf(*entry.sheet()) : objectOf(*entry.report()));
    return {.subject = root + "." + kind + "." + partOf(entry.origin.station) + "." + partOf(entry.origin.reader),
            .identity = entry.identity,
            .content = std::move(message).end()};
}

StreamMessage messageOf(const Entry& entry, const std::string& root)
{
    return messageOf(textsOf(entry), root);
}

Entry entryIn(std::string_view content)
{
    const Json message = parseJson(content);
    demandVersion(message);
    Entry entry;
    const bool isSheet = message.contains("sheet");
    if (isSheet == message.contains("report"))
        JsonPlace{}.refuse("has to hold either a \"sheet\" or a \"report\"");
    JsonKeyReaders readers = {{"version", [](const Json&, const JsonPlace&) {}},
                              {"identity", into(entry.identity, "the sheet's own")},
                              {"store", into(entry.origin.store, "the identity of a store")},
                              {"station", into(entry.origin.station)},
                              {"reader", into(entry.origin.reader)},
                              {"batch", into(entry.origin.batch)},
                              {"time", [&](const Json& v, const JsonPlace& p) {
                                   const auto time = storeTimeOf(readJsonText(v, p));
                                   if (!time)
                                       p.refuse("is not a time; write it as 2024-01-31T12:00:00.000Z");
                                   entry.time = *time;
                               }}};
    if (isSheet)
        readers.emplace_back("sheet", [&](const Json& v, const JsonPlace& p) { entry.what = readSheet(v, p); });
    else
        readers.emplace_back("report", [&](const Json& v, const JsonPlace& p) { entry.what = readReport(v, p); });
    readWhole(message, {}, readers);
    return entry;
}

} // namespace kel
