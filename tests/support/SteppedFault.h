// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace kel::test {

/// For procedures whose statements cannot fail but by a fault of the processor: lets one come about within them, at
/// whatever instruction. The component's fault capture has to be installed.
class SteppedFault {
public:
    /// Whether this machine and this compiler's code can do that.
    static const bool kPossible;

    /// Calls `attempt` in a process of its own each, with a fault in store at another of the component's instructions
    /// after `arm`, until one of them answers true. False if none of the first `instructions` does.
    static bool sweep(int instructions, const std::function<bool()>& attempt);

    /// From here on instructions are counted, up to there.
    static void arm();
    static void disarm();
};

} // namespace kel::test
