// SPDX-License-Identifier: MIT
#include "platform/windows/PortFailure.h"

#include "platform/windows/WindowsText.h"

#include <windows.h>

namespace kel {

std::string portName(Int16 port, const std::string& device)
{
    return "Port " + std::to_string(port) + " (" + device + ")";
}

FailureCode portOpenFailureCode(unsigned long error)
{
    switch (error) {
    // The serial driver has one user at a time, and says to others that access is denied.
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY: return FailureCode::PortAlreadyOpen;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DEV_NOT_EXIST: return FailureCode::InvalidPortNumber;
    case ERROR_INVALID_FUNCTION:
    case ERROR_INVALID_HANDLE:
    case ERROR_NOT_SUPPORTED: return FailureCode::DeviceNotOpen;
    default: return FailureCode::HardwareNotAvailable;
    }
}

RuntimeFailure portOpenFailure(Int16 port, const std::string& device, unsigned long error)
{
    const FailureCode code = portOpenFailureCode(error);
    // The system's words are a sentence, and here the end of one.
    std::string reason = systemErrorText(error);
    if (reason.ends_with('.'))
        reason.pop_back();
    FailedPort failed{.number = port, .device = device};
    switch (code) {
    case FailureCode::InvalidPortNumber:
        failed.cause = "is not there: " + reason;
        failed.remedy = "Connect the reader and switch it on, or choose another port.";
        break;
    case FailureCode::PortAlreadyOpen:
        failed.cause = "is in use: " + reason;
        failed.remedy = "Close the program that uses it.";
        break;
    case FailureCode::DeviceNotOpen: failed.cause = "is not a serial device: " + reason; break;
    default: failed.cause = "cannot be opened: " + reason; break;
    }
    return RuntimeFailure(code, failureText(code) + ": " + portName(port, device) + " " + failed.cause + "." +
                                    (failed.remedy.empty() ? "" : " " + failed.remedy))
        .about(failed);
}

} // namespace kel
