// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsSerialControl.h"

#include "platform/PortMap.h"
#include "platform/windows/PortLine.h"
#include "platform/windows/WindowsMessagePump.h"
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
    return std::make_unique<PortLine>(port, parameters, pump_);
}

PortInput& WindowsSerialControl::input()
{
    return static_cast<PortLine&>(line()).input();
}

} // namespace kel
