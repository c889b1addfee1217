#include "platform/posix/LineOpenFailure.h"

#include "platform/PortMap.h"
#include "platform/posix/DeviceFacts.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace kel {

namespace {

/// Failures are told as "Invalid port number: Port 3 (/dev/ttyUSB0) ...".
RuntimeFailure failure(FailureCode code, const std::string& text)
{
    return RuntimeFailure(code, failureText(code) + ": " + text);
}

std::string busyText(const std::string& device)
{
    const std::optional<DeviceUser> user = deviceUser(device);
    if (!user)
        return " is in use by another process. Close the program that uses it (sudo fuser " + device + " finds it).";
    if (user->process == ::getpid())
        return " is open already in this process.";
    return " is in use by process " + std::to_string(user->process) + " (" + user->name + "). Close that program.";
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
    // A device file whose driver finds nothing behind it says so with one of the last three.
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
    const std::string name = lineName(port, device);
    const std::string cause = std::generic_category().message(error);
    switch (code) {
    case FailureCode::InvalidPortNumber:
        return failure(code, name + " is not there: " + cause +
                                 ". Connect the reader and switch it on, or map the port to another device: kelreader "
                                 "ports set " +
                                 std::to_string(port) + " DEVICE");
    case FailureCode::PortAlreadyOpen: return failure(code, name + busyText(device));
    case FailureCode::DeviceNotOpen:
        return failure(code, name + " is not a serial device: " + cause +
                                 ". Map the port to a serial device: kelreader ports set " + std::to_string(port) +
                                 " DEVICE");
    default: break;
    }
    if (error == EACCES || error == EPERM)
        return failure(code, name + " may not be opened: " + cause + "; " + deviceAccessText(device) +
                                 ". To be let in, " + deviceAccessAdvice(device) + ".");
    return failure(code, name + " cannot be opened: " + cause + ".");
}

RuntimeFailure unmappedPortFailure(Int16 port)
{
    if (port < PortMap::kFirstPort || port > PortMap::kLastPort)
        return failure(FailureCode::InvalidPortNumber,
                       "There is no port " + std::to_string(port) + "; ports are 1 to 16 ('kelreader ports')");
    return failure(FailureCode::InvalidPortNumber, "Port " + std::to_string(port) +
                                                       " has no device. Map it to one: kelreader ports set " +
                                                       std::to_string(port) + " DEVICE");
}

} // namespace kel
