// SPDX-License-Identifier: MIT
#include "drivers/scantron/SheetCells.h"

#include "contract/clsKELReaderWindow.h"
#include "drivers/scantron/FormCommands.h"
#include "tests/types/FailureOf.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Places = std::vector<std::pair<Int16, Int16>>;

struct Along {
    Int16 start = 1;
    Int16 count = 1;
    Int16 gap = 1;
};

Reference<clsKELReaderWindow> windowOf(Along rows, Along columns, Int16 orientation)
{
    auto window = makeReference<clsKELReaderWindow>();
    window->StartRow(rows.start);
    window->NumRows(rows.count);
    window->RowGap(rows.gap);
    window->StartCol(columns.start);
    window->NumCols(columns.count);
    window->ColGap(columns.gap);
    window->Orientation(orientation);
    return window;
}

Places placesOf(Along rows, Along columns, Int16 orientation)
{
    Places places;
    WindowCellsST cells(windowOf(rows, columns, orientation));
    while (cells.next())
        places.emplace_back(cells.row(), cells.column());
    EXPECT_FALSE(cells.next()) << "behind the last one there is none";
    return places;
}

TEST(WindowCells, ComeRowByRowOrColumnByColumn)
{
    const Along rows{.start = 2, .count = 2, .gap = 3};
    const Along columns{.start = 7, .count = 2};
    EXPECT_THAT(placesOf(rows, columns, 1),
                ElementsAre(std::pair(2, 7), std::pair(2, 8), std::pair(5, 7), std::pair(5, 8)));
    EXPECT_THAT(placesOf(rows, columns, 0),
                ElementsAre(std::pair(2, 7), std::pair(5, 7), std::pair(2, 8), std::pair(5, 8)));
    EXPECT_EQ(placesOf(rows, columns, 2), placesOf(rows, columns, 1));
    EXPECT_EQ(placesOf(rows, columns, -1), placesOf(rows, columns, 1));
}

TEST(WindowCells, BeginAtTheLowEnd)
{
    EXPECT_THAT(placesOf({}, {.start = 9, .count = 3, .gap = -2}, 1),
                ElementsAre(std::pair(1, 5), std::pair(1, 7), std::pair(1, 9)));
    EXPECT_THAT(placesOf({.start = 4, .count = 2, .gap = 0}, {}, 0), ElementsAre(std::pair(4, 1), std::pair(4, 1)));
}

TEST(WindowCells, AreNoneWithoutRowsOrColumns)
{
    for (const Int16 none : {Int16{0}, Int16{-1}}) {
        EXPECT_THAT(placesOf({.count = none}, {.count = 3}, 1), IsEmpty());
        EXPECT_THAT(placesOf({.count = none}, {.count = 3}, 0), IsEmpty());
        EXPECT_THAT(placesOf({.count = 3}, {.count = none}, 1), IsEmpty());
        EXPECT_THAT(placesOf({.count = 3}, {.count = none}, 0), IsEmpty());
    }
}

TEST(WindowCells, HaveNumbersOf16Bits)
{
    WindowCellsST cells(windowOf({.start = 32766, .count = 2}, {}, 1));
    EXPECT_TRUE(cells.next());
    EXPECT_EQ(failureOf([&] { return cells.next(); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return WindowCellsST(windowOf({}, {.count = 2, .gap = -32768}, 1)); }),
              FailureCode::Overflow);
    // The products count, not what comes out in the end.
    EXPECT_EQ(failureOf([] { return positionInWindow(-32768, 181, 182); }), FailureCode::Overflow);
    EXPECT_EQ(positionInWindow(-32768, 181, 181), -188);
}

TEST(WindowCells, ALineIsAsLongAsTheWindowSaysWhenItBegins)
{
    const auto window = windowOf({.count = 3}, {.count = 2}, 1);
    WindowCellsST cells(window);
    Places places;
    while (cells.next()) {
        places.emplace_back(cells.row(), cells.column());
        if (cells.row() == 1) {
            window->NumCols(1);  // from row 2 on
            window->NumRows(2);  // settled when the window began
            window->StartCol(9); // so is where it lies
            window->Orientation(0);
        }
    }
    EXPECT_THAT(places, ElementsAre(std::pair(1, 1), std::pair(1, 2), std::pair(2, 1), std::pair(3, 1)));
}

TEST(PageSide, RowsHave48ColumnsWhateverTheArrayHas)
{
    MarkArray marks(2, 50);
    PageSideST side;
    EXPECT_EQ(side.lastRow(), 0);
    for (int i = 0; i < 48; ++i)
        side.store(marks, 1);
    EXPECT_EQ(side.lastRow(), 1);
    EXPECT_EQ(side.nextRow(), 2);
    side.store(marks, -16);
    EXPECT_EQ(side.lastRow(), 2);
    EXPECT_EQ(marks(1, 48), 1);
    EXPECT_EQ(marks(1, 49), 0);
    EXPECT_EQ(marks(2, 1), -16);

    MarkArray narrow(2, 3);
    PageSideST narrowSide;
    for (int i = 0; i < 3; ++i)
        narrowSide.store(narrow, 255);
    EXPECT_EQ(failureOf([&] { narrowSide.store(narrow, 255); }), FailureCode::SubscriptOutOfRange);
    EXPECT_EQ(narrow(1, 3), 255);
}

TEST(ColumnDefinition, HasAOneForEachColumn)
{
    EXPECT_EQ(columnDefinitionST(2, 5, 3), "\x1B"
                                           "FRM=MC Y N 1 2 1 1 5 3 L 5 3 111\r");
    EXPECT_EQ(columnDefinitionST(1, 5, 0), "\x1B"
                                           "FRM=MC Y N 1 1 1 1 5 0 L 5 0 \r");
    EXPECT_EQ(failureOf([] { return columnDefinitionST(1, 5, -1); }), FailureCode::InvalidProcedureCall);
}

} // namespace
} // namespace kel::test
