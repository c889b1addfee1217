// SPDX-License-Identifier: MIT
#include "platform/HostPump.h"

#include "simulators/platform/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace kel {

namespace {

TEST(HostPumpTest, RunsAtEachTurnOfItsThreadUntilItIsTakenAway)
{
    SimulatedPlatform machine;
    SimulatedPlatform other;
    const PlatformScope scope(machine);
    int turns = 0;
    setHostPump([&] { ++turns; });
    DoEvents();
    DoEvents();
    EXPECT_EQ(turns, 2);

    other.pump().DoEvents();
    EXPECT_EQ(turns, 2);

    setHostPump({});
    DoEvents();
    EXPECT_EQ(turns, 2);
}

} // namespace

} // namespace kel
