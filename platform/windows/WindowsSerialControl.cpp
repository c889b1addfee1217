// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsSerialControl.h"

#include "platform/PortMap.h"
#include "platform/RemoteAddress.h"
#include "platform/windows/LineInProcess.h"
#include "platform/windows/PortFailure.h"
#include "platform/windows/PortLine.h"
#include "platform/windows/WindowsMessagePump.h"
#include "platform/windows/WindowsRegistry.h"
#include "types/RuntimeFailure.h"

#include <utility>

namespace kel {

namespace {

constexpr Int32 kLeastDataBits = 4;

} // namespace

WindowsSerialControl::WindowsSerialControl(std::shared_ptr<WindowsMessagePump> pump)
    : LineControl(kLeastDataBits), pump_(std::move(pump))
{
}

std::unique_ptr<OpenLine> WindowsSerialControl::open(Int16 port, const LineParameters& parameters)
{
    if (port < PortMap::kFirstPort || port > PortMap::kLastPort)
        throw RuntimeFailure(FailureCode::InvalidPortNumber, failureText(FailureCode::InvalidPortNumber) + ": " +
                                                                 std::to_string(port) + " is not 1 to 16");
    WindowsRegistry registry;
    const std::string device = PortMap(registry).get(port).value_or("COM" + std::to_string(port));
    if (const LineInProcess* const line = LineInProcess::named(device))
        return line->open(parameters, pump_);
    if (remoteAddress(device))
        throw RuntimeFailure(
            FailureCode::HardwareNotAvailable,
            failureText(FailureCode::HardwareNotAvailable) + ": " + portName(port, device) +
                " is a remote line, which the edition for Windows does not have. Its server's maker has a "
                "driver that makes a port such as COM5 of it.");
    return std::make_unique<PortLine>(port, device, parameters, pump_);
}

WatchedInput& WindowsSerialControl::input()
{
    return static_cast<WatchedInput&>(line().input());
}

} // namespace kel
