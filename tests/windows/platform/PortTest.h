// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SteadyTime.h"
#include "platform/windows/WindowsPlatform.h"

#include "tests/support/Patience.h"

#include <gtest/gtest.h>

namespace kel::test {

/// A test that talks to the far end of COM1: a program that does what a line of text asks it for.
///
///     echo TEXT          sends TEXT back
///     send COUNT         sends so many bytes, 'a' to 'z' and again
///     late MS TEXT       sends TEXT after so many milliseconds
///     hangup [TEXT]      sends TEXT, and the line goes; a new one is there soon after
class PortTest : public ::testing::Test {
protected:
    static constexpr Int16 kPort = 1;

    void SetUp() override
    {
        line->CommPort(kPort);
        line->Settings("19200,N,8,1");
    }

    void open() { line->PortOpen(True); }
    void ask(const std::string& order) { line->Output(order + "\n"); }

    /// Lets turns go by until so many bytes wait; the number that waits.
    Int32 waitFor(Int32 count)
    {
        const Moment end = steadyTime() + kPatience;
        while (line->InBufferCount() < count && steadyTime() < end)
            machine.pump().DoEvents();
        return line->InBufferCount();
    }

    WindowsPlatform machine;
    PlatformScope scope{machine};
    std::unique_ptr<SerialControl> line = machine.newSerialControl();
};

} // namespace kel::test
