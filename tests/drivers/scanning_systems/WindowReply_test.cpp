// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/WindowReply.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>

namespace kel {
namespace {

using Windows = std::vector<Reference<clsKELReaderWindow>>;

struct Block {
    int startRow = 1;
    int numRows = 1;
    int rowGap = 1;
    int startCol = 1;
    int colGap = 1;
    int page = 1;
};

Reference<clsKELReaderWindow> window(const Block& block)
{
    auto cWindow = makeReference<clsKELReaderWindow>();
    cWindow->StartRow(static_cast<Int16>(block.startRow));
    cWindow->NumRows(static_cast<Int16>(block.numRows));
    cWindow->RowGap(static_cast<Int16>(block.rowGap));
    cWindow->StartCol(static_cast<Int16>(block.startCol));
    cWindow->ColGap(static_cast<Int16>(block.colGap));
    cWindow->Page(static_cast<Int16>(block.page));
    return cWindow;
}

struct Placed {
    MarkArray marks{9, 9};
    Int32 failure = 0;
};

Placed place(std::string_view sOutput, const Windows& windows, Int16 iPage = 1)
{
    Placed result;
    try {
        WindowPlacingSS at;
        placeWindowReplySS(sOutput, windows, iPage, result.marks, at);
    } catch (const RuntimeFailure& failure) {
        result.failure = failure.number();
    }
    return result;
}

/// Marks as (row, column, value).
MarkArray marks(std::initializer_list<std::array<int, 3>> cells)
{
    MarkArray result(9, 9);
    for (const auto& [row, column, value] : cells)
        result(row, column) = static_cast<Int16>(value);
    return result;
}

void expectPlaced(const Placed& placed, const MarkArray& expected, Int32 failure = 0)
{
    EXPECT_EQ(placed.failure, failure);
    EXPECT_EQ(placed.marks, expected);
}

TEST(WindowReplySS, AFieldHasAPairForEachMark)
{
    expectPlaced(place("1235,", {window({.startRow = 2, .startCol = 4})}), marks({{2, 4, 2}, {2, 6, 5}}));
}

TEST(WindowReplySS, TheColumnGapSpreadsTheMarks)
{
    expectPlaced(place("1235,", {window({.startRow = 2, .startCol = 4, .colGap = 2})}), marks({{2, 4, 2}, {2, 8, 5}}));
}

TEST(WindowReplySS, TheRowGapSpreadsTheRowsAndABlankFieldIsAnEmptyRow)
{
    expectPlaced(place("11,  ,23,", {window({.startRow = 2, .numRows = 3, .rowGap = 3})}),
                 marks({{2, 1, 1}, {8, 2, 3}}));
    expectPlaced(place(" x,22,", {window({.numRows = 2})}), marks({{2, 2, 2}}));
}

TEST(WindowReplySS, WhatStandsInPlaceOfAFieldsCommaIsPassed)
{
    expectPlaced(place("  x22,", {window({.numRows = 2})}), marks({{2, 2, 2}}));
}

TEST(WindowReplySS, WindowsFollowWithAnyNumberOfLineEndsAndCommas)
{
    const Windows windows = {window({.startRow = 1}), window({.startRow = 5})};
    const MarkArray expected = marks({{1, 1, 1}, {5, 2, 2}});
    expectPlaced(place("11,22,", windows), expected);
    expectPlaced(place("11,\r22,", windows), expected);
    expectPlaced(place("11,\r,,\r\r22,", windows), expected);
    expectPlaced(place("11,\n22,", windows), marks({{1, 1, 1}}), 9);
}

TEST(WindowReplySS, AWindowWithoutRowsTakesNothing)
{
    expectPlaced(place("11,", {window({.numRows = 0}), window({.startRow = 3})}), marks({{3, 1, 1}}));
    expectPlaced(place(",\r11,", {window({.numRows = -4}), window({.startRow = 3})}), marks({{3, 1, 1}}));
}

TEST(WindowReplySS, EachPageTakesItsOwnWindows)
{
    const Windows windows = {window({.startRow = 1}), window({.startRow = 2}), window({.startRow = 3, .page = 2}),
                             window({.startRow = 4, .page = 2})};
    expectPlaced(place("11,12,", windows, 1), marks({{1, 1, 1}, {2, 1, 2}}));
    expectPlaced(place("13,14,", windows, 2), marks({{3, 1, 3}, {4, 1, 4}}));
    expectPlaced(place("13,14,15,", windows, 2), marks({{3, 1, 3}, {4, 1, 4}}));
    expectPlaced(place("13,", windows, 3), marks({}));
}

TEST(WindowReplySS, TheFirstWindowOfAnotherPageEndsTheReply)
{
    expectPlaced(
        place("11,12,", {window({.startRow = 1}), window({.startRow = 2, .page = 2}), window({.startRow = 3})}),
        marks({{1, 1, 1}}));
    // A higher page in front is not skipped.
    expectPlaced(place("11,", {window({.page = 2}), window({})}), marks({}));
    expectPlaced(place("11,", {window({.page = 0}), window({.startRow = 2})}), marks({{2, 1, 1}}));
    expectPlaced(place("11,", {window({.page = 1}), window({.page = 1})}, 2), marks({}));
}

TEST(WindowReplySS, OneCharacterIsNoReply)
{
    expectPlaced(place("", {window({})}), marks({}));
    expectPlaced(place("1", {window({})}), marks({}));
    expectPlaced(place(" ", {window({})}), marks({}));
}

TEST(WindowReplySS, TheLastCharacterAloneIsLeft)
{
    // After the first window's comma only one character is left, so the second window is not begun.
    expectPlaced(place("11,2", {window({}), window({.startRow = 2})}), marks({{1, 1, 1}}));
}

TEST(WindowReplySS, AReplyThatEndsWithinAFieldFails)
{
    expectPlaced(place("12", {window({})}), marks({{1, 1, 2}}), 5);
    expectPlaced(place("123", {window({})}), marks({{1, 1, 2}}), 5);
    expectPlaced(place("1234", {window({})}), marks({{1, 1, 2}, {1, 3, 4}}), 5);
    expectPlaced(place("12,", {window({.numRows = 2})}), marks({{1, 1, 2}}), 5);
    expectPlaced(place("12, ", {window({.numRows = 3})}), marks({{1, 1, 2}}), 5);
    expectPlaced(place("  ", {window({})}), marks({}));
}

TEST(WindowReplySS, AFieldsFirstPairMayBeginWithAComma)
{
    // A comma where a pair should stand is taken as its column, five below the first.
    expectPlaced(place(",5,", {window({.startCol = 7})}), marks({{1, 2, 5}}));
    expectPlaced(place("1,,", {window({})}), marks({{1, 1, ',' - '0'}}));
}

TEST(WindowReplySS, MarksOutsideTheArrayFail)
{
    expectPlaced(place("11:1,", {window({})}), marks({{1, 1, 1}}), 9);
    expectPlaced(place("01,", {window({})}), marks({}), 9);
    expectPlaced(place("11,", {window({.startRow = 10})}), marks({}), 9);
    expectPlaced(place("11,", {window({.startRow = 0})}), marks({}), 9);
    expectPlaced(place("11,", {window({.startCol = 10})}), marks({}), 9);
    expectPlaced(place(" x,11,", {window({.startRow = 9, .numRows = 2})}), marks({}), 9);
    expectPlaced(place(" x,", {window({.startRow = 99, .startCol = 99})}), marks({}));
    MarkArray none;
    WindowPlacingSS at;
    EXPECT_THROW(placeWindowReplySS("11,", {window({})}, 1, none, at), RuntimeFailure);
}

TEST(WindowReplySS, SumsAboveSixteenBitsFail)
{
    expectPlaced(place("91,", {window({.colGap = 32767})}), marks({}), 6);
    expectPlaced(place("21,", {window({.startCol = 32767, .colGap = 1})}), marks({}), 6);
    expectPlaced(place("11,", {window({.startRow = 1, .rowGap = 32767})}), marks({{1, 1, 1}}), 6);
    expectPlaced(place("11,", {window({.startRow = 1, .rowGap = 32766})}), marks({{1, 1, 1}}));
}

TEST(WindowReplySS, NoMoreCharactersThanSixteenBitsCount)
{
    const Windows windows = {window({.numRows = 1})};
    const std::string separators(32764, '\r');
    expectPlaced(place("11," + separators, windows), marks({{1, 1, 1}}));
    expectPlaced(place("11," + separators + "\r", windows), marks({}), 6);
    expectPlaced(place(std::string(32766, '1'), windows), marks({{1, 1, 1}}), 5);
    // After the last position there is none that could be counted.
    expectPlaced(place(std::string(32767, '1'), windows), marks({{1, 1, 1}}), 6);
}

TEST(WindowReplySS, NoWindowsAreNothingToLookAt)
{
    expectPlaced(place("11,", {}), marks({}), 91);
    expectPlaced(place("", {}), marks({}), 91);
    expectPlaced(place("11,22,", {window({}), nullptr}), marks({{1, 1, 1}}), 91);
    expectPlaced(place("11,", {nullptr, window({})}), marks({}), 91);
}

/// Whatever a reply ends with, only the failures that are meant come of it, and nothing is read outside it.
TEST(WindowReplySS, EveryCutOfAReplyIsSafe)
{
    const std::string reply = "1235,  ,\r,1112,44,\r";
    const Windows windows = {window({.numRows = 2}), window({.startRow = 4, .numRows = 2})};
    const MarkArray whole = marks({{1, 1, 2}, {1, 3, 5}, {4, 1, 2}, {5, 4, 4}});
    expectPlaced(place(reply, windows), whole);
    for (std::size_t cut = 0; cut < reply.size(); ++cut) {
        // A copy of its own size lets the sanitizers see a step after the end.
        const std::vector<char> exact(reply.begin(), reply.begin() + static_cast<std::ptrdiff_t>(cut));
        const Placed placed = place({exact.data(), exact.size()}, windows);
        EXPECT_TRUE(placed.failure == 0 || placed.failure == 5) << cut;
        for (Int32 row = 1; row <= 9; ++row)
            for (Int32 column = 1; column <= 9; ++column)
                EXPECT_TRUE(placed.marks(row, column) == 0 || placed.marks(row, column) == whole(row, column) ||
                            (row == 4 && column == 1))
                    << cut;
    }
}

} // namespace
} // namespace kel
