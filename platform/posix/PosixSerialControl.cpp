// SPDX-License-Identifier: MIT
#include "platform/posix/PosixSerialControl.h"

#include "platform/posix/LineInput.h"
#include "platform/posix/LineOpenFailure.h"
#include "platform/posix/LocalLine.h"
#include "platform/posix/PosixMessagePump.h"
#include "platform/posix/RemoteLine.h"
#include "platform/posix/ServedLine.h"

#include <utility>

namespace kel {

namespace {

constexpr Int32 kLeastDataBits = 5;

std::unique_ptr<SystemLine> systemLine(Int16 port, const std::string& device, const PosixMessagePump& pump)
{
    if (const std::optional<RemoteAddress> address = remoteAddress(device))
        return std::make_unique<RemoteLine>(port, device, *address, pump.calledHandle());
    return std::make_unique<LocalLine>(port, device);
}

} // namespace

PosixSerialControl::PosixSerialControl(std::shared_ptr<PosixMessagePump> pump, std::shared_ptr<Registry> registry)
    : LineControl(kLeastDataBits), pump_(std::move(pump)), registry_(std::move(registry))
{
}

std::unique_ptr<OpenLine> PosixSerialControl::open(Int16 port, const LineParameters& parameters)
{
    const std::optional<std::string> device = PortMap(*registry_).get(port);
    if (!device)
        throw unmappedPortFailure(port);
    if (device->size() > PortMap::kLongestDevice)
        throw overlongDeviceFailure(port, device->size());
    return std::make_unique<ServedLine>(systemLine(port, *device, *pump_), parameters, pump_);
}

LineInput& PosixSerialControl::input()
{
    return static_cast<ServedLine&>(line()).input();
}

} // namespace kel
