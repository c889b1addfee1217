// SPDX-License-Identifier: MIT
#include "pictures/SheetPicture.h"

#include <gmock/gmock.h>

#include <regex>

namespace kel {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

clsKELReaderWindow window(Int16 startRow, Int16 rows, Int16 rowGap, Int16 startColumn, Int16 columns, Int16 columnGap)
{
    clsKELReaderWindow window;
    window.StartRow(startRow);
    window.NumRows(rows);
    window.RowGap(rowGap);
    window.StartCol(startColumn);
    window.NumCols(columns);
    window.ColGap(columnGap);
    window.Page(1);
    window.Orientation(1);
    return window;
}

PictureForm form(Int32 rows, Int32 columns)
{
    PictureForm form;
    form.side1Rows = rows;
    form.side1Columns = columns;
    form.scale = {.highest = 15, .threshold = 7, .hasShades = true};
    return form;
}

PictureSheet sheet(Int32 rows, Int32 columns)
{
    PictureSheet sheet;
    sheet.sheet = 12;
    sheet.side1 = MarkArray(rows, columns);
    return sheet;
}

/// What the first group of a pattern matches, each time.
std::vector<std::string> found(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> matches;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        matches.push_back((*match)[1]);
    return matches;
}

/// The numbers of a window's cells with their places.
std::vector<std::string> cellNumbers(const std::string& picture)
{
    return found(picture, "<text (x=\"\\d+\" y=\"\\d+\">\\d+)</text>");
}

TEST(SheetPicture, AMarkStandsInItsCellWithItsShade)
{
    PictureSheet read = sheet(4, 5);
    read.side1(2, 3) = 1;
    read.side1(4, 5) = 15;
    const std::string picture = sheetPicture(form(4, 5), read);
    EXPECT_THAT(picture, HasSubstr("<path class=\"mark mark1\" d=\"M25 15h.1\"/>"));
    EXPECT_THAT(picture, HasSubstr("<path class=\"mark mark4\" d=\"M45 35h.1\"/>"));
}

TEST(SheetPicture, AValueAboveTheScaleIsDarkestAndOneBelowZeroIsOdd)
{
    PictureSheet read = sheet(2, 2);
    read.side1(1, 1) = 32767;
    read.side1(2, 2) = -32768;
    const std::string marks = drawSheet(form(2, 2), read, layoutOf(form(2, 2), read)).marks;
    EXPECT_THAT(marks, HasSubstr("<path class=\"mark mark4\" d=\"M5 5h.1\"/>"));
    EXPECT_THAT(marks, HasSubstr("<path class=\"odd\" d=\"M15 15h.1\"/>"));
}

TEST(SheetPicture, AReaderWithoutShadesGivesEveryMarkTheDarkest)
{
    PictureForm plain = form(2, 2);
    plain.scale = {.highest = 1, .threshold = 1, .hasShades = false};
    PictureSheet read = sheet(2, 2);
    read.side1(1, 1) = 1;
    read.side1(2, 1) = 2;
    EXPECT_THAT(sheetPicture(plain, read), HasSubstr("<path class=\"mark mark4\" d=\"M5 5h.1M5 15h.1\"/>"));
}

TEST(SheetPicture, BothSidesStandSideBySide)
{
    PictureForm both = form(3, 10);
    both.side2Rows = 2;
    both.side2Columns = 4;
    const SheetLayout layout = layoutOf(both);
    ASSERT_EQ(layout.sides.size(), 2U);
    EXPECT_EQ(layout.sides[0].y, layout.sides[1].y);
    EXPECT_GT(layout.sides[1].x, layout.sides[0].x + 10 * kCellSize);
}

TEST(SheetPicture, MissingTimingMarksAreShownAndSaid)
{
    PictureSheet read = sheet(3, 2);
    read.side1TimingMarks = 2;
    const std::string picture = sheetPicture(form(3, 2), read);
    EXPECT_THAT(picture, HasSubstr("<path class=\"timing counted\" d=\"M-10 5h7M-10 15h7\"/>"));
    EXPECT_THAT(picture, HasSubstr("<path class=\"missed\" d=\"M-10 25h7\"/>"));
    EXPECT_THAT(picture, HasSubstr("class=\"wrong\" x=\"-13\" y=\"-12\">Side 1: 2 timing marks, 3 rows<"));
}

TEST(SheetPicture, CellsAreNumberedRowByRow)
{
    PictureForm rows = form(9, 9);
    rows.windows = {window(2, 2, 2, 3, 2, 1)};
    EXPECT_THAT(cellNumbers(formPicture(rows)), ElementsAre("x=\"25\" y=\"17\">1", "x=\"35\" y=\"17\">2",
                                                            "x=\"25\" y=\"37\">3", "x=\"35\" y=\"37\">4"));
}

TEST(SheetPicture, OrientationZeroIsNumberedColumnByColumnUnlessTheReaderLooksAway)
{
    PictureForm columns = form(9, 9);
    columns.windows = {window(1, 2, 1, 1, 2, 1)};
    columns.windows.front().Orientation(0);
    EXPECT_THAT(cellNumbers(formPicture(columns)),
                ElementsAre("x=\"5\" y=\"7\">1", "x=\"15\" y=\"7\">3", "x=\"5\" y=\"17\">2", "x=\"15\" y=\"17\">4"));
    columns.readsByOrientation = false;
    EXPECT_THAT(cellNumbers(formPicture(columns)),
                ElementsAre("x=\"5\" y=\"7\">1", "x=\"15\" y=\"7\">2", "x=\"5\" y=\"17\">3", "x=\"15\" y=\"17\">4"));
}

TEST(SheetPicture, ANegativeGapRunsFromTheLowEnd)
{
    PictureForm backwards = form(9, 9);
    backwards.windows = {window(1, 1, 1, 9, 3, -2)};
    EXPECT_THAT(cellNumbers(formPicture(backwards)),
                ElementsAre("x=\"45\" y=\"7\">1", "x=\"65\" y=\"7\">2", "x=\"85\" y=\"7\">3"));
}

TEST(SheetPicture, CellsThatFallOnOneAnotherShowTheOneReadLast)
{
    PictureForm heap = form(9, 9);
    heap.windows = {window(1, 1, 1, 4, 3, 0)};
    EXPECT_THAT(cellNumbers(formPicture(heap)), ElementsAre("x=\"35\" y=\"7\">3"));
    EXPECT_THAT(faultsOfForm(heap), ElementsAre("Window 1 has all its columns in column 4: its ColGap is 0."));
}

TEST(SheetPicture, AWindowBeyondThePaperIsSeenAndSaid)
{
    PictureForm beyond = form(3, 4);
    beyond.windows = {window(3, 2, 1, 4, 1, 1)};
    const std::string picture = formPicture(beyond);
    EXPECT_THAT(picture, HasSubstr("<path class=\"cell\" d=\"M31 21h8v8h-8z\"/>"));
    EXPECT_THAT(picture, HasSubstr("<path class=\"outside\" d=\"M31 31h8v8h-8z\"/>"));
    EXPECT_THAT(found(picture, "class=\"wrong\"[^>]*>([^<]*)<"),
                ElementsAre("Window 1 reaches row 4, column 4;", "side 1 has 3 rows and 4 columns."));
}

TEST(SheetPicture, WindowsThatNoPaperCouldHoldAreSaid)
{
    PictureForm strange = form(3, 4);
    strange.windows = {window(0, 1, 1, 1, 1, 1), window(1, 0, 1, 1, 1, 1),
                       window(32767, 32767, 32767, 1, 32767, 32767)};
    strange.windows.push_back(window(1, 1, 1, 1, 1, 1));
    strange.windows.back().Page(2);
    strange.windows.back().StartCol(-5);
    EXPECT_THAT(faultsOfForm(strange),
                ElementsAre("Window 1 begins at row 0, column 1; both count from 1.", "Window 2 has no cells.",
                            "Window 3 reaches row 1073676289, column 1073643523; side 1 has 3 rows and 4 columns.",
                            "Window 4 begins at row 1, column -5; both count from 1."));
    EXPECT_LT(formPicture(strange).size(), 50'000U);
}

TEST(SheetPicture, WindowsAloneGiveTheSizeOfAForm)
{
    PictureForm windows;
    windows.windows = {window(2, 5, 1, 3, 4, 1)};
    const SheetLayout layout = layoutOf(windows);
    ASSERT_EQ(layout.sides.size(), 1U);
    EXPECT_EQ(layout.sides.front().rows, 6);
    EXPECT_EQ(layout.sides.front().columns, 6);
}

TEST(SheetPicture, AnArrayLargerThanTheFormIsShownAsFarAsItIsMarked)
{
    PictureSheet read = sheet(128, 12);
    EXPECT_EQ(layoutOf(form(40, 12), read).sides.front().rows, 40);
    read.side1(50, 1) = 1;
    EXPECT_EQ(layoutOf(form(40, 12), read).sides.front().rows, 50);
    read.side1TimingMarks = 60;
    EXPECT_EQ(layoutOf({}, read).sides.front().rows, 60);
}

TEST(SheetPicture, BarcodesStandInTheirZonesAndTheOthersAtTheFoot)
{
    PictureForm zoned = form(20, 12);
    clsKELReaderBarcode zone;
    zone.Page(1);
    zone.Distance(20);
    zone.Length(10);
    zoned.barcodes = {zone};
    PictureSheet read = sheet(20, 12);
    read.barcodes = {"", "4711", "more"};
    const std::string picture = sheetPicture(zoned, read);
    EXPECT_THAT(picture, HasSubstr("barcode zone 1, from 20 to 30"));
    EXPECT_THAT(picture, HasSubstr("<text class=\"read\" x=\"4\" y=\"65\">4711</text>"));
    EXPECT_THAT(picture, HasSubstr(">Barcode: more<"));
    EXPECT_THAT(picture, Not(HasSubstr(">Barcode: 4711<")));
}

TEST(SheetPicture, RejectedPrintedAndRecordAreSaid)
{
    PictureSheet read = sheet(2, 2);
    EXPECT_THAT(sheetPicture(form(2, 2), read), Not(HasSubstr("REJECTED")));
    read.rejected = true;
    read.printed = true;
    read.printedLines = {"2026-01-31 12"};
    read.record = {{"Student", "0815"}};
    EXPECT_THAT(sheetPicture(form(2, 2), read),
                AllOf(HasSubstr(">REJECTED<"), HasSubstr(">Printed: 2026-01-31 12<"), HasSubstr(">Student: 0815<"),
                      HasSubstr("aria-label=\"Sheet 12, rejected, marks on side 1: 0, printed\"")));
}

TEST(SheetPicture, TextsOfASheetAreNeverMarkup)
{
    PictureSheet read = sheet(2, 2);
    const std::string hostile = "</text><script>alert(\"1\")</script>&'\x01\x1F\x7F]]>";
    read.barcodes = {hostile};
    read.printed = true;
    read.printedLines = {hostile};
    read.record = {{hostile, hostile}};
    for (const bool inZone : {false, true}) {
        PictureForm paper = form(40, 40);
        if (inZone)
            paper.barcodes.resize(1);
        const std::string picture = sheetPicture(paper, read);
        EXPECT_THAT(picture, Not(HasSubstr("<script")));
        EXPECT_THAT(picture,
                    HasSubstr("&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt;&amp;&#39;\u2401\u241F\u2421"));
        EXPECT_TRUE(std::none_of(picture.begin(), picture.end(), [](char c) { return c == '\x01' || c == '\x7F'; }));
    }
}

TEST(SheetPicture, ALongBarcodeIsCutBetweenCharacters)
{
    PictureSheet read = sheet(2, 2);
    std::string& barcode = read.barcodes.emplace_back();
    for (int i = 0; i < 10'000; ++i)
        barcode += "\u00FC";
    const std::string picture = sheetPicture(form(2, 2), read);
    EXPECT_LT(picture.size(), 12'000U);
    EXPECT_THAT(picture, HasSubstr("\u00FC\u2026 (10000 characters)"));
}

TEST(SheetPicture, AReaderWithoutMarksShowsItsRecord)
{
    PictureSheet read;
    read.sheet = 1;
    read.record = {{"1", "B"}};
    EXPECT_THAT(sheetPicture({}, read), AllOf(HasSubstr(">Sheet 1<"), HasSubstr(">1: B<")));
}

} // namespace
} // namespace kel
