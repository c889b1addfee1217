// SPDX-License-Identifier: MIT
#include "station/StateText.h"

#include "formats/Columns.h"
#include "formats/JsonValue.h"
#include "store/SheetStore.h"
#include "types/Text.h"

#include <array>
#include <cmath>
#include <ctime>

namespace kel {

namespace {

constexpr std::array kActivities = {Activity::Starting, Activity::Reading, Activity::Idle,
                                    Activity::Failed,   Activity::Storing, Activity::Stopped};

/// A value of a label: quotes, backslashes and line ends are written with a backslash.
std::string label(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (character == '\\' || character == '"')
            escaped += '\\';
        if (character == '\n')
            escaped += "\\n";
        else
            escaped += character;
    }
    return "\"" + escaped + "\"";
}

/// A metric with a line a reader.
class Metric {
public:
    Metric(std::string& text, std::string name, const char* type, const char* help)
        : text_(text), name_(std::move(name))
    {
        text_ += "# HELP " + name_ + " " + help + "\n# TYPE " + name_ + " " + type + "\n";
    }

    void value(const std::string& labels, std::int64_t number) { value(labels, std::to_string(number)); }
    void value(const std::string& labels, const std::string& number)
    {
        text_ += name_ + "{" + labels + "} " + number + "\n";
    }

private:
    std::string& text_;
    std::string name_;
};

/// A time of the state, 2024-01-31T12:00:00.250Z, as seconds since 1970.
std::string epochSeconds(const std::string& time)
{
    std::tm parts{};
    const char* const fraction = ::strptime(time.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    const std::string milliseconds = fraction ? std::string(fraction).substr(0, sizeof ".250" - 1) : "";
    return std::to_string(::timegm(&parts)) + milliseconds;
}

/// Null for a station that has no stream.
Json jsonStream(const std::optional<StreamState>& stream)
{
    if (!stream)
        return nullptr;
    return {{"up", stream->isUp}, {"unsent", stream->unsent}, {"problem", validUtf8(stream->problem)}};
}

std::string streamLine(const Json& stream)
{
    const auto problem = stream.at("problem").get<std::string>();
    const auto unsent = stream.at("unsent").get<std::int64_t>();
    return std::string("Stream: ") + (stream.at("up").get<bool>() ? "up" : "down") + ", " +
           (unsent < 0 ? "unknown how many" : std::to_string(unsent)) + " not sent yet" +
           (problem.empty() ? "" : "\n    " + problem) + "\n";
}

} // namespace

Json jsonState(const StationState& state)
{
    Json readers = Json::array();
    for (const ReaderState& reader : state.readers) {
        Json row = {{"name", reader.name},
                    {"model", reader.model},
                    {"state", nameOf(reader.activity)},
                    {"since", storeTime(reader.since)},
                    {"batch", validUtf8(reader.batch)},
                    {"sheets", reader.sheets},
                    {"rejected", reader.rejected},
                    {"failures", reader.failures}};
        row["sheetsPerMinute"] = std::round(reader.sheetsPerMinute * 10) / 10;
        row["lastSheet"] = reader.lastSheet ? Json(storeTime(*reader.lastSheet)) : Json(nullptr);
        row["problem"] = validUtf8(reader.problem);
        row["advice"] = validUtf8(reader.advice);
        readers.push_back(std::move(row));
    }
    return {{"station", state.station},        {"since", storeTime(state.since)},
            {"store", validUtf8(state.store)}, {"storeProblem", validUtf8(state.storeProblem)},
            {"storeBytes", state.storeBytes},  {"stream", jsonStream(state.stream)},
            {"watchers", state.watchers},      {"readers", std::move(readers)}};
}

std::string stateTable(const Json& state)
{
    constexpr std::size_t kWidths[] = {15, 25, 9, 25, 8, 9, 9};
    std::string text = "Station " + state.at("station").get<std::string>() + ", since " +
                       state.at("since").get<std::string>() + ", store " + state.at("store").get<std::string>() + "\n";
    if (const auto problem = state.at("storeProblem").get<std::string>(); !problem.empty())
        text += problem + "\n";
    if (const Json& stream = state.at("stream"); !stream.is_null())
        text += streamLine(stream);
    const auto row = [&](const std::array<std::string, 7>& fields) {
        std::string line;
        for (std::size_t i = 0; i < fields.size(); ++i)
            line += padded(fields[i], kWidths[i]) + " ";
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    };
    row({"READER", "MODEL", "STATE", "SINCE", "SHEETS", "REJECTED", "A MINUTE"});
    for (const Json& reader : state.at("readers")) {
        row({reader.at("name").get<std::string>(), reader.at("model").get<std::string>(),
             reader.at("state").get<std::string>(), reader.at("since").get<std::string>(),
             std::to_string(reader.at("sheets").get<std::int64_t>()),
             std::to_string(reader.at("rejected").get<std::int64_t>()), reader.at("sheetsPerMinute").dump()});
        const auto problem = reader.at("problem").get<std::string>();
        const auto advice = reader.at("advice").get<std::string>();
        if (!problem.empty())
            text += "    last failure: " + problem + "\n";
        if (!advice.empty())
            text += "    what to do: " + advice + "\n";
    }
    return text;
}

std::string stateMetrics(const Json& state)
{
    std::string text;
    const std::string station = "station=" + label(state.at("station").get<std::string>());
    const auto ofReader = [&](const Json& reader) {
        return station + ",reader=" + label(reader.at("name").get<std::string>());
    };
    const auto count = [&](const char* name, const char* field, const char* help) {
        Metric metric(text, name, "counter", help);
        for (const Json& reader : state.at("readers"))
            metric.value(ofReader(reader), reader.at(field).get<std::int64_t>());
    };
    const auto gauge = [&](const char* name, const char* help) { return Metric(text, name, "gauge", help); };
    count("kelreader_sheets_total", "sheets", "Sheets that were read and stored since the station started.");
    count("kelreader_rejected_total", "rejected", "Sheets that were read, stored and rejected.");
    count("kelreader_failures_total", "failures", "Failures that were reported; one that lasts counts once.");
    Metric states = gauge("kelreader_reader_state", "1 for the reader's current state.");
    for (const Json& reader : state.at("readers")) {
        for (const Activity activity : kActivities)
            states.value(ofReader(reader) + ",state=" + label(std::string(nameOf(activity))),
                         reader.at("state").get<std::string>() == nameOf(activity) ? 1 : 0);
    }
    Metric lastSheets =
        gauge("kelreader_reader_last_sheet_timestamp_seconds", "When the reader's last sheet was stored.");
    for (const Json& reader : state.at("readers")) {
        if (reader.at("lastSheet").is_string())
            lastSheets.value(ofReader(reader), epochSeconds(reader.at("lastSheet").get<std::string>()));
    }
    gauge("kelreader_station_start_timestamp_seconds", "When the station started.")
        .value(station, epochSeconds(state.at("since").get<std::string>()));
    gauge("kelreader_store_problem", "1 while the store accepts no sheets.")
        .value(station, state.at("storeProblem").get<std::string>().empty() ? 0 : 1);
    if (const Json& stream = state.at("stream"); !stream.is_null()) {
        gauge("kelreader_stream_up", "1 while the stream accepts sheets.")
            .value(station, stream.at("up").get<bool>() ? 1 : 0);
        if (const auto unsent = stream.at("unsent").get<std::int64_t>(); unsent >= 0)
            gauge("kelreader_stream_unsent", "Sheets and reports of the store that the stream does not have.")
                .value(station, unsent);
    }
    gauge("kelreader_store_size_bytes", "Size of the store on the disk.")
        .value(station, state.at("storeBytes").get<std::int64_t>());
    gauge("kelreader_page_watchers", "Pages that watch the station.")
        .value(station, state.at("watchers").get<std::int64_t>());
    return text;
}

} // namespace kel
