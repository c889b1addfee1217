// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ProcedureVariables.h"
#include "platform/FaultCapture.h"
#include "platform/WayBack.h"
#include "types/CaughtFailure.h"

#include <exception>
#include <type_traits>
#include <utility>

namespace kel {

/// Reports a run-time failure under a procedure's source: number, text and line, type 0. The line is that of the
/// failing statement, or that of the procedure, if the statement is not known or stands in the file of something that
/// the procedure uses.
void reportRuntimeFailure(const char* source, const RuntimeFailure& failure, SourceLocation procedure);

/// That line. One of another file would lead whoever reads the report astray.
[[nodiscard]] unsigned lineWithin(SourceLocation procedure, const SourceLocation& failed);

namespace detail {

/// The common first trap of a procedure, called by its handler: reports what is being caught.
[[gnu::cold, gnu::noinline]] void reportCaught(const char* source, SourceLocation procedure);

/// What an object's procedure does about the thread's faults.
struct CalledByHost : ComponentCode {
    template <class Body>
    decltype(auto) run(Body&& body) const
    {
        return withWayBack(std::forward<Body>(body), isFromHost());
    }
};
/// What a procedure of a module does: an object's procedure has called it. Where no exception goes through the frames
/// of another module, it needs a way back of its own for what fails in there.
struct CalledCode {
    CalledCode() noexcept {}
    template <class Body>
    decltype(auto) run(Body&& body) const
    {
#if defined(_WIN32) && !defined(_WIN64)
        return withWayBack(std::forward<Body>(body));
#else
        return std::forward<Body>(body)();
#endif
    }
};
template <StatedVariables Stated>
using CodeOf = std::conditional_t<Stated::kIsOfAnObject, CalledByHost, CalledCode>;

/// How a cold function asks for a procedure's variables.
using TellVariables = void (*)(const void* stated, ProcedureDump& dump);

/// The second trap of a procedure, called by its handler: captures what is being caught, reports it with the variables,
/// and raises it again.
[[noreturn, gnu::cold]] void captureAndRaise(const char* source, SourceLocation procedure, TellVariables tell,
                                             const void* stated);

template <StatedVariables Stated>
[[noreturn]] void captureAndRaise(const char* source, SourceLocation procedure, const Stated& stated)
{
    captureAndRaise(
        source, procedure, [](const void* what, ProcedureDump& dump) { static_cast<const Stated*>(what)->tell(dump); },
        &stated);
}

} // namespace detail

/// The traps of a procedure. Its body runs; a run-time failure in it, a fault of the processor too, is reported under
/// `source` and goes no further, so that the procedure ends normally with the result assigned so far. What fails while
/// this is done meets the second trap: it is reported to the host's error library with the procedure's variables, and
/// goes on to the caller.
///
/// `source` has the form "KELReader81 - basScantron.InitReaderST". `stated` are the variables:
///
///     guarded(kSendCommand, KEL_PARAMETERS(oReader, sCmd) + KEL_LOCALS(sReply), [&] { … });
///
/// Locals that a dump has to show come before it, since those within the body are gone when the trap fires.
///
/// The processor's faults are taken while a procedure of an object runs, and what it calls: one that states `moduleOf`
/// its object. Those of modules are within one of these, and cost nothing until they fail.
template <StatedVariables Stated, class Body>
void guarded(const char* source, const Stated& stated, Body&& body,
             SourceLocation procedure = SourceLocation::current())
{
    const detail::CodeOf<Stated> running;
    try {
        try {
            running.run(body);
        } catch (const std::exception&) {
            detail::reportCaught(source, procedure);
        }
    } catch (const std::exception&) {
        detail::captureAndRaise(source, procedure, stated);
    }
}

/// The traps of a procedure with something of its own to do: `onFailure` gets the failure first, and answers whether it
/// has dealt with it. If not, it is reported in the common way. No further first trap follows: a failure of `onFailure`
/// itself goes to the second.
template <StatedVariables Stated, class Body, class OnFailure>
requires std::is_invocable_r_v<bool, OnFailure, const RuntimeFailure&>
void guarded(const char* source, const Stated& stated, Body&& body, OnFailure&& onFailure,
             SourceLocation procedure = SourceLocation::current())
{
    const detail::CodeOf<Stated> running;
    try {
        try {
            running.run(body);
        } catch (const std::exception&) {
            faultCaught();
            const RuntimeFailure failure = caughtFailure();
            if (!onFailure(failure))
                reportRuntimeFailure(source, failure, procedure);
        }
    } catch (const std::exception&) {
        detail::captureAndRaise(source, procedure, stated);
    }
}

/// The same without variables.
template <class Body>
void guarded(const char* source, Body&& body, SourceLocation procedure = SourceLocation::current())
{
    guarded(source, NothingStated(), std::forward<Body>(body), procedure);
}
template <class Body, class OnFailure>
requires(!StatedVariables<Body> && std::is_invocable_r_v<bool, OnFailure, const RuntimeFailure&>) void guarded(
    const char* source, Body&& body, OnFailure&& onFailure, SourceLocation procedure = SourceLocation::current())
{
    guarded(source, NothingStated(), std::forward<Body>(body), std::forward<OnFailure>(onFailure), procedure);
}

/// The second trap alone: for accessors, and for helpers that report nothing themselves. A failure goes on to the
/// caller, who reports it, or to the host. `source` has the form "clsKELReader.HelpID". The result is the body's.
template <StatedVariables Stated, class Body>
decltype(auto) captured(const char* source, const Stated& stated, Body&& body,
                        SourceLocation procedure = SourceLocation::current())
{
    const detail::CodeOf<Stated> running;
    try {
        return running.run(body);
    } catch (const std::exception&) {
        detail::captureAndRaise(source, procedure, stated);
    }
}
template <class Body>
decltype(auto) captured(const char* source, Body&& body, SourceLocation procedure = SourceLocation::current())
{
    return captured(source, NothingStated(), std::forward<Body>(body), procedure);
}

/// Runs a body that is allowed to fail without a report. True if it came to its end.
template <class Body>
bool ignoringFailures(Body&& body)
{
    const detail::CalledByHost running;
    try {
        running.run(body);
        return true;
    } catch (const std::exception&) {
        faultCaught();
        return false;
    }
}

} // namespace kel
