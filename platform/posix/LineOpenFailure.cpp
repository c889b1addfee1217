// SPDX-License-Identifier: MIT
#include "platform/posix/LineOpenFailure.h"

#include "platform/PortMap.h"
#include "platform/posix/DeviceFacts.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace kel {

namespace {

/// A failure with the text "Invalid port number: Port 3 (/dev/ttyUSB0) is not there. Connect the reader".
RuntimeFailure failure(FailureCode code, const FailedPort& port)
{
    const std::string name =
        port.device.empty() ? "Port " + std::to_string(port.number) : lineName(port.number, port.device);
    return RuntimeFailure(code, failureText(code) + ": " + name + " " + port.cause +
                                    (port.remedy.empty() ? "." : ". " + port.remedy))
        .about(port);
}

FailedPort busy(Int16 port, const std::string& device)
{
    const std::optional<DeviceUser> user = deviceUser(device);
    if (!user)
        return {port, device, "is in use by another process",
                "Close the program that uses it (sudo fuser " + device + " finds it)."};
    if (user->process == ::getpid())
        return {port, device, "is open already in this process"};
    return {port, device, "is in use by process " + std::to_string(user->process) + " (" + user->name + ")",
            "Close that program."};
}

std::string assignTo(Int16 port)
{
    return ": kelreader ports set " + std::to_string(port) + " DEVICE";
}

} // namespace

FailureCode lineOpenFailureCode(int error)
{
    switch (error) {
    case EBUSY:
    case EWOULDBLOCK: return FailureCode::PortAlreadyOpen;
    case EACCES:
    case EPERM:
    case EROFS: return FailureCode::HardwareNotAvailable;
    case ENOTTY:
    case EINVAL:
    case EISDIR: return FailureCode::DeviceNotOpen;
    // A device file whose driver finds no device fails with one of the last three.
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case ENXIO:
    case ENODEV:
    case EIO: return FailureCode::InvalidPortNumber;
    default: return FailureCode::HardwareNotAvailable;
    }
}

std::string lineName(Int16 port, const std::string& device)
{
    return "Port " + std::to_string(port) + " (" + device + ")";
}

RuntimeFailure lineOpenFailure(Int16 port, const std::string& device, int error)
{
    const FailureCode code = lineOpenFailureCode(error);
    const std::string cause = std::generic_category().message(error);
    switch (code) {
    case FailureCode::InvalidPortNumber:
        return failure(code,
                       {port, device, "is not there: " + cause,
                        "Connect the reader and switch it on, or assign the port to another device" + assignTo(port)});
    case FailureCode::PortAlreadyOpen: return failure(code, busy(port, device));
    case FailureCode::DeviceNotOpen:
        return failure(code, {port, device, "is not a serial device: " + cause,
                              "Assign the port to a serial device" + assignTo(port)});
    default: break;
    }
    if (error == EACCES || error == EPERM)
        return failure(code, {port, device, "may not be opened: " + cause + "; " + deviceAccessText(device),
                              "To get access, " + deviceAccessAdvice(device) + "."});
    return failure(code, {port, device, "cannot be opened: " + cause});
}

RuntimeFailure unmappedPortFailure(Int16 port)
{
    if (port < PortMap::kFirstPort || port > PortMap::kLastPort)
        return RuntimeFailure(FailureCode::InvalidPortNumber, failureText(FailureCode::InvalidPortNumber) +
                                                                  ": There is no port " + std::to_string(port) +
                                                                  "; ports are 1 to 16 ('kelreader ports')");
    return failure(FailureCode::InvalidPortNumber, {port, {}, "has no device", "Assign it to one" + assignTo(port)});
}

RuntimeFailure overlongDeviceFailure(Int16 port, std::size_t length)
{
    return failure(FailureCode::InvalidPortNumber,
                   {port,
                    {},
                    "has a device whose name is " + std::to_string(length) + " bytes long; the limit is " +
                        std::to_string(PortMap::kLongestDevice),
                    "Assign it to another one" + assignTo(port)});
}

} // namespace kel
