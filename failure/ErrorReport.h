// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Numbers.h"

#include <memory>
#include <optional>
#include <string>

namespace kel {

/// The kind of a reported failure.
enum ErrorType : Int32 {
    kErrorTypeRunTime = 0,  ///< a statement failed and the procedure's guard caught it
    kErrorTypeSettings = 1, ///< a setting of the host, or a code of a vendor's library
    kErrorTypeReader = 2,   ///< a fault of the reader or the link that a driver detected
};

/// A failure report, its fields in the order in which they are passed on. Later versions may add fields at its end: a
/// host receives it and makes none itself.
struct ErrorReport {
    Int32 LineNumber = 0;  ///< number of the failing statement; 0 for a failure that the code itself detected
    Int32 ErrorNumber = 0; ///< number of the run-time failure, the reader's own, or the message's; 0 if none
    Int32 ErrorType = kErrorTypeReader;
    std::string ErrorDescription{}; ///< the failure's text
    std::string ErrorSource{};      ///< "KELReader81 - basScantron.InitReaderST"; reported without the component's name
    std::string ErrorTitle{};       ///< empty for run-time failures
    std::string ButtonText1{};      ///< button captions; empty for the default button
    std::string ButtonText2{};
    std::string ButtonText3{};
    Int32 ButtonDefault = 1;     ///< 1 is the first button
    std::string VariableText1{}; ///< extra text to fill into the report
    std::string VariableText2{};
    std::string VariableText3{};
    Boolean ShowHelp = True;
    std::optional<Boolean> vSilent{}; ///< a one-off value for the error object's `Silent`
    Int16 ErrorPort = 0;              ///< the port that the report is about, 1 to 16; 0 if it is about none
    std::string ErrorDevice{};        ///< the device or remote line that this port stands for
    std::string ErrorCause{};  ///< what is wrong, worded to follow its name: "is in use by process 812 (minicom)"
    std::string ErrorRemedy{}; ///< what to try, a sentence; may be empty
};

/// The host's error object: where reports go once a host has registered one with `SetError`.
class KEL_PUBLIC ErrorObject {
public:
    ErrorObject();
    virtual ~ErrorObject();
    ErrorObject(const ErrorObject&) = delete;
    ErrorObject& operator=(const ErrorObject&) = delete;

    /// Read, overridden and restored around each report that carries `vSilent`.
    [[nodiscard]] virtual Boolean Silent();
    virtual void Silent(Boolean value);

    /// Shows or logs a report; its result says which button was chosen. `LineNumber` and `vSilent` are information
    /// only: the source already carries the number, and `Silent` is set.
    virtual Int32 RaiseError(const ErrorReport& report) = 0;

    /// Sets the host's font in a dialog; `form` is the options dialog's window of the presenter in use.
    virtual void SetFont(void* form) { static_cast<void>(form); }

private:
    Hidden<Boolean> silent_;
};

} // namespace kel
