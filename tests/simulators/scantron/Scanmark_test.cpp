// SPDX-License-Identifier: MIT
#include "simulators/scantron/Scanmark.h"

#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using Errors = std::vector<std::string>;
using Log = std::vector<SheetRecord>;

std::string framed(const std::string& command)
{
    return "\x1B" + command + "\r";
}

class ScanmarkTest : public ::testing::Test {
protected:
    void make(kelReaderType model, SheetFeeder sheets = {}, std::map<std::string, std::string> settings = {},
              std::initializer_list<const char*> faults = {})
    {
        SimulatorOptions options{
            .model = model, .sheets = std::move(sheets), .rate = Rate::Unlimited, .settings = std::move(settings)};
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        reader_.emplace(std::move(options));
        bench_.emplace(*reader_);
    }

    /// A Scanmark 2500 with a form of two rows and three columns.
    void start(SheetFeeder sheets = {}, std::map<std::string, std::string> settings = {},
               std::initializer_list<const char*> faults = {})
    {
        make(kelReaderTypeScantronScanMark2500, std::move(sheets), std::move(settings), faults);
        askAll({"SRST", "FRM=FS 2 0 3 N N N", "FRM=DK 1 1 1 2 3 L 2 3", "FRM=LS"});
    }

    std::string ask(const std::string& command, Moment time = 10s) { return bench_->ask(framed(command), time); }

    /// The replies to several commands, one after the other.
    std::string askAll(std::initializer_list<const char*> commands)
    {
        std::string replies;
        for (const char* command : commands)
            replies += ask(command);
        return replies;
    }

    void expectError(const std::string& text) { EXPECT_EQ(reader_->errors(), Errors{text}); }

    std::optional<Scanmark> reader_;
    std::optional<DeviceBench> bench_;
};

const SimulatedSheet kSheet{.side1 = {{1, 2, 3}, {4, 0, 6}}};

TEST_F(ScanmarkTest, AWholeSession)
{
    make(kelReaderTypeScantronScanMark2500, {kSheet});
    EXPECT_EQ(askAll({"SRST", "FRM=FS 2 0 3 N N N", "FRM=DK 1 1 1 2 3 L 2 3", "FRM=LS"}), "\r\r\r\r");
    EXPECT_EQ(ask("QSTS"), "0000000 !000");
    EXPECT_EQ(ask("READ 5 Y"), "123406\r");
    EXPECT_EQ(ask("QSTS"), "0000000  000");
    EXPECT_EQ(ask("PRN$ 1 Y   KEL 7"), "\r");
    EXPECT_EQ(ask("EJCT A "), "\r");
    EXPECT_EQ(ask("SRST"), "\r");
    EXPECT_EQ(reader_->errors(), Errors{});
    EXPECT_EQ(reader_->log(), (Log{{SheetEvent::Fed, 1},
                                   {SheetEvent::Read, 1},
                                   {SheetEvent::Printed, 1, "KEL 7", 1, 2},
                                   {SheetEvent::Ejected, 1, "A"}}));
}

