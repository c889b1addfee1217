// SPDX-License-Identifier: MIT
#include "types/RuntimeFailure.h"

#include <utility>

namespace kel {

std::string failureText(FailureCode code)
{
    switch (code) {
    case FailureCode::InvalidProcedureCall: return "Invalid procedure call or argument";
    case FailureCode::Overflow: return "Overflow";
    case FailureCode::OutOfMemory: return "Out of memory";
    case FailureCode::SubscriptOutOfRange: return "Subscript out of range";
    case FailureCode::DivisionByZero: return "Division by zero";
    case FailureCode::TypeMismatch: return "Type mismatch";
    case FailureCode::ErrorLoadingLibrary: return "Error in loading DLL";
    case FailureCode::InternalError: return "Internal error";
    case FailureCode::BadFileName: return "Bad file name or number";
    case FailureCode::FileNotFound: return "File not found";
    case FailureCode::FileIoError: return "Device I/O error";
    case FailureCode::InputPastEndOfFile: return "Input past end of file";
    case FailureCode::BadRecordNumber: return "Bad record number";
    case FailureCode::PermissionDenied: return "Permission denied";
    case FailureCode::ObjectNotSet: return "Object variable or With block variable not set";
    case FailureCode::InvalidPropertyValue: return "Invalid property value";
    case FailureCode::ObjectRequired: return "Object required";
    case FailureCode::MemberNotSupported: return "Object doesn't support this property or method";
    case FailureCode::AutomationError: return "Automation error";
    case FailureCode::LibraryFunctionNotFound: return "Specified DLL function not found";
    case FailureCode::KeyAlreadyUsed: return "This key is already associated with an element of this collection";
    case FailureCode::InvalidPortNumber: return "Invalid port number";
    case FailureCode::PortAlreadyOpen: return "Port already open";
    case FailureCode::HardwareNotAvailable: return "The hardware is not available (locked by another device)";
    case FailureCode::DeviceNotOpen: return "The device is not open";
    case FailureCode::CannotSetLineState:
        return "Could not set comm state, there may be one or more invalid "
               "communications parameters";
    case FailureCode::PortNotOpen: return "Operation valid only when the port is open";
    case FailureCode::ErrorReadingDevice: return "Error reading comm device";
    }
    return "Application-defined or object-defined error";
}

struct RuntimeFailure::Details {
    std::int32_t number;
    std::string text;
    std::string source;
    SourceLocation where;
    FailedPort port;
};

RuntimeFailure::RuntimeFailure(FailureCode code, SourceLocation where) : RuntimeFailure(code, failureText(code), where)
{
}

RuntimeFailure::RuntimeFailure(FailureCode code, std::string text, SourceLocation where)
    : RuntimeFailure(static_cast<std::int32_t>(code), std::move(text), where)
{
}

RuntimeFailure::RuntimeFailure(std::int32_t number, std::string text, SourceLocation where)
    : RuntimeFailure(number, std::move(text), "KELReader81U", where)
{
}

RuntimeFailure::RuntimeFailure(std::int32_t number, std::string text, std::string source, SourceLocation where)
    : details_(std::make_shared<Details>(Details{number, std::move(text), std::move(source), where, {}}))
{
}

std::int32_t RuntimeFailure::number() const noexcept
{
    return details_->number;
}

const std::string& RuntimeFailure::text() const noexcept
{
    return details_->text;
}

const std::string& RuntimeFailure::source() const noexcept
{
    return details_->source;
}

const SourceLocation& RuntimeFailure::where() const noexcept
{
    return details_->where;
}

const char* RuntimeFailure::what() const noexcept
{
    return details_->text.c_str();
}

const FailedPort& RuntimeFailure::port() const noexcept
{
    return details_->port;
}

RuntimeFailure RuntimeFailure::about(FailedPort port) const
{
    RuntimeFailure failure = *this;
    Details details = *details_;
    details.port = std::move(port);
    failure.details_ = std::make_shared<Details>(std::move(details));
    return failure;
}

} // namespace kel
