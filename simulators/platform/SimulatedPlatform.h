// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"
#include "simulators/platform/SimulatedLine.h"
#include "simulators/platform/SimulatedOmrApiLoader.h"
#include "simulators/platform/SimulatedProcess.h"
#include "simulators/platform/SimulatedPump.h"
#include "simulators/platform/SimulatedRegistry.h"
#include "simulators/platform/SimulatedScreen.h"

#include <array>

namespace kel {

/// A platform without a machine: a virtual clock, serial lines in memory, and the rest as records that a test reads
/// and scripts. It is used by one thread and outlives all that was made by it.
///
///     SimulatedPlatform machine;
///     PlatformScope scope(machine);
///     machine.attach(1, simulatedReader);
///     machine.at(3s, [&] { reader.CancelScan(True); });
class SimulatedPlatform final : public Platform {
public:
    SimulatedPlatform();

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override;
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override;
    [[nodiscard]] SimulatedPump& pump() override { return pump_; }
    [[nodiscard]] SimulatedRegistry& registry() override { return registry_; }
    [[nodiscard]] SimulatedScreen& screen() override { return screen_; }
    [[nodiscard]] SimulatedProcess& process() override { return process_; }
    [[nodiscard]] SimulatedOmrApiLoader& omrApiLoader() override { return omrApiLoader_; }

    /// Joins a port, 1 to 16, to a device, which must outlive its use. A port without a device is absent.
    void attach(Int16 port, LineDevice& device) { line(port).attach(device); }

    /// Says what opening the port meets, whether or not a device is attached.
    void portState(Int16 port, PortState state) { line(port).state(state); }

    /// The host's bytes take their time on the wire (the default) or none, on all ports.
    void hostPace(HostPace pace);

    /// The line of a port 1 to 16, with the record of what the host did to it.
    [[nodiscard]] SimulatedLine& line(Int16 port);

    [[nodiscard]] Moment now() const { return pump_.now(); }
    void at(Moment moment, std::function<void()> action) { pump_.at(moment, std::move(action)); }
    void atDoEvents(std::uint64_t n, std::function<void()> action) { pump_.atDoEvents(n, std::move(action)); }
    [[nodiscard]] const std::vector<HostSleep>& sleeps() const { return pump_.sleeps(); }

private:
    SimulatedPump pump_;
    std::array<SimulatedLine, 16> lines_;
    SimulatedRegistry registry_;
    SimulatedScreen screen_;
    SimulatedProcess process_;
    SimulatedOmrApiLoader omrApiLoader_;
};

} // namespace kel
