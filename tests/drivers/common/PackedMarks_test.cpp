// SPDX-License-Identifier: MIT
#include "drivers/common/PackedMarks.h"

#include <gtest/gtest.h>

#include <map>

namespace kel {
namespace {

constexpr Int16 kValue = 5;

/// The cells of a row that are not 0.
std::map<Int32, Int16> marked(const MarkArray& marks, Int32 row)
{
    std::map<Int32, Int16> cells;
    for (Int32 column = 1; column <= marks.columns(); ++column)
        if (marks(row, column) != 0)
            cells[column] = marks(row, column);
    return cells;
}

TEST(PackedRows, EachBitOfEachHalfHasItsColumn)
{
    const std::map<int, Int32> columns = {{0x01, 12}, {0x02, 11}, {0x04, 10}, {0x08, 9}, {0x10, 8}, {0x40, 7}};
    for (int byte = 0; byte <= 0xFF; ++byte) {
        std::map<Int32, Int16> first;
        std::map<Int32, Int16> second;
        for (const auto& [bit, column] : columns) {
            if (byte & bit) {
                first[column] = kValue;
                second[column - 6] = kValue;
            }
        }
        PackedRows page(2, kValue);
        for (const int half : {byte, 0x20, 0x20, byte})
            page.take(static_cast<Byte>(half));
        EXPECT_EQ(marked(page.marks(), 1), first) << byte;
        EXPECT_EQ(marked(page.marks(), 2), second) << byte;
        EXPECT_EQ(page.completeRows(), 2);
    }
}

TEST(PackedRows, AHalfRowIsStoredButNotCounted)
{
    PackedRows page(3, kValue);
    EXPECT_EQ(page.completeRows(), 0);
    page.take(0x01);
    EXPECT_EQ(page.completeRows(), 0);
    page.take(0x20);
    EXPECT_EQ(page.completeRows(), 1);
    page.take(0x40);
    EXPECT_EQ(page.completeRows(), 1);
    EXPECT_EQ(page.marks()(1, 12), kValue);
    EXPECT_EQ(page.marks()(2, 7), kValue);
}

TEST(PackedRows, OnlyAMarkOutsideTheArrayFails)
{
    PackedRows page(1, kValue);
    for (const char half : std::string_view(" @      "))
        page.take(static_cast<Byte>(half));
    EXPECT_EQ(page.completeRows(), 4);
    page.take(0x00); // no bit that carries a position, so no cell
    page.take(0xA0);
    EXPECT_EQ(page.completeRows(), 5);
    EXPECT_THROW(page.take(0x01), RuntimeFailure);
    EXPECT_EQ(page.marks()(1, 1), kValue);
}

TEST(PackedRows, RowsThatCannotBeCountedFail)
{
    PackedRows page(1, kValue);
    for (Int32 half = 0; half < 2 * 32766; ++half)
        page.take(0x20);
    EXPECT_EQ(page.completeRows(), 32766);
    page.take(0x20);
    EXPECT_THROW(page.take(0x20), RuntimeFailure);
}

TEST(FramedCommand, HasItsBytesAround)
{
    EXPECT_EQ(frameCommand("GETCONFIG"), "\x12\x1BGETCONFIG\x12"
                                         "E");
}

} // namespace
} // namespace kel
