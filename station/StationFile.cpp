// SPDX-License-Identifier: MIT
#include "station/StationFile.h"

#include "formats/JsonValue.h"
#include "formats/RegistryCopy.h"
#include "host/JsonFile.h"
#include "host/LoadedSettings.h"
#include "host/Ports.h"
#include "host/PropertyTable.h"
#include "host/Reader.h"
#include "platform/Platform.h"
#include "station/IpAddress.h"
#include "station/JsonFaults.h"
#include "station/StationChecks.h"
#include "store/ReaderSetup.h"
#include "stream/StreamFiles.h"
#include "types/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <sys/un.h>

namespace kel {

namespace {

constexpr FileKind kStationFile{"station file", 4};
constexpr std::size_t kMostReaders = 1000;
constexpr std::size_t kLongestName = 64;
constexpr std::size_t kLongestSocket = sizeof(sockaddr_un::sun_path) - 1;
constexpr double kLongestSeconds = 86'400;
constexpr double kMillisecondsPerSecond = 1000;

/// A name that may stand in a subject, in the name of a file and on a terminal.
std::string readName(const Json& value, const JsonPlace& place)
{
    std::string name = readJsonText(value, place);
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    };
    if (name.empty() || name.size() > kLongestName || !std::all_of(name.begin(), name.end(), isPlain))
        place.refuse("has to be 1 to 64 letters, digits, \"-\" and \"_\" of ASCII");
    return name;
}

std::string readFilled(const Json& value, const JsonPlace& place)
{
    std::string text = readJsonText(value, place);
    if (text.empty())
        place.refuse("is empty; leave it out, or give it a value");
    return text;
}

Pauses::Time readSeconds(const Json& value, const JsonPlace& place)
{
    if (!value.is_number())
        place.refuse("has to be a number of seconds");
    const auto seconds = value.get<double>();
    if (!(seconds >= 0.01 && seconds <= kLongestSeconds))
        place.refuse("has to be 0.01 to 86400 seconds");
    return Pauses::Time(std::llround(seconds * kMillisecondsPerSecond));
}

/// A value of "set" as `--set` has it.
std::string assignedText(const Json& value, const JsonPlace& place)
{
    if (value.is_string())
        return value.get<std::string>();
    if (value.is_boolean() || value.is_number())
        return jsonText(value);
    place.refuse("has to be a text, a number, true or false");
}

/// Reads one file and all that it names.
class Reading {
public:
    explicit Reading(std::filesystem::path file) : file_(std::move(file)), folder_(file_.parent_path()) {}

    void read(const std::string& text)
    {
        const Json root = parseJson(text);
        faults_.findRepeatedKeys(text);
        faults_.readObject(root, {}, stationReaders());
        if (!root.is_object())
            return;
        plan_.content = contentOfAllButReaders(root);
        if (!root.contains("store"))
            faults_.add({}, "names no \"store\"");
        if (const auto readers = root.find("readers"); readers == root.end() || *readers == Json::array())
            checkWithoutReaders();
        if (plan_.socket.empty())
            plan_.socket = plan_.store.string() + "-socket";
        if (plan_.socket.native().size() > kLongestSocket)
            faults_.add({"socket"}, "is longer than the name of a socket may be (" + std::to_string(kLongestSocket) +
                                        " bytes); give it a shorter one");
        if (plan_.page && plan_.metrics && plan_.page->port != 0 && plan_.page->port == plan_.metrics->port)
            faults_.add({"metrics.port"}, "is the port of the page; give it another one");
        checkFolder(plan_.store, {"store"}, faults_);
        if (root.contains("socket"))
            checkFolder(plan_.socket, {"socket"}, faults_);
        if (plan_.firstPause > plan_.longestPause)
            faults_.add({"retry.first"}, "is longer than \"longest\"");
    }

    [[nodiscard]] StationFile result() && { return {std::move(plan_), faults_.all()}; }

    JsonFaults& faults() { return faults_; }

    JsonKeyReaders stationReaders()
    {
        return {{"station", [this](const Json& v, const JsonPlace& p) { plan_.station = readName(v, p); }},
                {"store", [this](const Json& v, const JsonPlace& p) { plan_.store = path(v, p); }},
                {"socket", [this](const Json& v, const JsonPlace& p) { plan_.socket = path(v, p); }},
                {"batch", [this](const Json& v, const JsonPlace& p) { batch_ = readFilled(v, p); }},
                {"retry", [this](const Json& v, const JsonPlace& p) { readRetry(v, p); }},
                {"stream", [this](const Json& v, const JsonPlace& p) { readStream(v, p); }},
                {"page", [this](const Json& v, const JsonPlace& p) { readPage(v, p); }},
                {"metrics", [this](const Json& v, const JsonPlace& p) { readMetrics(v, p); }},
                {"readers", [this](const Json& v, const JsonPlace& p) { readReaders(v, p); }}};
    }

