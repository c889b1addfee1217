#include "simulators/sekonic_usb/OmrSimulationState.h"

#include "simulators/framework/Json.h"
#include "simulators/framework/SheetFeeder.h"

#include <charconv>
#include <limits>

namespace kel {

using namespace json;

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<Int32>::min();
constexpr std::int64_t kHighest = std::numeric_limits<Int32>::max();

Int32 number(const Json& value, const std::string& place, std::int64_t lowest = kLowest,
             std::int64_t highest = kHighest)
{
    return static_cast<Int32>(wholeNumber(value, place, lowest, highest));
}

bool truth(const Json& value, const std::string& place)
{
    if (!value.is_boolean())
        refuseJson(place, "is neither true nor false");
    return value.get<bool>();
}

/// A code of the library: a number, or its hexadecimal text.
Int32 codeFrom(const Json& value, const std::string& place)
{
    if (!value.is_string())
        return number(value, place);
    const std::string text = textOf(value, place);
    std::uint32_t code = 0;
    const char* const end = text.data() + text.size();
    const bool prefixed = text.size() > 2 && text.starts_with("0x");
    const auto parsed = prefixed ? std::from_chars(text.data() + 2, end, code, 16) : std::from_chars_result{};
    if (!prefixed || parsed.ptr != end || parsed.ec != std::errc())
        refuseJson(place, value.dump() + " is no code such as \"0x40110000\"");
    return static_cast<Int32>(code);
}

void takePair(std::array<Int32, 2>& pair, const Json& value, const std::string& place)
{
    demandArray(value, place);
    if (value.size() != 2)
        refuseJson(place, "has not two values");
    pair = {number(value[0], place), number(value[1], place)};
}

void demandMarks(const MarkRows& side, const std::string& place)
{
    if (side.size() > static_cast<std::size_t>(kOmrMostRows))
        refuseJson(place, "has more than 200 rows");
    for (const std::vector<Int16>& row : side) {
        for (const Int16 mark : row) {
            if (mark < 0 || mark > 255)
                refuseJson(place, std::to_string(mark) + " is no mark from 0 to 255");
        }
    }
}

std::vector<SimulatedSheet> sheetsFrom(const Json& value)
{
    SheetFeeder feeder = SheetFeeder::fromJson(value.dump());
    std::vector<SimulatedSheet> sheets;
    while (!feeder.empty()) {
        sheets.push_back(feeder.take());
        const std::string place = "sheet " + std::to_string(sheets.size());
        demandMarks(sheets.back().side1, place + ", side1");
        demandMarks(sheets.back().side2, place + ", side2");
    }
    return sheets;
}

/// A list of objects, each read by `read(object, place)`.
template <class Item, class Read>
std::vector<Item> listFrom(const Json& value, const std::string& name, Read&& read)
{
    demandArray(value, name);
    std::vector<Item> items;
    for (const Json& object : value)
        items.push_back(read(object, name + " " + std::to_string(items.size() + 1)));
    return items;
}

OmrSimulationState::FeedCode feedCodeFrom(const Json& value, const std::string& place)
{
    demandObject(value, place, {"feed", "code"});
    if (!value.contains("feed") || !value.contains("code"))
        refuseJson(place, "needs feed and code");
    return {number(value["feed"], place + ", feed", 1), codeFrom(value["code"], place + ", code")};
}

OmrSimulationState::Refusal refusalFrom(const Json& value, const std::string& place)
{
    demandObject(value, place, {"function", "call", "result", "code"});
    if (!value.contains("function"))
        refuseJson(place, "needs a function");
    OmrSimulationState::Refusal refusal;
    refusal.function = textOf(value["function"], place + ", function");
    if (value.contains("call"))
        refusal.call = number(value["call"], place + ", call", 1);
    if (value.contains("result"))
        refusal.result = number(value["result"], place + ", result");
    if (value.contains("code"))
        refusal.code = codeFrom(value["code"], place + ", code");
    return refusal;
}

constexpr SheetEvent kEvents[] = {SheetEvent::Fed,     SheetEvent::Empty,    SheetEvent::Jammed,  SheetEvent::Read,
                                  SheetEvent::Printed, SheetEvent::Rejected, SheetEvent::Ejected, SheetEvent::Ended};

SheetRecord recordFrom(const Json& value, const std::string& place)
{
    demandObject(value, place, {"event", "sheet", "text", "line", "position"});
    SheetRecord record;
    const std::string event = textOf(value.at("event"), place);
    for (const SheetEvent known : kEvents) {
        if (event == nameOf(known))
            record.event = known;
    }
    record.sheet = value.value("sheet", 0);
    record.text = value.value("text", "");
    record.line = value.value("line", 0);
    record.position = value.value("position", 0);
    return record;
}

std::string dumped(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace

std::string toJson(const OmrSimulationState& state)
{
    Json object;
    object["sheets"] = parseJson(toJson(state.sheets));
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
    const Json object = parseJson(text);
    demandObject(object, "state",
                 {"sheets", "connected", "readingMethod", "columns", "feedMode", "barcodeUnit", "feedCodes", "refusals",
                  "logFile"});
    OmrSimulationState state;
    for (const auto& [name, value] : object.items()) {
        if (name == "sheets")
            state.sheets = sheetsFrom(value);
        else if (name == "connected")
            state.connected = truth(value, name);
        else if (name == "readingMethod")
            takePair(state.readingMethod, value, name);
        else if (name == "columns")
            state.columns = number(value, name);
        else if (name == "feedMode")
            takePair(state.feedMode, value, name);
        else if (name == "barcodeUnit")
            state.barcodeUnit = number(value, name);
        else if (name == "feedCodes")
            state.feedCodes = listFrom<OmrSimulationState::FeedCode>(value, name, feedCodeFrom);
        else if (name == "refusals")
            state.refusals = listFrom<OmrSimulationState::Refusal>(value, name, refusalFrom);
        else
            state.logFile = textOf(value, name);
    }
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
    report.log = listFrom<SheetRecord>(object.at("log"), "log", recordFrom);
    report.open = object.at("open").get<bool>();
    report.remaining = object.at("remaining").get<Int32>();
    report.printStrings = object.at("printStrings").get<std::array<std::string, 3>>();
    return report;
}

} // namespace kel
