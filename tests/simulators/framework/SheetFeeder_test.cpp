// SPDX-License-Identifier: MIT
#include "simulators/framework/SheetFeeder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace kel {
namespace {

std::string sheetsRefusal(std::string_view text)
{
    try {
        static_cast<void>(SheetFeeder::fromJson(text));
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "taken";
}

TEST(SheetFeeder, GivesItsSheetsInOrder)
{
    SheetFeeder feeder{{.side1 = {{1}}}, {.side1 = {{2}}}};
    feeder.put({.side1 = {{3}}});
    EXPECT_EQ(feeder.remaining(), 3U);
    EXPECT_EQ(feeder.take().side1, (MarkRows{{1}}));
    EXPECT_EQ(feeder.take().side1, (MarkRows{{2}}));
    EXPECT_EQ(feeder.take().side1, (MarkRows{{3}}));
    EXPECT_TRUE(feeder.empty());
    EXPECT_TRUE(SheetFeeder().empty());
}

TEST(SheetFeeder, MakesRandomSheetsWhenTheirTurnComes)
{
    constexpr std::uint64_t kPile = 1'000'000'000'000; // no memory holds these
    SheetFeeder feeder{{.side1 = {{1}}}};
    feeder.put({}, {.seed = 7, .count = kPile});
    feeder.put({.side1 = {{3}}});
    EXPECT_EQ(feeder.remaining(), kPile + 2);
    EXPECT_EQ(feeder.take().side1, (MarkRows{{1}}));
    EXPECT_EQ(feeder.take(), randomSheet({}, 7, 0));
    EXPECT_EQ(feeder.take(), randomSheet({}, 7, 1));
    EXPECT_EQ(feeder.remaining(), kPile - 1);
}

TEST(SheetFeeder, GoesOnAfterTheLastOfItsRandomSheets)
{
    SheetFeeder feeder;
    feeder.put({}, {.seed = 9, .count = 2});
    feeder.put({}, {.seed = 1, .count = 0});
    feeder.put({}, {.seed = 5, .count = 2, .copies = true});
    feeder.put({.side1 = {{3}}});
    EXPECT_EQ(feeder.take(), randomSheet({}, 9, 0));
    EXPECT_EQ(feeder.take(), randomSheet({}, 9, 1));
    EXPECT_EQ(feeder.take(), randomSheet({}, 5, 0));
    EXPECT_EQ(feeder.take(), randomSheet({}, 5, 0));
    EXPECT_EQ(feeder.take().side1, (MarkRows{{3}}));
    EXPECT_TRUE(feeder.empty());
}

TEST(SheetFeeder, ReadsSheetsFromJson)
{
    SheetFeeder feeder = SheetFeeder::fromJson(
        R"([{"side1":[[0,1],[15,-3]],"side2":[[7]],"barcodes":["123",""],"fields":{"Student ID":"077","Score":12}},{}])");
    ASSERT_EQ(feeder.remaining(), 2U);
    const SimulatedSheet sheet = feeder.take();
    EXPECT_EQ(sheet.side1, (MarkRows{{0, 1}, {15, -3}}));
    EXPECT_EQ(sheet.side2, (MarkRows{{7}}));
    EXPECT_EQ(sheet.barcodes, (std::vector<std::string>{"123", ""}));
    EXPECT_EQ(fieldOf(sheet, "Student ID"), "077");
    EXPECT_EQ(fieldOf(sheet, "Score"), "12");
    EXPECT_EQ(fieldOf(sheet, "Class", "none"), "none");
    EXPECT_EQ(feeder.take(), SimulatedSheet{});
}

TEST(SheetFeeder, MistakesNameTheirPlace)
{
    EXPECT_EQ(sheetsRefusal("{}"), "the text has to be an array, not an object");
    EXPECT_EQ(sheetsRefusal("[{},7]"), "sheet 2 has to be an object, not a number");
    EXPECT_EQ(sheetsRefusal(R"([{"side3":[]}])"),
              "sheet 1 has an unknown key \"side3\"; the keys are side1, side2, barcodes, fields");
    EXPECT_EQ(sheetsRefusal(R"([{"side1":7}])"), "sheet 1, side1 has to be an array, not a number");
    EXPECT_EQ(sheetsRefusal(R"([{},{"side2":[[1],2]}])"), "sheet 2, side2, row 2 has to be an array, not a number");
    EXPECT_EQ(sheetsRefusal(R"([{"side1":[[0],[1,"x"]]}])"),
              "sheet 1, side1, row 2, column 2 has to be a whole number, not a text");
    EXPECT_EQ(sheetsRefusal(R"([{"side1":[[1.5]]}])"),
              "sheet 1, side1, row 1, column 1 has to be a whole number from -32768 to 32767, not 1.5");
    EXPECT_EQ(sheetsRefusal(R"([{"side1":[[40000]]}])"),
              "sheet 1, side1, row 1, column 1 has to be a whole number from -32768 to 32767, not 40000");
    EXPECT_EQ(
        sheetsRefusal(R"([{"side1":[[18446744073709551615]]}])"),
        "sheet 1, side1, row 1, column 1 has to be a whole number from -32768 to 32767, not 18446744073709551615");
    EXPECT_EQ(sheetsRefusal(R"([{"barcodes":["1",2]}])"), "sheet 1, barcode 2 has to be a text, not a number");
    EXPECT_EQ(sheetsRefusal(R"([{"barcodes":"1"}])"), "sheet 1, barcodes has to be an array, not a text");
    EXPECT_EQ(sheetsRefusal(R"([{"fields":[]}])"), "sheet 1, fields has to be an object");
    EXPECT_EQ(sheetsRefusal(R"([{"fields":{"A":[1]}}])"), "sheet 1, field \"A\" has to be a text or a number, not [1]");
    EXPECT_EQ(sheetsRefusal("[{]").find("the text is not JSON: line 1, column 3"), 0U) << sheetsRefusal("[{]");
}

TEST(SheetFeeder, ReadsAFileAndNamesItInMistakes)
{
    const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "kel_sheets_test.json";
    std::ofstream(file) << R"([{"side1":[[1]]}])";
    EXPECT_EQ(SheetFeeder::fromFile(file).remaining(), 1U);
    std::ofstream(file) << R"([7])";
    try {
        static_cast<void>(SheetFeeder::fromFile(file));
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()), file.string() + ": sheet 1 has to be an object, not a number");
    }
    std::filesystem::remove(file);
    EXPECT_THROW(static_cast<void>(SheetFeeder::fromFile(file)), std::runtime_error);
    EXPECT_THROW(static_cast<void>(SheetFeeder::fromFile(testing::TempDir())), std::runtime_error);
}

