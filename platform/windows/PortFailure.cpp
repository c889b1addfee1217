// SPDX-License-Identifier: MIT
#include "platform/windows/PortFailure.h"

#include "platform/windows/WindowsText.h"

#include <windows.h>

namespace kel {

std::string portName(Int16 port)
{
    const std::string number = std::to_string(port);
    return "Port " + number + " (COM" + number + ")";
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

RuntimeFailure portOpenFailure(Int16 port, unsigned long error)
{
    const FailureCode code = portOpenFailureCode(error);
    const std::string front = failureText(code) + ": " + portName(port);
    const std::string cause = systemErrorText(error);
    switch (code) {
    case FailureCode::InvalidPortNumber:
        return RuntimeFailure(code, front + " is not there: " + cause +
                                        " Connect the reader and switch it on, or choose another port.");
    case FailureCode::PortAlreadyOpen:
        return RuntimeFailure(code, front + " is in use: " + cause + " Close the program that uses it.");
    case FailureCode::DeviceNotOpen: return RuntimeFailure(code, front + " is not a serial device: " + cause);
    default: return RuntimeFailure(code, front + " cannot be opened: " + cause);
    }
}

} // namespace kel