    JsonKeyReaders readerReaders(ReaderPlan& plan)
    {
        host::Request& request = plan.request;
        const auto text = [](std::optional<std::string>& target) {
            return [&target](const Json& v, const JsonPlace& p) { target = readJsonText(v, p); };
        };
        return {{"name", [&](const Json& v, const JsonPlace& p) { plan.name = readName(v, p); }},
                {"batch", [&](const Json& v, const JsonPlace& p) { plan.batch = readFilled(v, p); }},
                {"model",
                 [&](const Json& v, const JsonPlace& p) {
                     request.model = v.is_number_integer() ? host::Model(jsonText(v)) : host::Model(readJsonText(v, p));
                 }},
                {"settings",
                 [&](const Json& v, const JsonPlace& p) {
                     request.settings = host::keyNamed(readJsonText(v, p));
                     plan.content += regFileBytes(registryEntries(platform().registry(), *request.settings));
                 }},
                {"port", [&](const Json& v, const JsonPlace& p) { request.port = readJsonNumber(v, p, 1, 16); }},
                {"device", [&](const Json& v, const JsonPlace& p) { request.device = readFilled(v, p); }},
                {"simulate", [&](const Json& v, const JsonPlace& p) { readSimulation(v, p, plan); }},
                {"form",
                 [&](const Json& v, const JsonPlace& p) {
                     request.form = host::readFormFile(named(v, p, plan, host::kFormFile));
                 }},
                {"answerKey",
                 [&](const Json& v, const JsonPlace& p) {
                     request.answerKey = host::readAnswerKeyFile(named(v, p, plan, host::kAnswerKeyFile));
                 }},
                {"set", [&](const Json& v, const JsonPlace& p) { readAssignments(v, p, request); }},
                {"omrapi", [&](const Json& v, const JsonPlace& p) { request.usbLibrary = path(v, p); }},
                {"trace",
                 [&](const Json& v, const JsonPlace& p) {
                     request.traceFile = path(v, p);
                     checkFolder(request.traceFile, p, faults_);
                 }},
                {"rejectBlank", [&](const Json& v, const JsonPlace& p) { request.rejectBlank = readJsonTruth(v, p); }},
                {"print1", text(request.print.print1)},
                {"print2", text(request.print.print2)},
                {"print3", text(request.print.print3)},
                {"printDistance", [&](const Json& v, const JsonPlace& p) {
                     using Limits = std::numeric_limits<Int16>;
                     request.print.distance = readJsonNumber(v, p, Limits::min(), Limits::max());
                 }}};
    }

private:
    /// A reader's line, as the file has it.
    struct Line {
        std::string reader{};
        std::string place{};
        std::string name{};
    };

    [[nodiscard]] std::filesystem::path path(const Json& value, const JsonPlace& place) const
    {
        return folder_ / readFilled(value, place);
    }

    /// A file that is read now: what it holds is a part of what the reader is.
    std::filesystem::path named(const Json& value, const JsonPlace& place, ReaderPlan& plan, const FileKind& kind) const
    {
        std::filesystem::path file = path(value, place);
        plan.content += host::readGivenFile(file, kind);
        return file;
    }

    void readRetry(const Json& value, const JsonPlace& place)
    {
        faults_.readObject(
            value, place,
            {{"first", [this](const Json& v, const JsonPlace& p) { plan_.firstPause = readSeconds(v, p); }},
             {"longest", [this](const Json& v, const JsonPlace& p) { plan_.longestPause = readSeconds(v, p); }}});
    }

    void readStream(const Json& value, const JsonPlace& place)
    {
        StreamAddress& stream = plan_.stream.emplace();
        constexpr Int16 kMostReplicas = 5;
        const auto text = [](std::string& target) {
            return [&target](const Json& v, const JsonPlace& p) { target = readFilled(v, p); };
        };
        const auto file = [this](std::filesystem::path& target) {
            return [this, &target](const Json& v, const JsonPlace& p) { target = path(v, p); };
        };
        faults_.readObject(
            value, place,
            {{"servers",
              [&](const Json& v, const JsonPlace& p) {
                  readJsonArray(v, p, [&](const Json& server, const JsonPlace& here) {
                      faults_.attempt(here, [&] { stream.servers.push_back(readFilled(server, here)); });
                  });
              }},
             {"name", text(stream.stream)},
             {"subject", text(stream.subject)},
             {"replicas",
              [&](const Json& v, const JsonPlace& p) { stream.replicas = readJsonNumber(v, p, 1, kMostReplicas); }},
             {"authority", file(stream.authority)},
             {"certificate", file(stream.certificate)},
             {"key", file(stream.key)},
             {"credentials", file(stream.credentials)}});
        checkStream(stream, place, faults_);
        const std::string exposure = hasSecrets(stream) ? exposureOf(file_) : std::string();
        if (!exposure.empty())
            faults_.add(place, "cannot be used: " + exposure.substr(0, exposure.size() - 1));
    }

