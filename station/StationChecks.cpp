// SPDX-License-Identifier: MIT
#include "station/StationChecks.h"

#include "host/ModelLookup.h"
#include "host/SimulatorParts.h"
#include "simulators/framework/Simulator.h"
#include "simulators/sekonic_usb/OmrSimulationState.h"
#include "stream/StreamFiles.h"

#include <utility>

namespace kel {

namespace {

/// Whether a simulated reader can be made so.
void attempt(const host::Simulation& simulation, kelReaderType model, const host::Form& form, const JsonPlace& place,
             JsonFaults& faults)
{
    faults.attempt(place, [&] {
        if (host::isUsbModel(model))
            static_cast<void>(host::omrState(simulation, form));
        else
            static_cast<void>(host::makeSimulator(simulation, model, form));
    });
}

void add(const std::string& fault, const JsonPlace& place, JsonFaults& faults)
{
    if (!fault.empty())
        faults.add(place, "cannot be used: " + fault.substr(0, fault.size() - 1));
}

} // namespace

void checkFolder(const std::filesystem::path& file, const JsonPlace& place, JsonFaults& faults)
{
    std::error_code error;
    const std::filesystem::path folder = file.parent_path();
    if (!file.empty() && !std::filesystem::is_directory(folder, error))
        faults.add(place, "is to be in the folder " + folder.string() + ", which does not exist; make it first");
}

void checkSimulation(const host::Request& request, kelReaderType model, const JsonPlace& place, JsonFaults& faults)
{
    const host::Simulation& simulation = *request.simulated;
    for (std::size_t i = 0; i < simulation.faults.size(); ++i)
        attempt({.count = 1, .faults = {simulation.faults[i]}}, model, request.form, place.key("faults").element(i),
                faults);
    for (std::size_t i = 0; i < simulation.settings.size(); ++i)
        attempt({.count = 1, .settings = {simulation.settings[i]}}, model, request.form,
                place.key("settings").element(i), faults);
    if (!simulation.sheets.empty())
        attempt({.sheets = simulation.sheets}, model, request.form, place.key("sheets"), faults);
}

/// Each part is looked at alone, beside others that are sound.
void checkStream(const StreamAddress& stream, const JsonPlace& place, JsonFaults& faults)
{
    if (stream.servers.empty())
        add(faultOf(stream), place, faults);
    for (std::size_t i = 0; i < stream.servers.size(); ++i)
        add(faultOf({.servers = {stream.servers[i]}}), place.key("servers").element(i), faults);
    const std::vector<std::string> sound{"localhost"};
    add(faultOf({.servers = sound, .stream = stream.stream}), place.key("name"), faults);
    add(faultOf({.servers = sound, .subject = stream.subject}), place.key("subject"), faults);
    add(faultOf({.servers = sound, .authority = stream.authority}), place.key("authority"), faults);
    add(faultOf({.servers = sound, .certificate = stream.certificate}), place.key("certificate"), faults);
    add(faultOf({.servers = sound, .key = stream.key}), place.key("key"), faults);
    add(faultOf({.servers = sound, .credentials = stream.credentials}), place.key("credentials"), faults);
    if (stream.certificate.empty() != stream.key.empty())
        faults.add(place, "has one of \"certificate\" and \"key\"; it needs both");
}

void checkPage(const WebPlan& page, const JsonPlace& place, JsonFaults& faults)
{
    faults.attempt(place, [&] { checkWebPlan({.passwords = page.passwords}); });
    if (page.certificate.empty() != page.key.empty())
        faults.add(place, "has one of \"certificate\" and \"key\"; it needs both");
    else if (!page.key.empty())
        faults.attempt(place, [&] { checkWebPlan({.certificate = page.certificate, .key = page.key}); });
}

} // namespace kel
