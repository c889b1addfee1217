// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/OmrSimulationState.h"

#include "formats/Json.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>

namespace kel {

namespace {

using Limits = std::numeric_limits<Int32>;

Int32 number(const Json& value, const JsonPlace& place)
{
    return readJsonLongNumber(value, place, Limits::min(), Limits::max());
}

/// The number of a call or a feed, from 1.
Int32 ordinal(const Json& value, const JsonPlace& place)
{
    return readJsonLongNumber(value, place, 1, Limits::max());
}

/// A code of the library: a number, or its hexadecimal text.
Int32 codeFrom(const Json& value, const JsonPlace& place)
{
    if (!value.is_string())
        return number(value, place);
    const std::string text = readJsonText(value, place);
    std::uint32_t code = 0;
    const char* const end = text.data() + text.size();
    const bool prefixed = text.size() > 2 && text.starts_with("0x");
    const auto parsed = prefixed ? std::from_chars(text.data() + 2, end, code, 16) : std::from_chars_result{};
    if (!prefixed || parsed.ptr != end || parsed.ec != std::errc())
        place.refuse("has to be a code such as \"0x40110000\", not " + value.dump());
    return static_cast<Int32>(code);
}

/// Reads a member of a record.
template <class Value>
JsonReader into(Value& target, Value (*read)(const Json&, const JsonPlace&))
{
    return [&target, read](const Json& value, const JsonPlace& place) { target = read(value, place); };
}

JsonReader intoPair(std::array<Int32, 2>& pair)
{
    return [&pair](const Json& value, const JsonPlace& place) {
        std::vector<Int32> values;
        readJsonArray(value, place,
                      [&](const Json& element, const JsonPlace& here) { values.push_back(number(element, here)); });
        if (values.size() != pair.size())
            place.refuse("has to have two values");
        std::ranges::copy(values, pair.begin());
    };
}

std::uint64_t hugeNumber(const Json& value, const JsonPlace& place)
{
    if (!value.is_number_unsigned())
        place.refuse("has to be a whole number of at least 0, not " + value.dump());
    return value.get<std::uint64_t>();
}

constexpr struct {
    const char* name;
    Int32 SheetShape::*member;
} kShapeMembers[] = {
    {"side1Rows", &SheetShape::side1Rows}, {"side1Columns", &SheetShape::side1Columns},
    {"side2Rows", &SheetShape::side2Rows}, {"side2Columns", &SheetShape::side2Columns},
    {"barcodes", &SheetShape::barcodes},
};

OmrSimulationState::RandomSheets randomSheetsFrom(const Json& value, const JsonPlace& place)
{
    OmrSimulationState::RandomSheets random;
    JsonKeyReaders readers = {{"seed", into(random.seeded.seed, hugeNumber)},
                              {"count", into(random.seeded.count, hugeNumber)},
                              {"copies", into(random.seeded.copies, readJsonTruth)}};
    for (const auto& [name, member] : kShapeMembers)
        readers.emplace_back(name, into(
                                       random.shape.*member, +[](const Json& size, const JsonPlace& here) {
                                           return readJsonLongNumber(size, here, 0, kOmrMostRows);
                                       }));
    readJsonObject(value, place, readers);
    return random;
}

SiteFault paperFaultFrom(const Json& value, const JsonPlace& place)
{
    const std::string text = readJsonText(value, place);
    try {
        const std::optional<SiteFault> fault = parseSiteFault(text);
        if (fault && isOmrPaperFault(fault->kind))
            return *fault;
    } catch (const std::invalid_argument& refusal) {
        place.refuse(refusal.what());
    }
    place.refuse("has to be double-feed, dirty-head or skewed-sheet, not \"" + text + "\"");
}

void demandMarks(const MarkRows& side, const JsonPlace& place)
{
    if (side.size() > static_cast<std::size_t>(kOmrMostRows))
        place.refuse("has more than 200 rows");
    for (const std::vector<Int16>& row : side) {
        for (const Int16 mark : row) {
            if (mark < 0 || mark > 255)
                place.refuse("has the mark " + std::to_string(mark) + ", and marks are 0 to 255");
        }
    }
}

std::vector<SimulatedSheet> sheetsFrom(const Json& value, const JsonPlace&)
{
    SheetFeeder feeder = SheetFeeder::fromJson(value.dump());
    std::vector<SimulatedSheet> sheets;
    while (!feeder.empty()) {
        sheets.push_back(feeder.take());
        const JsonPlace place{"sheet " + std::to_string(sheets.size())};
        demandMarks(sheets.back().side1, place.part("side1"));
        demandMarks(sheets.back().side2, place.part("side2"));
    }
    return sheets;
}

/// A list of objects, each read by `read`.
template <class Item>
JsonReader intoList(std::vector<Item>& items, Item (*read)(const Json&, const JsonPlace&))
{
    return [&items, read](const Json& value, const JsonPlace& place) {
        readJsonArray(value, place,
                      [&](const Json& object, const JsonPlace& here) { items.push_back(read(object, here)); });
    };
}

OmrSimulationState::FeedCode feedCodeFrom(const Json& value, const JsonPlace& place)
{
    OmrSimulationState::FeedCode entry;
    readJsonObject(value, place, {{"feed", into(entry.feed, ordinal)}, {"code", into(entry.code, codeFrom)}});
    if (!value.contains("feed") || !value.contains("code"))
        place.refuse("needs feed and code");
    return entry;
}

OmrSimulationState::Refusal refusalFrom(const Json& value, const JsonPlace& place)
{
    OmrSimulationState::Refusal refusal;
    readJsonObject(value, place,
                   {{"function", into(refusal.function, readJsonText)},
                    {"call", into(refusal.call, ordinal)},
                    {"result", into(refusal.result, number)},
                    {"code", into(refusal.code, codeFrom)}});
    if (!value.contains("function"))
        place.refuse("needs a function");
    return refusal;
}

constexpr SheetEvent kEvents[] = {SheetEvent::Fed,     SheetEvent::Empty,    SheetEvent::Jammed,  SheetEvent::Read,
                                  SheetEvent::Printed, SheetEvent::Rejected, SheetEvent::Ejected, SheetEvent::Ended};

SheetRecord recordFrom(const Json& value, const JsonPlace& place)
{
    SheetRecord record;
    const auto event = [&](const Json& name, const JsonPlace& here) {
        const std::string text = readJsonText(name, here);
        for (const SheetEvent known : kEvents) {
            if (text == nameOf(known))
                record.event = known;
        }
    };
    readJsonObject(value, place,
                   {{"event", event},
                    {"sheet", into(record.sheet, number)},
                    {"text", into(record.text, readJsonLineText)},
                    {"line", into(record.line, number)},
                    {"position", into(record.position, number)}});
    return record;
}

std::string dumped(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace

bool isOmrPaperFault(SiteFault::Kind kind)
{
    using Kind = SiteFault::Kind;
    return kind == Kind::DoubleFeed || kind == Kind::DirtyHead || kind == Kind::SkewedSheet;
}

std::string toJson(const OmrSimulationState& state)
{
    Json object;
    object["sheets"] = parseJson(toJson(state.sheets));
    if (state.randomSheets) {
        Json& random = object["randomSheets"];
        random["seed"] = state.randomSheets->seeded.seed;
        random["count"] = state.randomSheets->seeded.count;
        random["copies"] = state.randomSheets->seeded.copies;
        for (const auto& [name, member] : kShapeMembers)
            random[name] = state.randomSheets->shape.*member;
    }
    object["paperFaults"] = Json::array();
    for (const SiteFault& fault : state.paperFaults)
        object["paperFaults"].push_back(toText(fault));
    object["connected"] = state.connected;
    object["readingMethod"] = state.readingMethod;
    object["columns"] = state.columns;
    object["feedMode"] = state.feedMode;
    object["barcodeUnit"] = state.barcodeUnit;
    object["feedCodes"] = Json::array();
    for (const OmrSimulationState::FeedCode& entry : state.feedCodes)
        object["feedCodes"].push_back({{"feed", entry.feed}, {"code", entry.code}});
    object["refusals"] = Json::array();
    for (const OmrSimulationState::Refusal& entry : state.refusals)
        object["refusals"].push_back(
            {{"function", entry.function}, {"call", entry.call}, {"result", entry.result}, {"code", entry.code}});
    if (!state.logFile.empty())
        object["logFile"] = state.logFile.string();
    return dumped(object);
}

OmrSimulationState omrStateFromJson(std::string_view text)
{
    OmrSimulationState state;
    readJsonObject(
        parseJson(text), {},
        {{"sheets", into(state.sheets, sheetsFrom)},
         {"randomSheets",
          [&](const Json& random, const JsonPlace& place) { state.randomSheets = randomSheetsFrom(random, place); }},
         {"paperFaults", intoList(state.paperFaults, paperFaultFrom)},
         {"connected", into(state.connected, readJsonTruth)},
         {"readingMethod", intoPair(state.readingMethod)},
         {"columns", into(state.columns, number)},
         {"feedMode", intoPair(state.feedMode)},
         {"barcodeUnit", into(state.barcodeUnit, number)},
         {"feedCodes", intoList(state.feedCodes, feedCodeFrom)},
         {"refusals", intoList(state.refusals, refusalFrom)},
         {"logFile", [&](const Json& file, const JsonPlace& place) { state.logFile = readJsonText(file, place); }}});
    return state;
}

std::string toJson(const OmrSimulationReport& report)
{
    Json object;
    object["calls"] = report.calls;
    object["faults"] = report.faults;
    object["log"] = Json::array();
    for (const SheetRecord& record : report.log)
        object["log"].push_back(parseJson(toJson(record)));
    object["open"] = report.open;
    object["remaining"] = report.remaining;
    object["printStrings"] = report.printStrings;
    return dumped(object);
}

OmrSimulationReport omrReportFromJson(std::string_view text)
{
    const Json object = parseJson(text);
    OmrSimulationReport report;
    report.calls = object.at("calls").get<std::vector<std::string>>();
    report.faults = object.at("faults").get<std::vector<std::string>>();
    intoList(report.log, recordFrom)(object.at("log"), {"log"});
    report.open = object.at("open").get<bool>();
    report.remaining = object.at("remaining").get<Int32>();
    report.printStrings = object.at("printStrings").get<std::array<std::string, 3>>();
    return report;
}

} // namespace kel
