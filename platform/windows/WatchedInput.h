// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ReceivedInput.h"

#include <windows.h>

namespace kel {

/// The input side of a line that the pump serves.
class WatchedInput : public ReceivedInput {
public:
    /// The event that is set when a byte arrives from now on, or the line is gone; null for a line that cannot be
    /// watched, and has to be looked at.
    [[nodiscard]] virtual HANDLE arrival() { return nullptr; }

    /// The event is set.
    virtual void arrived() {}

protected:
    using ReceivedInput::ReceivedInput;
};

} // namespace kel
