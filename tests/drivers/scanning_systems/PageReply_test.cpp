// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/PageReply.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace kel {
namespace {

constexpr Int32 kColumns = 48;

std::vector<PageStepSS> steps(PageReplySS& reply, MarkArray& marks, std::string_view bytes,
                              ColumnLettersSS letters = ColumnLettersSS::Upwards)
{
    std::vector<PageStepSS> result;
    for (const char byte : bytes)
        result.push_back(reply.take(marks, static_cast<Byte>(byte), letters));
    return result;
}

MarkArray marksOf(std::string_view bytes, ColumnLettersSS letters = ColumnLettersSS::Upwards, Int32 rows = 5)
{
    MarkArray marks(rows, kColumns);
    PageReplySS reply;
    steps(reply, marks, bytes, letters);
    return marks;
}

Int32 failureOf(std::string_view bytes, ColumnLettersSS letters = ColumnLettersSS::Upwards)
{
    try {
        static_cast<void>(marksOf(bytes, letters));
    } catch (const RuntimeFailure& failure) {
        return failure.number();
    }
    return 0;
}

TEST(ColumnSS, UpwardsEachCodeIsAColumn)
{
    for (int code = 0; code <= 255; ++code) {
        const ColumnSS column = columnSS(ColumnLettersSS::Upwards, static_cast<Byte>(code), 7);
        EXPECT_EQ(column.column, code - 47) << code;
        EXPECT_TRUE(column.exists) << code;
    }
    EXPECT_EQ(columnSS(ColumnLettersSS::Upwards, '0', 7).column, 1);
    EXPECT_EQ(columnSS(ColumnLettersSS::Upwards, '9', 7).column, 10);
    EXPECT_EQ(columnSS(ColumnLettersSS::Upwards, 'Z', 7).column, 43);
}

TEST(ColumnSS, TheSR430HasATableOfItsOwn)
{
    const std::string_view named = "9876543210XYABC";
    for (int code = 0; code <= 255; ++code) {
        const ColumnSS column = columnSS(ColumnLettersSS::SR430, static_cast<Byte>(code), 7);
        const std::size_t at = named.find(static_cast<char>(code));
        EXPECT_EQ(column.column, at == std::string_view::npos ? 7 : static_cast<int>(at) + 1) << code;
        EXPECT_EQ(column.exists, code < 58 || code > 62) << code;
    }
}

TEST(PageReplySS, StoresPairsRowByRow)
{
    const MarkArray marks = marksOf("01\r\r9;05\r");
    MarkArray expected(5, kColumns);
    expected(1, 1) = 1;
    expected(3, 10) = 11;
    expected(3, 1) = 5;
    EXPECT_EQ(marks, expected);
}

TEST(PageReplySS, TellsWhatEachByteHasBrought)
{
    MarkArray marks(5, kColumns);
    PageReplySS reply;
    EXPECT_EQ(reply.row(), 1);
    EXPECT_EQ(steps(reply, marks, "01\r \r 23"),
              (std::vector{PageStepSS::ElementOpen, PageStepSS::ElementDone, PageStepSS::ElementDone,
                           PageStepSS::ElementOpen, PageStepSS::ElementDone, PageStepSS::ElementOpen,
                           PageStepSS::ElementOpen, PageStepSS::ElementDone}));
    EXPECT_EQ(reply.row(), 3);
    EXPECT_EQ(marks(3, 3), 3);
}

TEST(PageReplySS, OneBlankIsSkippedInFrontOfAColumnOrARowsEnd)
{
    EXPECT_EQ(marksOf(" 01 12 \r 23"), marksOf("0112\r23"));
}

TEST(PageReplySS, ABlankIsAValueLikeAnyOther)
{
    EXPECT_EQ(marksOf("0 ")(1, 1), -16);
    EXPECT_EQ(marksOf("0\r")(1, 1), 13 - 48) << "and so is a CR in its place";
    EXPECT_EQ(marksOf("0\xFF")(1, 1), 255 - 48);
}

TEST(PageReplySS, WhatStandsBehindABlankIsTakenWhateverItIs)
{
    // The second blank is a column far below 1.
    EXPECT_EQ(failureOf("  1"), 9);
    EXPECT_EQ(failureOf("  "), 0) << "only storing the value fails";
    EXPECT_EQ(marksOf("21\r  7", ColumnLettersSS::SR430)(2, 8), 7) << "on the SR-430 a blank keeps the column";
}

TEST(PageReplySS, ColumnsOutsideTheArrayFail)
{
    EXPECT_EQ(failureOf("_1"), 0) << "column 48";
    EXPECT_EQ(failureOf("`1"), 9) << "column 49";
    EXPECT_EQ(failureOf("/1"), 9) << "column 0";
    EXPECT_EQ(failureOf("\r\r\r\r01"), 0) << "row 5";
    EXPECT_EQ(failureOf("\r\r\r\r\r01"), 9) << "row 6";
}

TEST(PageReplySS, TheSR430NamesItsColumnsDownwards)
{
    const MarkArray marks = marksOf("91C2\r0401X4", ColumnLettersSS::SR430);
    EXPECT_EQ(marks(1, 1), 1);
    EXPECT_EQ(marks(1, 15), 2);
    EXPECT_EQ(marks(2, 10), 1) << "the later of two values of a column";
    EXPECT_EQ(marks(2, 11), 4);
}

TEST(PageReplySS, AWrongColumnKeepsTheOneBefore)
{
    for (const char wrong : {':', ';', '<', '=', '>'}) {
        MarkArray marks(5, kColumns);
        PageReplySS reply;
        EXPECT_EQ(steps(reply, marks, std::string("81") + wrong + "5", ColumnLettersSS::SR430),
                  (std::vector{PageStepSS::ElementOpen, PageStepSS::ElementDone, PageStepSS::WrongColumn,
                               PageStepSS::ElementDone}));
        EXPECT_EQ(marks(1, 2), 5);
    }
    EXPECT_EQ(marksOf(":5", ColumnLettersSS::SR430)(1, 1), 5) << "before the first mark that is column 1";
    EXPECT_EQ(marksOf("81\rZ5", ColumnLettersSS::SR430)(2, 2), 5) << "over the end of a row too";
}

TEST(PageReplySS, ARowThatCannotBeCountedFails)
{
    MarkArray marks(1, 1);
    PageReplySS reply;
    while (reply.row() < 32767)
        static_cast<void>(reply.take(marks, '\r', ColumnLettersSS::Upwards));
    EXPECT_THROW(static_cast<void>(reply.take(marks, '\r', ColumnLettersSS::Upwards)), RuntimeFailure);
}

/// Where a reply stops makes no difference to what stands before it: each mark is stored with its last byte.
TEST(PageReplySS, IsTheSameAtEverySplit)
{
    const std::string_view bytes = " 01 23\r\r A5;6\r 9\x7F\r";
    MarkArray whole(5, kColumns);
    PageReplySS wholeReply;
    const std::vector<PageStepSS> all = steps(wholeReply, whole, bytes);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        MarkArray marks(5, kColumns);
        PageReplySS reply;
        std::vector<PageStepSS> found = steps(reply, marks, bytes.substr(0, cut));
        EXPECT_EQ(marks, marksOf(bytes.substr(0, cut))) << cut;
        const std::vector<PageStepSS> rest = steps(reply, marks, bytes.substr(cut));
        found.insert(found.end(), rest.begin(), rest.end());
        EXPECT_EQ(found, all) << cut;
        EXPECT_EQ(marks, whole) << cut;
        EXPECT_EQ(reply.row(), wholeReply.row()) << cut;
    }
}

} // namespace
} // namespace kel
