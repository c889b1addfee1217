// SPDX-License-Identifier: MIT
#pragma once

#include "host/UsageError.h"

#include <string>

namespace kel::test {

/// The sentence that a body is refused with; empty if it is not.
template <class Body>
std::string refusalOf(Body&& body)
{
    try {
        static_cast<void>(body());
    } catch (const host::UsageError& error) {
        return error.what();
    }
    return {};
}

} // namespace kel::test