    static Int32 readPort(const Json& value, const JsonPlace& place)
    {
        constexpr Int32 kHighestPort = 65'535;
        return readJsonLongNumber(value, place, 0, kHighestPort);
    }

    void readPage(const Json& value, const JsonPlace& place)
    {
        WebPlan& page = plan_.page.emplace();
        const auto file = [this](std::filesystem::path& target) {
            return [this, &target](const Json& v, const JsonPlace& p) { target = path(v, p); };
        };
        faults_.readObject(value, place,
                           {{"port", [&](const Json& v, const JsonPlace& p) { page.port = readPort(v, p); }},
                            {"address", [&](const Json& v, const JsonPlace& p) { page.address = readAddress(v, p); }},
                            {"passwords", file(page.passwords)},
                            {"certificate", file(page.certificate)},
                            {"key", file(page.key)}});
        if (value.is_object() && !value.contains("port"))
            faults_.add(place, "has no \"port\"");
        checkPage(page, place, faults_);
        if (page.certificate.empty() == page.key.empty() && !isLoopback(page.address) &&
            (page.passwords.empty() || page.key.empty()))
            faults_.add(place, "can be reached from other machines at " + page.address +
                                   "; give it \"passwords\", \"certificate\" and \"key\", or leave the address out");
    }

    static std::string readAddress(const Json& value, const JsonPlace& place)
    {
        std::string address = readJsonText(value, place);
        if (!isIpAddress(address))
            place.refuse("has to be an IP address, such as 127.0.0.1, or 0.0.0.0 for all of this machine");
        return address;
    }

    void readMetrics(const Json& value, const JsonPlace& place)
    {
        WebPlan& metrics = plan_.metrics.emplace();
        faults_.readObject(value, place,
                           {{"port", [&](const Json& v, const JsonPlace& p) { metrics.port = readPort(v, p); }}});
        if (value.is_object() && !value.contains("port"))
            faults_.add(place, "has no \"port\"");
    }

    void readSimulation(const Json& value, const JsonPlace& place, ReaderPlan& plan)
    {
        constexpr FileKind kSheetFile{"sheet file", 32};
        host::Simulation& simulation = plan.request.simulated.emplace();
        const auto texts = [](std::vector<std::string>& target) {
            return [&target](const Json& v, const JsonPlace& p) {
                readJsonArray(
                    v, p, [&](const Json& text, const JsonPlace& here) { target.push_back(readJsonText(text, here)); });
            };
        };
        const auto number = [](std::uint64_t& target) {
            return [&target](const Json& v, const JsonPlace& p) {
                constexpr Int32 kMost = 1'000'000;
                target = static_cast<std::uint64_t>(readJsonLongNumber(v, p, 0, kMost));
            };
        };
        faults_.readObject(
            value, place,
            {{"sheets", [&](const Json& v, const JsonPlace& p) { simulation.sheets = named(v, p, plan, kSheetFile); }},
             {"seed", number(simulation.seed)},
             {"count", number(simulation.count)},
             {"faults", texts(simulation.faults)},
             {"settings", texts(simulation.settings)},
             {"unlimited", [&](const Json& v, const JsonPlace& p) { simulation.unlimited = readJsonTruth(v, p); }}});
    }

    void readAssignments(const Json& value, const JsonPlace& place, host::Request& request)
    {
        JsonKeyReaders readers;
        if (!value.is_object())
            readJsonObject(value, place, readers);
        for (const auto& [name, assigned] : value.items()) {
            const JsonPlace here = place.key(name);
            faults_.attempt(here, [&, &assigned = assigned, &name = name] {
                const std::string assignment = name + "=" + assignedText(assigned, here);
                clsKELReader probe;
                host::applyAssignment(probe, assignment);
                request.assignments.push_back(assignment);
            });
        }
    }

    void readReaders(const Json& value, const JsonPlace& place)
    {
        readBoundedJsonArray(value, place, kMostReaders, "readers",
                             [&](const Json& reader, const JsonPlace& here) { readReader(reader, here); });
    }

    /// Such a station is there to send what a store still holds.
    void checkWithoutReaders()
    {
        std::error_code error;
        if (!plan_.stream)
            faults_.add({},
                        "names no readers; a station without readers needs a \"stream\", to which it sends what its "
                        "store holds");
        else if (!plan_.store.empty() && !std::filesystem::exists(plan_.store, error))
            faults_.add({"store"}, "does not exist; a station without readers sends what a store holds");
    }

