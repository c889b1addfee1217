// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedPlatform.h"

#include "simulators/platform/SimulatedSerialControl.h"

#include <stdexcept>
#include <utility>

namespace kel {

namespace {

template <std::size_t... Index>
std::array<SimulatedLine, sizeof...(Index)> makeLines(SimulatedClock& clock, std::index_sequence<Index...>)
{
    return {((void)Index, SimulatedLine(clock))...};
}

} // namespace

SimulatedPlatform::SimulatedPlatform() : lines_(makeLines(pump_.clock(), std::make_index_sequence<16>()))
{
    for (SimulatedLine& each : lines_)
        pump_.add(each);
}

std::unique_ptr<SerialControl> SimulatedPlatform::newSerialControl()
{
    return std::make_unique<SimulatedSerialControl>(lines_, pump_.clock());
}

std::unique_ptr<ScanTimer> SimulatedPlatform::newScanTimer()
{
    return std::make_unique<SimulatedScanTimer>(pump_);
}

void SimulatedPlatform::hostPace(HostPace pace)
{
    for (SimulatedLine& each : lines_)
        each.hostPace(pace);
}

SimulatedLine& SimulatedPlatform::line(Int16 port)
{
    if (port < 1 || static_cast<std::size_t>(port) > lines_.size())
        throw std::out_of_range("a simulated platform has the ports 1 to 16, not " + std::to_string(port));
    return lines_[static_cast<std::size_t>(port - 1)];
}

} // namespace kel
