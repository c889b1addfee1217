// SPDX-License-Identifier: MIT
#include "strings/StringTable.h"

#include <gtest/gtest.h>

#include <limits>

namespace kel::test {
namespace {

TEST(StringTable, HoldsTextsFromZeroToItsBound)
{
    StringTable table(2048);
    table.store(0, "first");
    table.store(1023, "last of a page");
    table.store(1024, "first of a page");
    table.store(2048, "last");
    table.store(0, "first again");
    EXPECT_EQ(table.textOr(0, "-"), "first again");
    EXPECT_EQ(table.textOr(1, "-"), "");
    EXPECT_EQ(table.textOr(1023, "-"), "last of a page");
    EXPECT_EQ(table.textOr(1024, "-"), "first of a page");
    EXPECT_EQ(table.textOr(2047, "-"), "");
    EXPECT_EQ(table.textOr(2048, "-"), "last");
}

TEST(StringTable, KnowsItsBounds)
{
    StringTable table(4);
    EXPECT_EQ(table.textOr(5, "-"), "-");
    EXPECT_EQ(table.textOr(-1, "-"), "-");
    EXPECT_THROW(table.store(5, "x"), RuntimeFailure);
    EXPECT_THROW(table.store(-1, "x"), RuntimeFailure);
    EXPECT_THROW(StringTable(-1), RuntimeFailure);
    EXPECT_EQ(StringTable(0).textOr(0, "-"), "");
    EXPECT_EQ(StringTable().textOr(0, "-"), "-");
}

TEST(StringTable, TakesTheWholeRangeOfIndexes)
{
    constexpr Int32 highest = std::numeric_limits<Int32>::max();
    StringTable table(highest);
    table.store(highest, "far");
    EXPECT_EQ(table.textOr(highest, "-"), "far");
    EXPECT_EQ(table.textOr(highest - 1, "-"), "");
    EXPECT_EQ(table.textOr(1000, "-"), "");
    EXPECT_EQ(table.textOr(std::numeric_limits<Int32>::min(), "-"), "-");
}

} // namespace
} // namespace kel::test
