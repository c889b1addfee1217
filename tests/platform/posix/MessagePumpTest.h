// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/LineInput.h"
#include "platform/posix/SteadyTime.h"
#include "tests/platform/posix/PosixTest.h"

#include <chrono>
#include <thread>

namespace kel::test {

/// Turns of the pump, and what they take.
class MessagePumpTest : public PosixTest {
protected:
    /// How long some turns take in all.
    Moment timeOf(int turns)
    {
        const Moment begin = steadyTime();
        for (int turn = 0; turn < turns; ++turn)
            machine.pump().DoEvents();
        return steadyTime() - begin;
    }

    /// What a pump knows of itself.
    struct Inside : TurnPump {
        static Moment wait(const TurnPump& pump, bool lineIsOpen)
        {
            return (pump.*&Inside::longestWait)(Moment::max(), lineIsOpen ? Watched::All : Watched::Nothing);
        }
        static std::size_t openLines(const TurnPump& pump) { return (pump.*&Inside::lines)().size(); }
    };

    /// How often the pump asks the system in some turns.
    std::uint64_t pollsOf(int turns)
    {
        const std::uint64_t before = machine.pump().polls();
        timeOf(turns);
        return machine.pump().polls() - before;
    }

    /// Bytes from the far end, which wait unread at the line when this returns.
    static void arrive(Pty& pty, const std::string& bytes)
    {
        ASSERT_EQ(pty.write(bytes), bytes.size());
        while (pty.allRead())
            std::this_thread::yield();
    }

    /// Bytes from the far end; the caller has been told of them when this returns.
    void arriveAndTell(Pty& pty, PosixSerialControl& line, const std::string& bytes)
    {
        const Int32 wanted = line.InBufferCount() + static_cast<Int32>(bytes.size());
        ASSERT_EQ(pty.write(bytes), bytes.size());
        while (line.InBufferCount() < wanted)
            sleepUntil(steadyTime() + std::chrono::microseconds(100));
    }

    std::unique_ptr<ScanTimer> timer(Int32 interval)
    {
        auto made = machine.newScanTimer();
        made->Interval(interval);
        return made;
    }
};

} // namespace kel::test
