#include "station/StateText.h"

#include "formats/JsonValue.h"
#include "store/SheetStore.h"
#include "types/Text.h"

#include <algorithm>
#include <array>

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

    void value(const std::string& labels, std::int64_t number)
    {
        text_ += name_ + "{" + labels + "} " + std::to_string(number) + "\n";
    }

private:
    std::string& text_;
    std::string name_;
};

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
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
    return std::string("Stream: ") + (stream.at("up").get<bool>() ? "up" : "down") + ", " +
           std::to_string(stream.at("unsent").get<std::int64_t>()) + " not sent yet" +
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
        row["lastSheet"] = reader.lastSheet ? Json(storeTime(*reader.lastSheet)) : Json(nullptr);
        row["problem"] = validUtf8(reader.problem);
        row["advice"] = validUtf8(reader.advice);
        readers.push_back(std::move(row));
    }
    return {{"station", state.station},           {"since", storeTime(state.since)},
            {"store", validUtf8(state.store)},    {"storeProblem", validUtf8(state.storeProblem)},
            {"stream", jsonStream(state.stream)}, {"readers", std::move(readers)}};
}

std::string stateTable(const Json& state)
{
    constexpr std::size_t kWidths[] = {16, 26, 10, 26, 9, 10};
    std::string text = "Station " + state.at("station").get<std::string>() + ", since " +
                       state.at("since").get<std::string>() + ", store " + state.at("store").get<std::string>() + "\n";
    if (const auto problem = state.at("storeProblem").get<std::string>(); !problem.empty())
        text += problem + "\n";
    if (const Json& stream = state.at("stream"); !stream.is_null())
        text += streamLine(stream);
    const auto row = [&](const std::array<std::string, 6>& fields) {
        std::string line;
        for (std::size_t i = 0; i < fields.size(); ++i)
            line += padded(fields[i], kWidths[i]);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    };
    row({"READER", "MODEL", "STATE", "SINCE", "SHEETS", "REJECTED"});
    for (const Json& reader : state.at("readers")) {
        row({reader.at("name").get<std::string>(), reader.at("model").get<std::string>(),
             reader.at("state").get<std::string>(), reader.at("since").get<std::string>(),
             std::to_string(reader.at("sheets").get<std::int64_t>()),
             std::to_string(reader.at("rejected").get<std::int64_t>())});
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
    count("kelreader_sheets_total", "sheets", "Sheets that were read and stored since the station began.");
    count("kelreader_rejected_total", "rejected", "Those of them that were rejected.");
    count("kelreader_failures_total", "failures", "Failures that were reported; one that lasts counts once.");
    Metric states(text, "kelreader_reader_state", "gauge", "1 for the state in which the reader is.");
    for (const Json& reader : state.at("readers")) {
        for (const Activity activity : kActivities)
            states.value(ofReader(reader) + ",state=" + label(std::string(nameOf(activity))),
                         reader.at("state").get<std::string>() == nameOf(activity) ? 1 : 0);
    }
    Metric(text, "kelreader_store_problem", "gauge", "1 while the store takes no sheets.")
        .value(station, state.at("storeProblem").get<std::string>().empty() ? 0 : 1);
    if (const Json& stream = state.at("stream"); !stream.is_null()) {
        Metric(text, "kelreader_stream_up", "gauge", "1 while the stream takes sheets.")
            .value(station, stream.at("up").get<bool>() ? 1 : 0);
        Metric(text, "kelreader_stream_unsent", "gauge",
               "Sheets and reports of the store that the stream does not have.")
            .value(station, stream.at("unsent").get<std::int64_t>());
    }
    return text;
}

} // namespace kel
