#pragma once

#include "types/RuntimeFailure.h"

#include <exception>
#include <utility>

namespace kel {

/// Reports a run-time failure under a procedure's source: number, text and the failing statement's line, type 0.
void reportRuntimeFailure(const char* source, const RuntimeFailure& failure);

/// The guard of a procedure: runs the body; a run-time failure in it is reported under `source` and goes no further,
/// so that the procedure ends normally with the result assigned so far.
/// `source` has the form "KELReader81 - basScantron.InitReaderST".
template <class Body>
void guarded(const char* source, Body&& body)
{
    try {
        std::forward<Body>(body)();
    } catch (const std::exception&) {
        reportRuntimeFailure(source, caughtFailure());
    }
}

/// A guard with something of its own to do: `onFailure` gets the failure first, and answers whether it has dealt with
/// it. If not, it is reported in the common way. A failure of `onFailure` itself is reported too.
template <class Body, class OnFailure>
void guarded(const char* source, Body&& body, OnFailure&& onFailure)
{
    try {
        std::forward<Body>(body)();
    } catch (const std::exception&) {
        const RuntimeFailure failure = caughtFailure();
        guarded(source, [&] {
            if (!onFailure(failure))
                reportRuntimeFailure(source, failure);
        });
    }
}

/// Runs a body that is allowed to fail without anybody being told. True if it came to its end.
template <class Body>
bool ignoringFailures(Body&& body)
{
    try {
        std::forward<Body>(body)();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace kel