TEST(SheetFeeder, WhatIsWrittenReadsAsTheSame)
{
    const SheetShape shape{.side1Rows = 5,
                           .side1Columns = 7,
                           .side2Rows = 2,
                           .side2Columns = 3,
                           .highestMark = 15,
                           .barcodes = 2,
                           .digitFields = {{"Student ID", 9}}};
    const std::vector<SimulatedSheet> sheets = {randomSheet(shape, 1, 0), randomSheet(shape, 1, 1), {}};
    SheetFeeder feeder = SheetFeeder::fromJson(toJson(sheets));
    for (const SimulatedSheet& sheet : sheets)
        EXPECT_EQ(feeder.take(), sheet);
}

TEST(RandomSheet, IsTheSameOnEveryMachine)
{
    const SheetShape shape{
        .side1Rows = 3, .side1Columns = 8, .densityPercent = 50, .lowestMark = 1, .highestMark = 9, .barcodes = 1};
    const SimulatedSheet sheet = randomSheet(shape, 42, 3);
    EXPECT_EQ(sheet.side1, (MarkRows{{0, 0, 0, 0, 8, 0, 2, 0}, {7, 0, 0, 0, 3, 6, 0, 0}, {8, 0, 0, 7, 0, 6, 6, 9}}));
    EXPECT_EQ(sheet.barcodes, (std::vector<std::string>{"30022055"}));
}

TEST(RandomSheet, DependsOnSeedAndPlace)
{
    const SheetShape shape;
    EXPECT_NE(randomSheet(shape, 7, 0), randomSheet(shape, 7, 1));
    EXPECT_NE(randomSheet(shape, 7, 0), randomSheet(shape, 8, 0));
    EXPECT_NE(randomSheet(shape, 7, 1), randomSheet(shape, 8, 0));
}

TEST(RandomSheet, HasTheShapeAskedFor)
{
    const SheetShape shape{.side1Rows = 60,
                           .side1Columns = 48,
                           .side2Rows = 20,
                           .side2Columns = 12,
                           .densityPercent = 25,
                           .lowestMark = 3,
                           .highestMark = 5,
                           .barcodes = 3,
                           .barcodeLength = 6,
                           .digitFields = {{"Student ID", 9}}};
    const SimulatedSheet sheet = randomSheet(shape, 5, 0);
    ASSERT_EQ(sheet.side1.size(), 60U);
    ASSERT_EQ(sheet.side2.size(), 20U);
    int marked = 0;
    int values[6] = {};
    for (const std::vector<Int16>& row : sheet.side1) {
        ASSERT_EQ(row.size(), 48U);
        for (const Int16 mark : row) {
            ASSERT_TRUE(mark == 0 || (mark >= 3 && mark <= 5)) << mark;
            marked += mark != 0;
            ++values[mark];
        }
    }
    EXPECT_NEAR(marked, 60 * 48 / 4, 80);
    for (const int value : {3, 4, 5})
        EXPECT_NEAR(values[value], marked / 3, 60);
    EXPECT_EQ(sheet.side2.front().size(), 12U);
    ASSERT_EQ(sheet.barcodes.size(), 3U);
    EXPECT_EQ(sheet.barcodes[2].size(), 6U);
    EXPECT_EQ(fieldOf(sheet, "Student ID").size(), 9U);
    EXPECT_EQ(fieldOf(sheet, "Student ID").find_first_not_of("0123456789"), std::string::npos);
}

TEST(RandomSheet, ADensityOfNothingOrAllIsExact)
{
    const SimulatedSheet none = randomSheet({.densityPercent = 0}, 1, 0);
    const SimulatedSheet all = randomSheet({.densityPercent = 100}, 1, 0);
    for (std::size_t row = 0; row < 10; ++row) {
        EXPECT_EQ(none.side1[row], std::vector<Int16>(10, 0));
        EXPECT_EQ(all.side1[row], std::vector<Int16>(10, 1));
    }
}

TEST(SimulatedSheet, AMarkOutsideIsNone)
{
    const MarkRows rows = {{1, 2}, {3}};
    EXPECT_EQ(markAt(rows, 1, 2), 2);
    EXPECT_EQ(markAt(rows, 2, 1), 3);
    EXPECT_EQ(markAt(rows, 2, 2), 0);
    EXPECT_EQ(markAt(rows, 3, 1), 0);
    EXPECT_EQ(markAt(rows, 0, 1), 0);
    EXPECT_EQ(markAt(rows, 1, 0), 0);
}

} // namespace
} // namespace kel
