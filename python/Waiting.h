// SPDX-License-Identifier: MIT
#pragma once

#include "python/Worker.h"

#include <pybind11/pybind11.h>

#include <optional>

namespace kel::python {

// How often a wait looks for a signal whose handler ran just before it began, and asks again for an end that a reader
// may have missed; in milliseconds.
inline constexpr int kLookAgain = 200;
inline constexpr int kAskAgain = 20;

/// Waits without the interpreter's lock. Handlers of signals run meanwhile; once one of them has raised, as that of
/// Ctrl-C does, `stop` is called again and again until the wait has ended in order. What was raised is the result.
template <class Stop>
[[nodiscard]] std::optional<pybind11::error_already_set> await(Signal& done, Stop stop)
{
    std::optional<pybind11::error_already_set> raised;
    for (;;) {
        bool came = false;
        {
            const pybind11::gil_scoped_release release;
            came = done.taken(raised ? kAskAgain : kLookAgain);
        }
        if (came)
            break;
        if (!raised && PyErr_CheckSignals() != 0)
            raised.emplace();
        if (raised)
            stop();
    }
    return raised;
}

/// The same where an end has been asked for already and nothing can be thrown: signals wait until it is over.
template <class Stop>
void awaitQuietly(Signal& done, Stop stop)
{
    const pybind11::gil_scoped_release release;
    while (!done.taken(kAskAgain))
        stop();
}

} // namespace kel::python
