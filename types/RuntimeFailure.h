// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

#include "types/SourceLocation.h"
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace kel {

/// Numbers of the run-time failures that this component raises.
enum class FailureCode : std::int32_t {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    ErrorLoadingLibrary = 48,
    InternalError = 51,
    BadFileName = 52,
    FileNotFound = 53,
    FileIoError = 57,
    InputPastEndOfFile = 62,
    BadRecordNumber = 63,
    PermissionDenied = 70,
    ObjectNotSet = 91,
    InvalidPropertyValue = 380,
    ObjectRequired = 424,
    MemberNotSupported = 438,
    AutomationError = 440,
    LibraryFunctionNotFound = 453,
    KeyAlreadyUsed = 457,
    InvalidPortNumber = 8002,
    PortAlreadyOpen = 8005,
    HardwareNotAvailable = 8010,
    DeviceNotOpen = 8012,
    CannotSetLineState = 8015,
    PortNotOpen = 8018,
    ErrorReadingDevice = 8020,
};

/// The standard text of a run-time failure: "Subscript out of range" for 9, and so on.
[[nodiscard]] KEL_PUBLIC std::string failureText(FailureCode code);

/// The port that a failure is about, if there is one: the parts of its text.
struct FailedPort {
    std::int16_t number = 0; ///< 1 to 16; 0 if the failure is about no port
    std::string device{};    ///< what the port stands for: a device, a remote line, COM1; empty if there is none
    std::string cause{};     ///< what is wrong, worded to follow the name: "is in use by process 812 (minicom)"
    std::string remedy{};    ///< what to try, a sentence; may be empty
};

/// A failure found while a statement runs: a bad subscript, an overflow, a line that cannot be opened.
/// It travels to the guard of the procedure that was running, which reports it; it never reaches the host.
class KEL_PUBLIC RuntimeFailure : public std::exception {
public:
    /// A failure with its standard text.
    explicit RuntimeFailure(FailureCode code, SourceLocation where = SourceLocation::current());

    /// A failure whose text says more than the standard one: which port, which setting.
    RuntimeFailure(FailureCode code, std::string text, SourceLocation where = SourceLocation::current());

    /// A failure of any number, such as a fault of the processor.
    RuntimeFailure(std::int32_t number, std::string text, SourceLocation where = SourceLocation::current());

    /// A failure that does not come from a statement of the component itself.
    RuntimeFailure(std::int32_t number, std::string text, std::string source, SourceLocation where);

    /// The failure's number, also as one of those that the component knows.
    [[nodiscard]] std::int32_t number() const noexcept;
    [[nodiscard]] FailureCode code() const noexcept { return static_cast<FailureCode>(number()); }
    /// The failure's text.
    [[nodiscard]] const std::string& text() const noexcept;
    /// The source: the component's name, or that of another library.
    [[nodiscard]] const std::string& source() const noexcept;
    [[nodiscard]] const SourceLocation& where() const noexcept;
    [[nodiscard]] const char* what() const noexcept override;

    /// The port that it is about, and the same failure with one.
    [[nodiscard]] const FailedPort& port() const noexcept;
    [[nodiscard]] RuntimeFailure about(FailedPort port) const;

private:
    struct Details;

    std::shared_ptr<const Details> details_;
};

} // namespace kel
