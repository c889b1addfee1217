// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "cli/UsageError.h"
#include "cli/check/ReportText.h"
#include "fuzz/Input.h"
#include "host/Batch.h"
#include "host/TraceHead.h"
#include "recording/ReportSections.h"
#include "simulators/platform/ReplayPlatform.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

using namespace kel;

// Transcripts that strangers send in: they are written as they are read, and the session in them can be replayed, which
// ends and reports everything in lines of JSON.

namespace {

// A larger form is nothing but memory.
constexpr std::int64_t kMostCells = 100'000;
constexpr Int32 kMostSheets = 5;

std::int64_t largest(const std::optional<std::vector<Int16>>& sizes)
{
    std::int64_t most = 0;
    for (const Int16 size : sizes.value_or(std::vector<Int16>()))
        most = std::max<std::int64_t>(most, size);
    return most;
}

bool isModest(const host::Request& request)
{
    const host::Form& form = request.form;
    return largest(form.side1Rows) * largest(form.side1Cols) <= kMostCells &&
           largest(form.side2Rows) * largest(form.side2Cols) <= kMostCells;
}

void replay(const Transcript& transcript, host::Request request)
{
    if (request.maxSheets < 0 || request.maxSheets > kMostSheets)
        request.maxSheets = kMostSheets;
    SimulatedPlatform machine;
    const PlatformScope simulated(machine);
    const auto carrier = std::make_shared<ReplayCarrier>(transcript);
    ReplayLibrary library(transcript);
    ReplayPlatform replayed(platform(), *carrier, library);
    const PlatformScope scope(replayed);
    clsKELReader reader;
    reader.fComm(Reference<Carrier>(carrier));
    host::prepareReader(reader, request);
    bool ended = false;
    JsonLines sink([&](const std::string& line) {
        const auto event = nlohmann::json::parse(line);
        demand(!ended && line.ends_with('\n'), "an event is a line, and nothing comes behind the end");
        ended = event.at("event") == "end";
    });
    static_cast<void>(host::runScan(reader, request, sink, [&] { return carrier->stopped(); }));
    demand(ended, "a session tells its end");
    static_cast<void>(carrier->unsent());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    const std::string text(Input(data, size).text());
    try {
        if (isReport(text))
            static_cast<void>(parseReport(text, "report"));
        const Transcript transcript = parseTranscript(sessionOfReport(text));
        const Transcript again = parseTranscript(writeTranscript(transcript));
        demand(again.lines == transcript.lines && again.head == transcript.head,
               "a transcript is written as it is read");
        const host::Request request = host::requestOfTranscript(transcript, sessionOfReport(text), "transcript");
        if (isModest(request))
            replay(transcript, request);
    } catch (const TranscriptError& error) {
        demand(error.line() >= 1, "a refusal names the line");
    } catch (const host::UsageError& error) {
        demand(std::string(error.what()).ends_with('.'), "a refusal is a sentence");
    }
    return 0;
}
