// SPDX-License-Identifier: MIT
#include "failure/modvbCodeShieldSupport.h"

#include "failure/ExceptionNames.h"
#include "failure/TypeName.h"
#include "failure/WithoutHost.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/NamedObjects.h"
#include "platform/Platform.h"

#include <atomic>
#include <mutex>
#include <string_view>
#include <utility>

namespace kel {

namespace {

constexpr std::string_view kSourcePrefix = "KELReader81 - ";

/// The debug session of this process. Never destroyed by the end of the process: objects come and go until then.
struct DebugSession {
    std::recursive_mutex mutex;
    vbcsClient client;
    bool isInitialising = false;
    std::atomic<bool> hasInitialised{false};
    std::atomic<bool> isConnected{false};
    std::atomic<bool> hasDebugSession{false};
    Int32 vbcsComponentID = 0;
};

DebugSession& session()
{
    static auto* const place = new DebugSession;
    return *place;
}

/// Module and procedure of a source.
std::pair<std::string, std::string> namesIn(std::string_view source)
{
    if (source.starts_with(kSourcePrefix))
        source.remove_prefix(kSourcePrefix.size());
    const std::size_t dot = source.find('.');
    if (dot == std::string_view::npos)
        return {"", std::string(source)};
    return {std::string(source.substr(0, dot)), std::string(source.substr(dot + 1))};
}

std::string section(const std::string& tag, const std::string& text)
{
    return "<" + tag + ">" + std::string(kLineEnd) + text + "</" + tag + ">";
}

std::string variablesText(const ProcedureDump& variables)
{
    const std::string end(kLineEnd);
    return section("Variables", section("LocalVariables", variables.locals) + end +
                                    section("ModuleVariables", variables.module) + end +
                                    section("GlobalVariables", dumpOfGlobals()) + end) +
           end + section("Parameters", variables.parameters);
}

void showLastResort(const CapturedFailure& failure, const std::string& sModule, const std::string& sProcedure)
{
    const std::string end(kLineEnd);
    platform().screen().MsgBox(std::string(kComponentName) +
                                   " has encountered a problem. We are sorry for the inconvenience." + end + end +
                                   "Module: " + sModule + end + "Procedure: " + sProcedure + end +
                                   "Line Number: " + CStr(failure.vbcsErrorLine) + end + end +
                                   failure.vbcsErrorDescription + " (" + CStr(failure.vbcsErrorNumber) + ")",
                               BoxIcon::None, BoxButtons::Ok, "Application Error");
}

} // namespace

std::string componentVersion()
{
    return KEL_VERSION;
}

CapturedFailure& capturedFailure()
{
    thread_local CapturedFailure failure;
    return failure;
}

Boolean& bOpCancelled()
{
    thread_local Boolean bCancelled;
    return bCancelled;
}

void vbcsInitialise()
{
    const std::lock_guard lock(session().mutex);
    if (session().hasInitialised || session().isInitialising)
        return;
    session().isInitialising = true;
    session().isConnected = static_cast<bool>(session().client.Initialize());
    if (session().isConnected) {
        ignoringFailures([] {
            const HostCode debugger;
            session().hasDebugSession = static_cast<bool>(session().client.IPC()->HasDebugSession());
        });
    }
    if (FaultCapture* const capture = faultCapture())
        capture->install(&vbcsExceptionFilter);
    session().isInitialising = false;
    session().hasInitialised = true;
}

Boolean vbcsHasInitialised()
{
    return session().hasInitialised.load();
}

Boolean hasDebugSession()
{
    return session().hasDebugSession.load();
}

void vbcsForgetInitialisation()
{
    const std::lock_guard lock(session().mutex);
    session().client = vbcsClient();
    session().isConnected = false;
    session().hasDebugSession = false;
    session().hasInitialised = false;
}

void vbcsExceptionFilter(const FaultRecord& record)
{
    const FaultRecord* innermost = &record;
    while (innermost->nested)
        innermost = innermost->nested;
    // The statement is not known.
    throw RuntimeFailure(static_cast<Int32>((innermost->code & 0x8EFU) | 10000U), exceptionName(innermost->code),
                         "vbcsExceptionFilter", SourceLocation());
}

void captureFailure(SourceLocation procedure)
{
    const RuntimeFailure failure = caughtFailure();
    capturedFailure() = {failure.number(), failure.text(), static_cast<Int32>(lineWithin(procedure, failure.where())),
                         failure.source()};
}

std::string dumpOfGlobals()
{
    VariableLines lines;
    ignoringFailures([&] {
        const Variant oError = byTypeName(errorObject().get());
        const CapturedFailure failure = capturedFailure();
        const auto& [vbcsErrorNumber, vbcsErrorDescription, vbcsErrorLine, vbcsErrorSource] = failure;
        lines.add("oError, bOpCancelled, vbcsComponentID, vbcsHasInitialised", oError, bOpCancelled(),
                  session().vbcsComponentID, vbcsHasInitialised());
        lines.add("vbcsErrorNumber, vbcsErrorDescription, vbcsErrorLine, vbcsErrorSource", vbcsErrorNumber,
                  vbcsErrorDescription, vbcsErrorLine, vbcsErrorSource);
    });
    return lines.text();
}

void reportCrash(const CapturedFailure& failure, const std::string& sModule, const std::string& sProcedure,
                 const ProcedureDump& variables)
{
    // Whoever has sent the thread learns of the failure by catching it.
    if (WithoutHost::isHere())
        return;
    ignoringFailures([&] {
        std::shared_ptr<ErrorLibraryObject> library = createErrorLibrary(kErrorLibraryClass);
        if (!library) {
            showLastResort(failure, sModule, sProcedure);
            return;
        }
        const CrashReport report{failure.vbcsErrorNumber,
                                 kComponentName,
                                 sModule,
                                 sProcedure,
                                 failure.vbcsErrorDescription,
                                 failure.vbcsErrorLine,
                                 variablesText(variables),
                                 componentVersion()};
        const HostCode host;
        const std::shared_ptr<ErrorLibraryObject> called = std::move(library); // its end is the host's code too
        called->ErrorHandler(report);
        static_cast<void>(called->Action());
    });
}

Int32 vbcsSend(Int32 lCode, const std::string& sText, const Variant& vData, Int32 lArg1, Int32 lArg2)
{
    if (!session().isConnected)
        return kNotConnected;
    Int32 lResult = kNotConnected;
    ignoringFailures([&] {
        const HostCode debugger;
        lResult = session().client.IPC()->Send(lCode, sText, vData, lArg1, lArg2);
    });
    return lResult;
}

namespace detail {

void captureAndRaise(const char* source, SourceLocation procedure, TellVariables tell, const void* stated)
{
    faultCaught();
    captureFailure(procedure);
    // The host's code may run meanwhile, and capture failures of its own.
    const CapturedFailure failure = capturedFailure();
    ProcedureDump variables;
    ignoringFailures([&] { tell(stated, variables); });
    const auto [sModule, sProcedure] = namesIn(source);
    reportCrash(failure, sModule, sProcedure, variables);
    capturedFailure() = failure;
    throw RuntimeFailure(failure.vbcsErrorNumber, failure.vbcsErrorDescription, failure.vbcsErrorSource,
                         caughtFailure().where());
}

} // namespace detail

} // namespace kel