    void readReader(const Json& value, const JsonPlace& place)
    {
        ReaderPlan plan;
        plan.content = jsonText(value);
        const std::size_t before = faults_.all().size();
        faults_.readObject(value, place, readerReaders(plan));
        if (value.is_object() && !value.contains("name"))
            faults_.add(place, "has no \"name\"");
        if (value.is_object())
            checkReader(value, plan, place);
        if (faults_.all().size() == before)
            checkSession(plan, place);
        plan_.readers.push_back(std::move(plan));
    }

    /// What can be wrong although each of its values is right. A key counts as named whatever its value is.
    void checkReader(const Json& value, const ReaderPlan& plan, const JsonPlace& place)
    {
        const host::Request& request = plan.request;
        const bool hasSettings = value.contains("settings");
        const auto lines = value.contains("port") + value.contains("device") + value.contains("simulate");
        const bool isUsb = request.model && host::isUsbModel(*request.model);
        if (!value.contains("model") && !hasSettings)
            faults_.add(place, "names neither \"model\" nor \"settings\"");
        if (lines > 1)
            faults_.add(place, "names more than one of \"port\", \"device\" and \"simulate\"");
        else if (lines == 0 && !isUsb && !hasSettings)
            faults_.add(place, "does not say where it is: name its \"port\" or its \"device\"");
        const auto taken = std::find_if(plan_.readers.begin(), plan_.readers.end(),
                                        [&](const ReaderPlan& other) { return other.name == plan.name; });
        if (!plan.name.empty() && taken != plan_.readers.end())
            faults_.add(place.key("name"), "is \"" + plan.name + "\", which another reader has, too");
        if (request.port)
            checkPort(*request.port, plan, place.key("port"));
        else if (!request.device.empty())
            checkLine(request.device, request.device, plan, place.key("device"));
    }

    void checkPort(Int16 port, const ReaderPlan& plan, const JsonPlace& place)
    {
        const std::string name = "port " + CStr(port);
        const std::optional<std::string> device = host::deviceOf(port);
        checkLine(device.value_or(name), device ? name + " (" + *device + ")" : name, plan, place);
    }

    /// Each reader has a line of its own, whatever that is called.
    void checkLine(const std::string& line, const std::string& name, const ReaderPlan& plan, const JsonPlace& place)
    {
        std::error_code error;
        const std::filesystem::path device = std::filesystem::weakly_canonical(line, error);
        const std::string identity = line.front() == '/' && !error ? device.string() : line;
        const auto [other, isNew] =
            lines_.try_emplace(identity, Line{.reader = plan.name, .place = place.path, .name = name});
        if (isNew)
            return;
        const auto& [reader, otherPlace, otherName] = other->second;
        const std::string asWhat = otherName == name ? otherPlace : otherPlace + ", " + otherName;
        faults_.add(place, "is " + name + ", which the reader \"" + reader + "\" has, too (" + asWhat + ")");
    }

    /// What is found out when a session is prepared.
    void checkSession(const ReaderPlan& plan, const JsonPlace& place)
    {
        const host::Request& request = plan.request;
        faults_.attempt(place, [&] {
            host::Reader probe(request);
            const bool hasPort = !request.port && request.device.empty() && !request.simulated;
            if (hasPort && !host::isUsbModel(probe.object().ReaderType()))
                checkPort(probe.object().Port(), plan, place); // the saved settings', or that of "set"
            if (request.simulated)
                checkSimulation(request, probe.object().ReaderType(), place.key("simulate"), faults_);
        });
    }

    [[nodiscard]] static std::string contentOfAllButReaders(Json root)
    {
        root.erase("readers");
        root.erase("batch"); // the readers take it
        return jsonText(root);
    }

    std::filesystem::path file_;
    std::filesystem::path folder_;
    StationPlan plan_;
    JsonFaults faults_;
    std::map<std::string, Line> lines_; ///< by what is the same however it is called

public:
    std::string batch_; ///< of the readers that have none of their own
};

std::vector<std::string> names(const JsonKeyReaders& readers)
{
    std::vector<std::string> known;
    for (const auto& entry : readers)
        known.push_back(entry.first);
    return known;
}

} // namespace

StationFile readStationFile(const std::filesystem::path& file)
{
    Reading reading(std::filesystem::absolute(file));
    reading.faults().attempt({}, [&] { reading.read(host::readGivenFile(file, kStationFile)); });
    const std::string batch = reading.batch_;
    StationFile result = std::move(reading).result();
    if (result.plan.station.empty())
        result.plan.station = stationName();
    for (ReaderPlan& reader : result.plan.readers) {
        if (reader.batch.empty())
            reader.batch = batch;
        reader.content += "\n" + reader.batch;
    }
    return result;
}

std::vector<std::string> stationKeys()
{
    return names(Reading({}).stationReaders());
}

std::vector<std::string> stationReaderKeys()
{
    ReaderPlan plan;
    return names(Reading({}).readerReaders(plan));
}

} // namespace kel
