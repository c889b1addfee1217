// SPDX-License-Identifier: MIT
#include "cli/PlayForOthers.h"

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Notice.h"
#include "cli/UsageError.h"
#include "formats/JsonValue.h"
#include "host/SimulatedLibraryHost.h"
#include "host/SimulatorParts.h"
#include "host/TextOutput.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include <chrono>
#include <thread>

namespace kel {

namespace {

constexpr std::chrono::milliseconds kLookForNews{50};

/// Makes what may fail for want of a place: a link to it, or itself.
template <class Make>
auto atLink(const std::string& link, Make&& make)
{
    try {
        return make();
    } catch (const std::filesystem::filesystem_error& failure) {
        if (link.empty())
            throw CommandFailure("No temporary folder can be made: " + failure.code().message() + ".");
        throw CommandFailure("The link " + link + " cannot be made: " + failure.code().message() + ".");
    } catch (const std::system_error& failure) {
        throw CommandFailure("No pseudo-terminal can be made: " + failure.code().message() + ".");
    }
}

std::string errorLine(const std::string& what)
{
    return jsonText({{"event", "error"}, {"text", jsonValue(what)}}) + "\n";
}

} // namespace

int playReader(const PlayedModel& played, const std::string& link)
{
    const std::unique_ptr<Simulator> reader = host::makeSimulator(played.simulation, played.model, played.form);
    const auto host =
        atLink(link, [&] { return std::make_unique<PtyDeviceHost>(*reader, PtyDeviceHost::Options{.link = link}); });

    // When nobody reads the log any more, nobody is there for whom to go on.
    host::TextOutput output;
    const auto write = [&](const std::string& line) {
        if (!output.write(line))
            host->stop();
    };
    reader->onLog([&](const SheetRecord& record) { write(toJson(record) + "\n"); });
    reader->onError([&](const std::string& what) { write(errorLine(what)); });

    const InterruptNote interrupt([](void* running) { static_cast<PtyDeviceHost*>(running)->stop(); }, host.get());
    write(jsonText({{"event", "ready"}, {"device", host->deviceFile()}}) + "\n");
    host->run();

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (output.failed())
        throw CommandFailure(output.problem());
    notice("The simulated reader was unplugged.");
    return reader->errors().empty() ? kDoneStatus : kFailedStatus;
}

int playLibrary(const PlayedModel& played, const std::string& link)
{
    const OmrSimulationState state = host::omrState(played.simulation, played.form);
    const auto host = atLink(link, [&] { return std::make_unique<host::SimulatedLibraryHost>(state, link); });

    host::TextOutput output;
    const InterruptNote interrupt;
    output.write(jsonText({{"event", "ready"}, {"library", host->library().string()}}) + "\n");
    while (!InterruptNote::came() && !output.failed()) {
        std::this_thread::sleep_for(kLookForNews);
        for (const host::SimulatedLibraryHost::News& news : host->news())
            output.write(news.isFault ? errorLine(news.text) : news.text + "\n");
    }
    if (InterruptNote::came())
        return kInterruptedStatus;
    throw CommandFailure(output.problem());
}

} // namespace kel
