// SPDX-License-Identifier: MIT
#include "platform/PortLook.h"

#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "platform/SerialDevices.h"

namespace kel {

std::optional<std::string> deviceOfPort(Int16 port)
{
    const std::optional<std::string> mapped = PortMap(platform().registry()).get(port);
    return mapped ? mapped : usualDevice(port);
}

PortLook lookAtPort(Int16 port)
{
    PortLook look;
    try {
        const auto control = platform().newSerialControl();
        control->CommPort(port);
        control->PortOpen(True);
        control->PortOpen(False);
        look.opens = true;
    } catch (const RuntimeFailure& failure) {
        look = {.failure = failure.number(), .reason = failure.text(), .port = failure.port()};
    } catch (const std::exception& failure) {
        look = {.failure = static_cast<Int32>(FailureCode::HardwareNotAvailable), .reason = failure.what()};
    }
    return look;
}

PortLook lookAtDevice(const std::string& device, Int16 port)
{
    const PortOverride inItsPlace(port, device);
    return lookAtPort(port);
}

} // namespace kel
