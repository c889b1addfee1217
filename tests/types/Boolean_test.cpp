// SPDX-License-Identifier: MIT
#include "types/Boolean.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace kel::test {
namespace {

TEST(BooleanTest, IsMinusOneOrZeroIn16Bits)
{
    EXPECT_EQ(True.bits(), -1);
    EXPECT_EQ(False.bits(), 0);
    EXPECT_EQ(Boolean().bits(), 0);
    EXPECT_EQ(Boolean(true).bits(), -1);
    EXPECT_EQ(Boolean(false).bits(), 0);
    EXPECT_EQ(sizeof(Boolean), 2U);
}

TEST(BooleanTest, TestsAsTrueForAnyOtherValueButIsNotEqualToTrue)
{
    for (const int bits : {1, 2, -2, 32767, -32768}) {
        const Boolean value = Boolean::fromBits(static_cast<std::int16_t>(bits));
        EXPECT_TRUE(value);
        EXPECT_FALSE(value == True);
        EXPECT_EQ(value.bits(), bits);
    }
    EXPECT_FALSE(Boolean::fromBits(0));
}

TEST(BooleanTest, CombinesBitByBit)
{
    EXPECT_EQ(True & False, False);
    EXPECT_EQ(True & True, True);
    EXPECT_EQ(True & Boolean::fromBits(6), Boolean::fromBits(6));
    // Both test as true, and together they are false.
    EXPECT_FALSE(Boolean::fromBits(1) & Boolean::fromBits(2));
}

TEST(BooleanTest, IsNotMadeFromNumbersOrPointers)
{
    EXPECT_FALSE((std::is_constructible_v<Boolean, int>));
    EXPECT_FALSE((std::is_constructible_v<Boolean, const char*>));
    EXPECT_FALSE((std::is_convertible_v<Boolean, int>));
}

} // namespace
} // namespace kel::test
