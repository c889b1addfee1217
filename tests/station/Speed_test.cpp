// SPDX-License-Identifier: MIT
#include "station/Speed.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

using namespace std::chrono_literals;

TEST(Speed, IsThatOfTheLastSheets)
{
    Speed speed;
    Speed::Time now{};
    EXPECT_EQ(speed.perMinute(now), 0);
    speed.count(now);
    EXPECT_EQ(speed.perMinute(now), 0);
    speed.count(now += 2s);
    EXPECT_DOUBLE_EQ(speed.perMinute(now), 30);
    EXPECT_DOUBLE_EQ(speed.perMinute(now + 30s), 30);
    for (int sheet = 0; sheet < 100; ++sheet)
        speed.count(now += 1s);
    EXPECT_DOUBLE_EQ(speed.perMinute(now), 60);
}

TEST(Speed, EndsAMinuteAfterTheLastSheets)
{
    Speed speed;
    Speed::Time now{};
    speed.count(now);
    speed.count(now + 10s);
    speed.count(now + 50s);
    EXPECT_DOUBLE_EQ(speed.perMinute(now + 60s), 2.4);
    EXPECT_DOUBLE_EQ(speed.perMinute(now + 61s), 1.5);
    EXPECT_EQ(speed.perMinute(now + 71s), 0);
}

TEST(Speed, OfSheetsOfOneMomentIsNone)
{
    Speed speed;
    speed.count({});
    speed.count({});
    EXPECT_EQ(speed.perMinute({}), 0);
}

} // namespace
} // namespace kel::test
