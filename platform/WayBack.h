// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FaultCapture.h"

#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

namespace kel {

namespace detail {

/// A place on a thread's stack to which a fault can bring the thread back.
struct WayBack;

/// Runs `run(what)` with a way back, and throws what the filter makes of a fault that has taken it. `fromHost` says
/// that the code around is the host's: no fault goes further back than here.
void runWithWayBack(void (*run)(void*), void* what, bool fromHost);

} // namespace detail

/// Runs a body to whose end a fault comes back that cannot go there as an exception: one in a library without tables of
/// its frames, in a function that throws nothing, or of a stack that is full. The filter's exception is then thrown
/// from here. What the frames in between had built stays as it is. The result is the body's.
template <class Body>
decltype(auto) withWayBack(Body&& body, bool fromHost = false)
{
    using Result = std::invoke_result_t<Body>;
    if constexpr (std::is_void_v<Result>) {
        detail::runWithWayBack([](void* what) { (*static_cast<std::remove_reference_t<Body>*>(what))(); },
                               const_cast<void*>(static_cast<const void*>(&body)), fromHost);
    } else if constexpr (std::is_reference_v<Result>) {
        std::remove_reference_t<Result>* result = nullptr;
        withWayBack([&] { result = &body(); }, fromHost);
        return static_cast<Result>(*result);
    } else {
        std::optional<Result> result;
        withWayBack([&] { result.emplace(body()); }, fromHost);
        return static_cast<Result>(std::move(*result));
    }
}

namespace detail {

/// What a handler of faults knows: the code, of the innermost record, and whose filter makes an exception of it.
struct TakenFault {
    std::uint32_t code = 0;
    FaultFilter filter = nullptr;
};

/// The thread's innermost way back; null if there is none. A handler that takes a fault notes there which one, so that
/// the way is there for whatever becomes of the exception.
[[nodiscard]] WayBack* innermostWayBack() noexcept;
void expectFault(const TakenFault& fault) noexcept;

/// Goes back to a place of the calling thread with the fault that is expected.
[[noreturn]] void takeWayBack(WayBack& place) noexcept;

/// An exception that nobody can catch is the end of the process, unless it is a fault that has a way back. Called again
/// it does no harm.
void goBackInsteadOfTerminating();

} // namespace detail

} // namespace kel