TEST_F(ScanmarkTest, WindowsGoOutByRowsOrByColumnsAndSide1First)
{
    make(kelReaderTypeScantronScanMark2500,
         {{.side1 = {{1, 2, 3, 4, 5}, {6, 7, 8, 9, 0}, {1, 1, 2, 2, 3}}, .side2 = {{7, 7}, {8, 9}}}});
    askAll({"SRST", "FRM=FS 3 2 5 N N N", "FRM=DK 2 1 1 2 2 L 2 2", "FRM=DK 1 1 1 3 5 L 2 3", "FRM=DK 1 1 1 2 5 C 2 2",
            "FRM=DK 1 2 4 2 4 L 1 3", "FRM=LS", "QSTS"});
    EXPECT_EQ(ask("READ 5 Y E"), "135123"
                                 "1650"
                                 "999"
                                 "7789\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(ScanmarkTest, ColumnModelsHaveThresholdColumnsAndRawValues)
{
    for (const kelReaderType model : {kelReaderTypeScantron8000, kelReaderTypeScantron8400}) {
        make(model, {{.side1 = {{0, 13, 255}}, .side2 = {{48, 300, 1}}}});
        EXPECT_EQ(askAll({"SRST", "THR= 35", "FRM=FS 1 1 3 N N N", "FRM=MC Y N 1 1 1 1 1 3 L 1 3 111",
                          "FRM=MC Y N 1 2 1 1 1 3 L 1 3 111", "FRM=LS"}),
                  "\r\r\r\r\r\r");
        EXPECT_EQ(reader_->threshold(), 35);
        ask("QSTS");
        EXPECT_EQ(ask("READ 5 Y"), "\0\x0C\xFF\x30\xFF\x01\r"s);
        EXPECT_EQ(reader_->errors(), Errors{});
        EXPECT_EQ(ask("EJCT A "), "?");
        expectError("EJCT A on a model without it");
    }
}

TEST_F(ScanmarkTest, OtherModelsHaveNeither)
{
    for (const kelReaderType model :
         {kelReaderTypeScantronScanMark2000, kelReaderTypeScantronScanMark2250, kelReaderTypeScantronScanMark2500,
          kelReaderTypeScantronScanMark4000, kelReaderTypeScantronScanMark5500, kelReaderTypeScantronScanMarkES2010,
          kelReaderTypeScantronScanMarkES2260, kelReaderTypeScantronScanMarkES2800}) {
        make(model);
        EXPECT_EQ(askAll({"SRST", "THR= 35", "FRM=FS 1 1 3 N N N", "FRM=MC Y N 1 1 1 1 1 3 L 1 3 111"}), "\r?\r?");
        EXPECT_EQ(reader_->errors(),
                  (Errors{"THR= on a model without a threshold", "FRM=MC Y N 1 1 1 1 1 3 L 1 3 111: is unknown"}));
    }
}

TEST_F(ScanmarkTest, SheetsTakeTheFormsInTurn)
{
    make(kelReaderTypeScantronScanMark2500, {kSheet, kSheet, kSheet});
    askAll({"SRST", "FRM=FS 2 0 3 N N N", "FRM=DK 1 1 1 1 3 L 1 3", "FRM=LS", "FRM=FS 2 0 3 N N N",
            "FRM=DK 1 2 1 2 3 L 1 3", "FRM=LS"});
    EXPECT_EQ(reader_->forms().size(), 2U);
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y"}), "0000000 !000123\r");
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y"}), "0000000 !000406\r");
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y"}), "0000000 !000123\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(ScanmarkTest, RefusesDefinitionsThatDoNotFit)
{
    const std::pair<const char*, const char*> wrong[] = {
        {"FRM=DK 1 1 1 3 3 L 3 3", "the rows are not on the form"},
        {"FRM=DK 2 1 1 1 3 L 1 3", "the rows are not on the form"},
        {"FRM=DK 1 0 1 2 3 L 2 3", "the rows are not on the form"},
        {"FRM=DK 1 1 1 2 4 L 2 4", "the columns are not on the form"},
        {"FRM=DK 3 1 1 2 3 L 2 3", "a sheet has sides 1 and 2"},
        {"FRM=DK 1 2 1 1 3 L 2 3", "the rectangle runs backwards"},
        {"FRM=DK 1 1 1 2 3 L 0 3", "the rectangle is empty"},
        {"FRM=DK 1 1 1 2 3 L 1 3", "elements and choices do not divide the rectangle"},
        {"FRM=DK 1 1 1 2 3 C 2 3", "elements and choices do not divide the rectangle"},
        {"FRM=DK 1 1 1 2 3 R 2 3", "the orientation is L or C"},
        {"FRM=DK 1 1 1 2 3 L 2 3 ", "a definition has eight words"},
        {"FRM=DK 1  1 1 2 3 L 2 3", "a definition has eight words"},
        {"FRM=DK 1 01 1 2 3 L 2 3", "a number of the definition is not a number"},
        {"FRM=DK 1 -1 1 2 3 L 2 3", "a number of the definition is not a number"},
        {"FRM=XX 1", "is unknown"},
    };
    for (const auto& [command, reason] : wrong) {
        make(kelReaderTypeScantronScanMark2500);
        askAll({"SRST", "FRM=FS 2 0 3 N N N"});
        EXPECT_EQ(ask(command), "?") << command;
        expectError(command + ": "s + reason);
        EXPECT_EQ(askAll({"FRM=DK 1 1 1 2 3 L 2 3", "FRM=LS"}), "\r\r");
    }
}

TEST_F(ScanmarkTest, FormsBeginAndEnd)
{
    make(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(askAll({"SRST", "FRM=DK 1 1 1 2 3 L 2 3"}), "\r?");
    expectError("FRM=DK 1 1 1 2 3 L 2 3 outside a form");
    make(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(askAll({"SRST", "FRM=LS"}), "\r?");
    expectError("FRM=LS outside a form");
    make(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(askAll({"SRST", "FRM=FS 2 0 3 N N N", "FRM=FS 2 0 3 N N N"}), "\r\r?");
    expectError("FRM=FS 2 0 3 N N N within a form");
    make(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(askAll({"SRST", "FRM=FS 2 0 3 N N N", "QSTS"}), "\r\r?");
    expectError("command \"QSTS\" within a form");
    make(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(askAll({"SRST", "FRM=FS2 0 3 N N N"}), "\r?");
    expectError("unknown command \"FRM=FS2 0 3 N N N\"");
}

TEST_F(ScanmarkTest, FormsMayBeWide)
{
    const SimulatedSheet sheet{.side1 = {std::vector<Int16>(60, 4)}, .side2 = {std::vector<Int16>(70, 5)}};
    make(kelReaderTypeScantronScanMark2500, {sheet});
    EXPECT_EQ(askAll({"SRST", "FRM=FS 1 1 60 N N N", "FRM=DK 1 1 1 1 60 L 1 60", "FRM=DK 2 1 1 1 70 L 1 70", "FRM=LS",
                      "QSTS"}),
              "\r\r\r\r\r0000000 !000");
    EXPECT_EQ(ask("READ 5 Y"), std::string(60, '4') + std::string(70, '5') + "\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(ScanmarkTest, RowsAndColumnsOfAColumnDefinitionStandThereTwice)
{
    make(kelReaderTypeScantron8000);
    EXPECT_EQ(askAll({"SRST", "FRM=FS 5 0 3 N N N", "FRM=MC Y N 1 1 1 1 5 3 L 3 3 111"}), "\r\r?");
    expectError("FRM=MC Y N 1 1 1 1 5 3 L 3 3 111: the rows and columns of the column definition stand there twice and "
                "differ");
}

TEST_F(ScanmarkTest, ReadsNeedAFormAndAReadySheet)
{
    make(kelReaderTypeScantronScanMark2500, {kSheet});
    EXPECT_EQ(askAll({"SRST", "READ 5 Y"}), "\r");
    expectError("READ before a form was loaded");
    start({kSheet});
    EXPECT_EQ(ask("READ 5 Y"), "");
    expectError("READ without a status that reported a sheet");
    start();
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y"}), "0000000  000");
    expectError("READ without a status that reported a sheet");
    start({kSheet, kSheet});
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y", "READ 5 Y"}), "0000000 !000123406\r");
    expectError("READ without a status that reported a sheet");
}

TEST_F(ScanmarkTest, FramesAreDemanded)
{
    start();
    bench_->send("QSTS\r");
    EXPECT_EQ(reader_->errors().size(), 5U);
    EXPECT_EQ(reader_->errors()[0], "byte 51 outside a command");
    start();
    bench_->send("\x1BQS\x1BQSTS\r");
    expectError("ESC within the command \"QS\"");
    start();
    EXPECT_EQ(ask("QSTS "), "?");
    expectError("unknown command \"QSTS \"");
    start();
    EXPECT_EQ(ask("EJCT C "), "?");
    expectError("unknown command \"EJCT C \"");
    make(kelReaderTypeScantronScanMark2500);
    ask("QSTS");
    expectError("command \"QSTS\" before SRST");
}

TEST_F(ScanmarkTest, ARejectedSheet)
{
    for (const char* answers : {"true", "false"}) {
        start({kSheet}, {{"prn-n-reply", answers}});
        askAll({"QSTS", "READ 5 Y E", "QSTS"});
        bench_->send(framed("PRN$ 1 N ") + framed("EJCT C"));
        EXPECT_EQ(bench_->wait(1s), answers == "true"s ? "\r\r" : "\r");
        EXPECT_EQ(reader_->errors(), Errors{});
        EXPECT_EQ(reader_->log().back(), (SheetRecord{SheetEvent::Rejected, 1, "C"}));
    }
    start({kSheet});
    askAll({"QSTS", "READ 5 Y", "EJCT C"});
    expectError("EJCT C without PRN$ 1 N before it");
}

TEST_F(ScanmarkTest, EjectAndPrintNeedASheet)
{
    start({kSheet});
    EXPECT_EQ(ask("EJCT A "), "?");
    EXPECT_EQ(ask("PRN$ 1 Y X"), "?");
    ask("PRN$ 1 N ");
    EXPECT_EQ(reader_->errors(),
              (Errors{"EJCT A without a sheet", "PRN$ 1 Y without a sheet", "PRN$ 1 N without a sheet"}));
    start({kSheet});
    askAll({"QSTS", "READ 5 Y"});
    EXPECT_EQ(ask("PRN$ 1 Y " + std::string(125, 'X')), "\r");
    EXPECT_EQ(reader_->errors(), Errors{});
    EXPECT_EQ(ask("PRN$ 1 Y " + std::string(126, 'X')), "?");
    expectError("PRN$ 1 Y with 126 characters");
}

TEST_F(ScanmarkTest, OneCommandAtATime)
{
    start({kSheet});
    bench_->send(framed("QSTS") + framed("QSTS"));
    expectError("command \"QSTS\" while a reply is outstanding");
    start({kSheet});
    ask("QSTS");
    bench_->send(framed("READ 5 Y") + framed("QSTS"));
    expectError("command \"QSTS\" while a reply is outstanding");
    start({kSheet});
    ask("QSTS");
    bench_->send(framed("READ 5 Y") + framed("SRST"));
    EXPECT_EQ(bench_->wait(10s), "\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(ScanmarkTest, StatusCharactersAreSettable)
{
    start({kSheet}, {{"status", "\"ABCDEFGH\" 30 \"JKL\""}});
    EXPECT_EQ(ask("QSTS"), "ABCDEFGH1JKL");
    reader_->status(9, '\x60');
    EXPECT_EQ(ask("QSTS"), "ABCDEFGHaJKL");
    reader_->status(2, '2');
    EXPECT_EQ(ask("QSTS"), "A2CDEFGHaJKL");
    EXPECT_THROW(make(kelReaderTypeScantronScanMark2500, {}, {{"status", "\"short\""}}), std::invalid_argument);
}

TEST_F(ScanmarkTest, TheNextSheetIsReadyAfterItsTime)
{
    start({kSheet, kSheet}, {{"ready-ms", "700"}});
    askAll({"QSTS"});
    EXPECT_EQ(ask("READ 5 Y", 300ms), "123406\r");
    EXPECT_EQ(ask("QSTS", 100ms), "0000000  000");
    bench_->wait(600ms);
    EXPECT_EQ(ask("QSTS"), "0000000 !000");
}

TEST_F(ScanmarkTest, RepliesEndEarlyOrNever)
{
    start({kSheet}, {{"end-after", "4"}});
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y"}), "0000000 !0001234\r");
    start({kSheet}, {{"end", "false"}});
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y"}), "0000000 !000123406");
}

TEST_F(ScanmarkTest, AJamIsAnEndAndABitUntilTheReset)
{
    start({kSheet, kSheet}, {}, {"jam@sheet=1"});
    EXPECT_EQ(askAll({"QSTS", "READ 5 Y", "QSTS"}), "0000000 !000\r0000000 a000");
    askAll({"SRST"});
    EXPECT_EQ(ask("QSTS"), "0000000 !000");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(ScanmarkTest, AClosedLineEndsTheSession)
{
    start({kSheet});
    bench_->send("\x1BQS");
    bench_->close();
    bench_->open();
    ask("QSTS");
    expectError("command \"QSTS\" before SRST");
}

} // namespace
} // namespace kel
