// SPDX-License-Identifier: MIT
#include "tests/types/FailureOf.h"
#include "types/Text.h"

#include "tests/support/UsersLocale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>

namespace kel::test {
namespace {

TEST(ValTest, ReadsTheNumberAtTheBeginning)
{
    EXPECT_EQ(Val("123"), 123);
    EXPECT_EQ(Val("12abc"), 12);
    EXPECT_EQ(Val("-5"), -5);
    EXPECT_EQ(Val("+5"), 5);
    EXPECT_EQ(Val("1.5"), 1.5);
    EXPECT_EQ(Val("+.5"), 0.5);
    EXPECT_EQ(Val("-.5x"), -0.5);
    EXPECT_EQ(Val("5."), 5);
    EXPECT_EQ(Val("1.2.3"), 1.2);
    EXPECT_EQ(Val("1,5"), 1);
    EXPECT_EQ(Val("007"), 7);
}

TEST(ValTest, IsZeroWithoutANumber)
{
    for (const char* text : {"", "abc", "?", ".", "+", "-", "-.", "e5", "--5", "+-5", "inf", "nan", "&", "&x12", "x1"})
        EXPECT_EQ(Val(text), 0) << text;
}

TEST(ValTest, SkipsBlanksTabsAndLineFeedsWhereverTheyStand)
{
    EXPECT_EQ(Val("  12"), 12);
    EXPECT_EQ(Val("1 2\t3\n4"), 1234);
    EXPECT_EQ(Val("- 5"), -5);
    EXPECT_EQ(Val("1 . 5"), 1.5);
    EXPECT_EQ(Val("1 e 3"), 1000);
    EXPECT_EQ(Val(" & h 1 F"), 31);
    EXPECT_EQ(Val("1 x 2"), 1);
    // A carriage return is none of them.
    EXPECT_EQ(Val("1\r2"), 1);
    EXPECT_EQ(Val("\r2"), 0);
}

TEST(ValTest, KnowsExponentsWithEAndD)
{
    EXPECT_EQ(Val("1e3"), 1000);
    EXPECT_EQ(Val("1E3"), 1000);
    EXPECT_EQ(Val("1d3"), 1000);
    EXPECT_EQ(Val("1D+3"), 1000);
    EXPECT_EQ(Val("25e-1"), 2.5);
    EXPECT_EQ(Val(".5e1"), 5);
    EXPECT_EQ(Val("1.e1"), 10);
    EXPECT_EQ(Val("1e"), 1);
    EXPECT_EQ(Val("1e+"), 1);
    EXPECT_EQ(Val("1ex"), 1);
    EXPECT_EQ(Val("1e2e3"), 100);
}

TEST(ValTest, ReadsHexadecimalNumbersOf16And32Bits)
{
    EXPECT_EQ(Val("&h1F"), 31);
    EXPECT_EQ(Val("&H1f"), 31);
    EXPECT_EQ(Val("&h7FFF"), 32767);
    EXPECT_EQ(Val("&h8000"), -32768);
    EXPECT_EQ(Val("&hFFFF"), -1);
    EXPECT_EQ(Val("&h0000FFFF"), -1);
    EXPECT_EQ(Val("&h10000"), 65536);
    EXPECT_EQ(Val("&h7FFFFFFF"), 2147483647.0);
    EXPECT_EQ(Val("&h80000000"), -2147483648.0);
    EXPECT_EQ(Val("&hFFFFFFFF"), -1);
    EXPECT_EQ(Val("&h9601&"), 38401);
    EXPECT_EQ(Val("&o177777&"), 65535);
    EXPECT_EQ(Val("&hFFFFG&"), -1);
    EXPECT_EQ(Val("&h1G"), 1);
    EXPECT_EQ(Val("&h"), 0);
    EXPECT_EQ(Val("&hG"), 0);
    EXPECT_EQ(Val("&h1.8"), 1);
}

TEST(ValTest, ReadsOctalNumbers)
{
    EXPECT_EQ(Val("&o17"), 15);
    EXPECT_EQ(Val("&O17"), 15);
    EXPECT_EQ(Val("&o18"), 1);
    EXPECT_EQ(Val("&o177777"), -1);
    EXPECT_EQ(Val("&o200000"), 65536);
}

TEST(ValTest, OverflowsWhereNoDoubleIsLargeEnough)
{
    EXPECT_EQ(failureOf([] { return Val("1e309"); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return Val("-1e309"); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return Val(std::string(400, '9')); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return Val("&h100000000"); }), FailureCode::Overflow);
    EXPECT_EQ(Val("1e308"), 1e308);
    EXPECT_EQ(Val("1e-999"), 0);
    EXPECT_EQ(Val("-1.5e-999"), 0);
    EXPECT_EQ(Val("0e999"), 0);
    EXPECT_EQ(Val("0." + std::string(400, '0') + "1"), 0);
}

TEST(ValTest, DoesNotDependOnTheLocaleOfTheHost)
{
    UsersLocale german;
    german.takenByTheProcess();
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(Val("1.5"), 1.5);
    EXPECT_EQ(Val("1.5e-999"), 0);
    EXPECT_EQ(CStr(1.5), "1.5");
}

} // namespace
} // namespace kel::test
