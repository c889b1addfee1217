// SPDX-License-Identifier: MIT
#include "cli/SheetCsv.h"
#include "cli/SheetTable.h"
#include "store/SheetRows.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

host::Sheet sheetWith(Int32 rows, Int32 columns)
{
    host::Sheet sheet;
    sheet.number = 3;
    sheet.side1 = MarkArray(rows, columns);
    return sheet;
}

TEST(SheetTable, MarksStandOutOfTheDots)
{
    host::Sheet sheet = sheetWith(4, 7);
    sheet.side1(1, 1) = 1;
    sheet.side1(2, 6) = 15;
    sheet.side1(2, 7) = 241;
    sheet.side1(3, 5) = -1;
    sheet.barcodes = TextArray::of(0, {"4711", ""});
    sheet.rejected = true;
    EXPECT_EQ(sheetTable(sheet, 80), "Sheet 3   barcode \"4711\"   REJECTED\n"
                                     "  Side 1\n"
                                     "  1  1.... ..\n"
                                     "  2  ..... F#\n"
                                     "  3  ....# ..\n"
                                     "     row 4 is blank\n"
                                     "\n");
}

TEST(SheetTable, TimingMarksSayHowFarThePaperGoes)
{
    host::Sheet sheet = sheetWith(500, 2);
    sheet.side1TimingMarks = 2;
    sheet.printed = true;
    EXPECT_EQ(sheetTable(sheet, 80), "Sheet 3   printed\n"
                                     "  Side 1, 2 timing marks\n"
                                     "  1  ..\n"
                                     "  2  ..\n"
                                     "     rows 3 to 500 are blank\n"
                                     "\n");
}

TEST(SheetTable, SidesStandSideBySideWhereTheyFit)
{
    host::Sheet sheet = sheetWith(2, 3);
    sheet.side1(2, 3) = 1;
    sheet.side2 = MarkArray(1, 2);
    sheet.side2(1, 1) = 9;
    EXPECT_EQ(sheetTable(sheet, 80), "Sheet 3\n"
                                     "  Side 1      Side 2\n"
                                     "  1  ...      1  9.\n"
                                     "  2  ..1\n"
                                     "\n");
    EXPECT_EQ(sheetTable(sheet, 15), "Sheet 3\n"
                                     "  Side 1\n"
                                     "  1  ...\n"
                                     "  2  ..1\n"
                                     "  Side 2\n"
                                     "  1  9.\n"
                                     "\n");
}

TEST(SheetTable, BlankSheetSaysSo)
{
    EXPECT_EQ(sheetTable(sheetWith(500, 14), 80), "Sheet 3\n"
                                                  "  Side 1\n"
                                                  "     no marks\n"
                                                  "\n");
    host::Sheet empty;
    empty.number = 1;
    EXPECT_EQ(sheetTable(empty, 80), "Sheet 1\n\n");
}

TEST(SheetTable, RecordStandsFieldByField)
{
    host::Sheet sheet;
    sheet.number = 1;
    sheet.record.emplace();
    sheet.record->Add("Student ID", "77");
    sheet.record->Add(Int32{1}, "A");
    EXPECT_EQ(sheetTable(sheet, 80), "Sheet 1\n"
                                     "    Student ID: 77\n"
                                     "    1: A\n"
                                     "\n");
}

TEST(SheetTable, EndSaysHowItCameOut)
{
    std::string written;
    std::string told;
    TableText table([&](const std::string& text) { written += text; }, [&](const std::string& text) { told += text; },
                    80);
    table.failure({.description = "It fails.", .source = "basX.Y", .title = ""});
    table.end({.started = true, .sheets = 1});
    table.end({.started = true, .sheets = 12});
    table.end({.started = false});
    EXPECT_EQ(written, "1 sheet read.\n12 sheets read.\nThe reader did not start.\n");
    EXPECT_EQ(told, "It fails. (basX.Y)\n");
}

TEST(SheetCsv, OneRowASheet)
{
    std::string written;
    std::string told;
    SheetCsv csv([&](const std::string& text) { written += text; }, [&](const std::string& text) { told += text; });
    host::Sheet sheet = sheetWith(2, 3);
    sheet.side1(1, 2) = 7;
    sheet.side1(2, 3) = 1;
    sheet.side1TimingMarks = 2;
    sheet.barcodes = TextArray::of(0, {"a,b", "c"});
    csv.sheet(sheet);
    sheet.number = 4;
    sheet.rejected = true;
    sheet.record.emplace();
    sheet.record->Add("Student ID", "77");
    csv.sheet(sheet);
    csv.failure({.number = 9, .description = "It fails.", .source = "basX.Y", .title = ""});
    csv.end({});
    EXPECT_EQ(written, "sheet,rejected,printed,side1TimingMarks,side2TimingMarks,barcodes,side1,side2,record\n"
                       "3,false,false,2,-1,\"a,b c\",1:2=7 2:3=1,,\n"
                       "4,true,false,2,-1,\"a,b c\",1:2=7 2:3=1,,\"{\"\"Student ID\"\":\"\"77\"\"}\"\n");
    EXPECT_EQ(told, "It fails. (9, basX.Y)\n");
}

TEST(SheetCsv, BatchWithoutSheetsHasItsHeading)
{
    std::string written;
    SheetCsv csv([&](const std::string& text) { written += text; }, {});
    csv.end({});
    EXPECT_EQ(written, "sheet,rejected,printed,side1TimingMarks,side2TimingMarks,barcodes,side1,side2,record\n");
}

TEST(SheetCsv, FieldsAreQuotedWhereTheyMust)
{
    EXPECT_EQ(csvLine({"a", "b c", "d,e", "f\"g", "h\ni", ""}), "a,b c,\"d,e\",\"f\"\"g\",\"h\ni\",\n");
}

} // namespace
} // namespace kel
