// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ProcedureVariables.h"
#include "failure/vbcsClient.h"
#include "platform/FaultCapture.h"
#include "types/Boolean.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

/// The component's name towards debuggers and error libraries, and its version: major, minor and revision number.
inline constexpr const char* kComponentName = "KELReader81U";
[[nodiscard]] std::string componentVersion();

/// The failure that was captured last on a thread.
struct CapturedFailure {
    Int32 vbcsErrorNumber = 0;
    std::string vbcsErrorDescription{};
    Int32 vbcsErrorLine = 0; ///< number of the failing statement, 0 if it is not known
    std::string vbcsErrorSource{};
};
[[nodiscard]] CapturedFailure& capturedFailure();

/// Set while the user breaks an operation off; one a thread.
[[nodiscard]] Boolean& bOpCancelled();

/// Start-up, once a process however often it is called: the client looks for a debugger, and the filter of processor
/// faults is installed. It runs with `Main`, or with the first object of the component.
void vbcsInitialise();
[[nodiscard]] Boolean vbcsHasInitialised();

/// Whether a debugger watches the component's objects.
[[nodiscard]] Boolean hasDebugSession();

/// Undoes the start-up, so that the next object does it again. For tests.
void vbcsForgetInitialisation();

/// Turns a fault of the processor into a run-time failure: the number is made of the code of the innermost record, the
/// text is its name, the source is "vbcsExceptionFilter".
[[noreturn]] void vbcsExceptionFilter(const FaultRecord& record);

/// Copies what is being caught into the captured failure. For use in a handler.
void captureFailure(SourceLocation procedure);

/// The lines of the process's variables.
[[nodiscard]] std::string dumpOfGlobals();

/// Reports a captured failure to the error library: its object is created by name for each report. Without one the
/// failure is shown in a box of last resort. Never fails.
void reportCrash(const CapturedFailure& failure, const std::string& sModule, const std::string& sProcedure,
                 const ProcedureDump& variables);

/// Sends to the debugger. -10 without one.
Int32 vbcsSend(Int32 lCode, const std::string& sText, const Variant& vData, Int32 lArg1, Int32 lArg2);

} // namespace kel
