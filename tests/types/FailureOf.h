// SPDX-License-Identifier: MIT
#pragma once

#include "types/RuntimeFailure.h"

#include <optional>

namespace kel::test {

/// The number of the run-time failure that a body ends with; nothing if it comes to its end.
template <class Body>
std::optional<FailureCode> failureOf(Body&& body)
{
    try {
        static_cast<void>(body());
    } catch (const RuntimeFailure& failure) {
        return failure.code();
    }
    return std::nullopt;
}

} // namespace kel::test
