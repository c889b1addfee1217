// SPDX-License-Identifier: MIT
#include "tests/types/FailureOf.h"
#include "types/Arrays.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

constexpr auto kOutside = FailureCode::SubscriptOutOfRange;

TEST(Array1Test, IsUndimensionedAtFirst)
{
    Array1<Int16> array;
    EXPECT_FALSE(array.isDimensioned());
    EXPECT_TRUE(array.elements().empty());
    EXPECT_EQ(failureOf([&] { return array.LBound(); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array.UBound(); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array(0); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array(1); }), kOutside);
    EXPECT_EQ(failureOf([&] {
                  array.ReDimPreserve(1);
                  return 0;
              }),
              kOutside);
}

TEST(Array1Test, ChecksBothBounds)
{
    Array1<Int16> array(1, 3);
    array(1) = 10;
    array(3) = 30;
    EXPECT_EQ(array.elements(), (std::vector<Int16>{10, 0, 30}));
    EXPECT_EQ(array.LBound(), 1);
    EXPECT_EQ(array.UBound(), 3);
    for (const Int32 index : {0, 4, -1, std::numeric_limits<Int32>::min(), std::numeric_limits<Int32>::max()}) {
        EXPECT_EQ(failureOf([&] { return array(index); }), kOutside) << index;
        EXPECT_EQ(failureOf([&] { return std::as_const(array)(index); }), kOutside) << index;
    }
}

TEST(Array1Test, MayHaveBoundsOfItsOwn)
{
    Array1<Int16> array(-2, 2);
    array(-2) = 1;
    EXPECT_EQ(array.elements(), (std::vector<Int16>{1, 0, 0, 0, 0}));
    EXPECT_EQ(failureOf([&] { return array(3); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array(-3); }), kOutside);
    EXPECT_EQ(failureOf([] { return Array1<Int16>(1, 0); }), kOutside);
    EXPECT_EQ(failureOf([] { return Array1<Int16>(0, -1); }), kOutside);
    EXPECT_EQ(Array1<Int16>(0, 0).UBound(), 0);
}

TEST(Array1Test, KeepsItsStateWhenItCannotBeDimensioned)
{
    Array1<Int16> array(1, 2);
    array(2) = 5;
    EXPECT_EQ(failureOf([&] {
                  array.ReDim(1, 0);
                  return 0;
              }),
              kOutside);
    EXPECT_EQ(failureOf([&] {
                  array.ReDimPreserve(0);
                  return 0;
              }),
              kOutside);
    EXPECT_EQ(array(2), 5);
}

TEST(Array1Test, LosesItsElementsWithReDimAndKeepsThemWithPreserve)
{
    TextArray array(1, 2);
    array(2) = "two";
    array.ReDimPreserve(4);
    EXPECT_EQ(array.elements(), (std::vector<std::string>{"", "two", "", ""}));
    array.ReDimPreserve(1);
    EXPECT_EQ(array.UBound(), 1);
    array(1) = "one";
    array.ReDim(1, 2);
    EXPECT_EQ(array.elements(), (std::vector<std::string>{"", ""}));
    array.Erase();
    EXPECT_FALSE(array.isDimensioned());
    EXPECT_EQ(array, TextArray());
}

TEST(Array1Test, IsMadeOfElements)
{
    EXPECT_EQ(PageArray::of(1, {7, 8})(2), 8);
    const auto none = PageArray::of(1, {});
    EXPECT_TRUE(none.isDimensioned());
    EXPECT_EQ(none.LBound(), 1);
    EXPECT_EQ(none.UBound(), 0);
    EXPECT_FALSE(none == PageArray());
}

TEST(Array2Test, IsUndimensionedAtFirst)
{
    MarkArray array;
    EXPECT_FALSE(array.isDimensioned());
    EXPECT_EQ(array.rows(), 0);
    EXPECT_EQ(array.columns(), 0);
    EXPECT_EQ(failureOf([&] { return array.UBound(1); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array.UBound(2); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array(1, 1); }), kOutside);
}

TEST(Array2Test, CountsRowsAndColumnsFromOne)
{
    MarkArray array(2, 3);
    array(1, 1) = 11;
    array(1, 3) = 13;
    array(2, 1) = 21;
    array(2, 3) = 23;
    EXPECT_EQ(array.elements(), (std::vector<Int16>{11, 0, 13, 21, 0, 23}));
    EXPECT_EQ(array.UBound(), 2);
    EXPECT_EQ(array.UBound(1), 2);
    EXPECT_EQ(array.UBound(2), 3);
    EXPECT_EQ(failureOf([&] { return array.UBound(0); }), kOutside);
    EXPECT_EQ(failureOf([&] { return array.UBound(3); }), kOutside);
}

TEST(Array2Test, ChecksEachBoundOnItsOwn)
{
    MarkArray array(2, 3);
    const std::pair<Int32, Int32> outside[] = {{0, 1}, {3, 1}, {1, 0}, {1, 4}, {2, 4}, {-1, 2}, {2, -1}};
    for (const auto& [first, second] : outside) {
        const Int32 row = first;
        const Int32 column = second;
        EXPECT_EQ(failureOf([&] { return array(row, column); }), kOutside) << row << "," << column;
        EXPECT_EQ(failureOf([&] { return std::as_const(array)(row, column); }), kOutside) << row << "," << column;
    }
}

TEST(Array2Test, HasAtLeastOneRowAndColumn)
{
    EXPECT_EQ(failureOf([] { return MarkArray(0, 1); }), kOutside);
    EXPECT_EQ(failureOf([] { return MarkArray(1, 0); }), kOutside);
    EXPECT_EQ(failureOf([] { return MarkArray(-1, -1); }), kOutside);
}

TEST(Array2Test, StartsAnewWithReDim)
{
    MarkArray array(1, 2);
    array(1, 2) = 5;
    array.ReDim(2, 1);
    EXPECT_EQ(array.elements(), (std::vector<Int16>{0, 0}));
    array.Erase();
    EXPECT_EQ(array, MarkArray());
}

TEST(ArrayTest, NamesThePlaceOfTheFailingStatement)
{
    const MarkArray array(1, 1);
    try {
        static_cast<void>(array(2, 1));
        FAIL();
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.where().line(), static_cast<unsigned>(__LINE__ - 3));
        EXPECT_EQ(failure.text(), "Subscript out of range");
    }
}

} // namespace
} // namespace kel::test
