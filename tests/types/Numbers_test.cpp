// SPDX-License-Identifier: MIT
#include "tests/types/FailureOf.h"
#include "types/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kel::test {
namespace {

constexpr Int32 kLowest = std::numeric_limits<Int32>::min();
constexpr Int32 kHighest = std::numeric_limits<Int32>::max();

TEST(CIntTest, RoundsHalvesToTheEvenNeighbour)
{
    const std::pair<double, int> cases[] = {{0.5, 0},   {1.5, 2},   {2.5, 2},         {3.5, 4},          {-0.5, 0},
                                            {-1.5, -2}, {-2.5, -2}, {0.49, 0},        {0.51, 1},         {2.4999, 2},
                                            {2.501, 3}, {-0.6, -1}, {32767.4, 32767}, {-32768.5, -32768}};
    for (const auto& [value, whole] : cases) {
        EXPECT_EQ(CInt(value), whole) << value;
        EXPECT_EQ(CLng(value), whole) << value;
        EXPECT_EQ(CInt(static_cast<float>(value)), CInt(static_cast<double>(static_cast<float>(value)))) << value;
    }
}

TEST(CIntTest, OverflowsOutside16Bits)
{
    EXPECT_EQ(CInt(32767), 32767);
    EXPECT_EQ(CInt(-32768), -32768);
    EXPECT_EQ(failureOf([] { return CInt(32768); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CInt(-32769); }), FailureCode::Overflow);
    // The half rounds to the even neighbour, which does not fit.
    EXPECT_EQ(failureOf([] { return CInt(32767.5); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CInt(-32769.0); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CInt(65535U); }), FailureCode::Overflow);
}

TEST(CLngTest, OverflowsOutside32Bits)
{
    EXPECT_EQ(CLng(2147483647.4), kHighest);
    EXPECT_EQ(CLng(-2147483648.5), kLowest);
    EXPECT_EQ(failureOf([] { return CLng(2147483647.5); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CLng(-2147483649.0); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CLng(std::int64_t{kHighest} + 1); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CLng(std::nan("")); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CLng(HUGE_VAL); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CLng(-HUGE_VAL); }), FailureCode::Overflow);
}

TEST(NarrowTest, HasExactBoundsIn64BitsToo)
{
    EXPECT_EQ(narrow<std::int64_t>(-9223372036854775808.0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(failureOf([] { return narrow<std::int64_t>(9223372036854775808.0); }), FailureCode::Overflow);
}

TEST(CheckedArithmetic, OverflowsInTheOperandsType)
{
    EXPECT_EQ(checkedAdd(Int16{32766}, 1), 32767);
    EXPECT_EQ(checkedSubtract(Int16{-32767}, 1), -32768);
    EXPECT_EQ(checkedMultiply(Int16{256}, 127), 32512);
    EXPECT_EQ(checkedMultiply(Int16{-256}, 128), -32768);
    EXPECT_EQ(failureOf([] { return checkedAdd(Int16{32767}, 1); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return checkedSubtract(Int16{-32768}, 1); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return checkedMultiply(Int16{256}, 128); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return checkedAdd(kHighest, 1); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return checkedSubtract(kLowest, 1); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return checkedMultiply(Int32{65536}, 32768); }), FailureCode::Overflow);
    EXPECT_EQ(checkedMultiply(Int32{-65536}, 32768), kLowest);
}

TEST(CheckedArithmetic, HasNoAbsoluteValueOfTheLowestNumber)
{
    EXPECT_EQ(checkedAbs(Int16{-5}), 5);
    EXPECT_EQ(checkedAbs(Int16{5}), 5);
    EXPECT_EQ(failureOf([] { return checkedAbs(Int16{-32768}); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return checkedAbs(kLowest); }), FailureCode::Overflow);
}

TEST(CheckedArithmetic, NamesThePlaceOfTheFailingStatement)
{
    try {
        static_cast<void>(checkedAdd(kHighest, 1));
        FAIL();
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.where().line(), static_cast<unsigned>(__LINE__ - 3));
        EXPECT_TRUE(std::string(failure.where().file_name()).ends_with("Numbers_test.cpp"));
        EXPECT_EQ(failure.number(), 6);
        EXPECT_EQ(failure.text(), "Overflow");
        EXPECT_STREQ(failure.what(), "Overflow");
    }
}

} // namespace
} // namespace kel::test
