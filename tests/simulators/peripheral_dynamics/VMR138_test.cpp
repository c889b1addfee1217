// SPDX-License-Identifier: MIT
#include "simulators/peripheral_dynamics/VMR138.h"

#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using Errors = std::vector<std::string>;

class VMR138Test : public ::testing::Test {
protected:
    /// A reader in whose session the threshold has been asked for.
    void start(std::map<std::string, std::string> settings, SheetFeeder sheets = {},
               std::initializer_list<const char*> faults = {})
    {
        SimulatorOptions options{.sheets = std::move(sheets), .rate = Rate::Unlimited, .settings = std::move(settings)};
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        reader_.emplace(std::move(options));
        bench_.emplace(*reader_);
    }

    std::string ask(std::string_view bytes, Moment time = 10s) { return bench_->ask(bytes, time); }

    void expectError(const std::string& text) { EXPECT_EQ(reader_->errors(), Errors{text}); }

    std::optional<VMR138> reader_;
    std::optional<DeviceBench> bench_;
};

TEST_F(VMR138Test, AWholeSession)
{
    //            column      1  2  3  4  5  6  7  8  9 10 11 12
    const MarkRows marks = {{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                            {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1},
                            {0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0},
                            {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};
    start({{"high-bits", "1"}}, {{.side1 = marks}});
    EXPECT_EQ(ask("0"), "");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    EXPECT_EQ(ask("+"), "C4");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    EXPECT_EQ(ask("8"), "\n"
                        "@@"
                        "@C"
                        "``"
                        "A@"
                        "\r");
    EXPECT_EQ(ask("9"), "");
    EXPECT_EQ(ask("4"), "");
    EXPECT_EQ(ask("9"), "");
    EXPECT_EQ(reader_->errors(), Errors{});
    const std::vector<SheetRecord> expected = {{SheetEvent::Fed, 1},
                                               {SheetEvent::Read, 1},
                                               {SheetEvent::Ended, 1},
                                               {SheetEvent::Ejected, 1},
                                               {SheetEvent::Ended, 1}};
    EXPECT_EQ(reader_->log(), expected);
}

TEST_F(VMR138Test, EachColumnHasItsBit)
{
    MarkRows marks(12, std::vector<Int16>(12, 0));
    for (std::size_t column = 0; column < 12; ++column)
        marks[11 - column][column] = 1; // the last row is sent first: column 1 comes first
    start({{"high-bits", "0"}}, {{.side1 = marks}});
    ask("0Q+Q");
    EXPECT_EQ(ask("8"), "\n"
                        "\x01@\x02@\x04@\x08@\x10@\x20@"
                        "@\x01@\x02@\x04@\x08@\x10@\x20"
                        "\r");
}

TEST_F(VMR138Test, TheHighBitsChangeAndMeanNothing)
{
    start({}, {{.side1 = MarkRows(4, std::vector<Int16>(12, 1))}});
    ask("0Q+Q");
    std::string reply = ask("8");
    ASSERT_EQ(reply.size(), 10U);
    int seen = 0;
    for (std::size_t at = 1; at < 9; ++at) {
        EXPECT_EQ(reply[at] & 0x3F, 0x3F);
        seen |= 1 << (static_cast<Byte>(reply[at]) >> 6);
    }
    EXPECT_EQ(seen, 0x0F);
}

TEST_F(VMR138Test, ASheetWithoutMarksIsAllBlankBytes)
{
    start({}, {{.side1 = MarkRows(3)}, {}});
    ask("0Q+Q");
    EXPECT_EQ(ask("8"), "\n@@@@@@\r");
    ask("9Q");
    EXPECT_EQ(ask("8"), "\n\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(VMR138Test, RepliesTakeTheirTime)
{
    start({{"feed-ms", "700"}}, {{.side1 = MarkRows(1)}});
    bench_->send("0Q");
    EXPECT_EQ(bench_->wait(1ms), "");
    EXPECT_EQ(bench_->wait(1ms), "\x7F\0\0"s);
    bench_->send("8");
    EXPECT_EQ(bench_->wait(699ms), "");
    EXPECT_EQ(bench_->wait(1ms), "\n@@\r");
}

TEST_F(VMR138Test, TheThresholdStepsAndStopsAtItsBounds)
{
    start({{"threshold", "0xC6"}});
    ask("0Q");
    EXPECT_EQ(ask("+"), "C5");
    EXPECT_EQ(ask("-"), "C6");
    EXPECT_EQ(ask("---"), "C7C8C9");
    EXPECT_EQ(reader_->threshold(), 0xC9);
    for (int step = 0; step < 100; ++step)
        ask("-");
    EXPECT_EQ(reader_->threshold(), 0xFF);
    EXPECT_EQ(ask("-"), "FF");
    for (int step = 0; step < 100; ++step)
        ask("+");
    EXPECT_EQ(ask("+"), "C0");
    EXPECT_EQ(reader_->threshold(), 0xC0);
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(VMR138Test, StatusBitsAreAnsweredByTheirCommands)
{
    start({{"status1", "0x14"}, {"status2", "0x08"}});
    ask("0");
    EXPECT_EQ(ask("Q"), "\x7F\x14\x08"s);
    ask("D");
    EXPECT_EQ(ask("Q"), "\x7F\x04\x08"s);
    ask("GE");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    EXPECT_EQ(ask("+"), "C4");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(VMR138Test, BitsLeftUnansweredAtTheStartAreAMistake)
{
    start({{"status1", "0x14"}, {"status2", "0x08"}});
    ask("0QD+");
    expectError("command + though the status asked for GE first");
}

TEST_F(VMR138Test, AnswersThatNobodyAskedForAreAMistake)
{
    start({});
    ask("0QD");
    expectError("command D though no status has asked for it");
}

TEST_F(VMR138Test, FaultsStandUntilTheSheetIsSentOut)
{
    start({});
    ask("0Q+");
    reader_->statusBits(0x43, 0x01);
    EXPECT_EQ(ask("Q"), "\x7F\x43\x01"s);
    ask("4");
    EXPECT_EQ(ask("Q"), "\x7F\x00\x01"s);
    reader_->statusBits(0x02, 0);
    ask("3");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    const std::vector<SheetRecord> expected = {{SheetEvent::Ejected, 0}, {SheetEvent::Rejected, 0}};
    EXPECT_EQ(reader_->log(), expected);
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(VMR138Test, AnEmptyFeederIsSilenceUntilASheetComes)
{
    start({});
    ask("0Q+Q");
    EXPECT_EQ(ask("8", 3600s), "");
    EXPECT_EQ(ask("Q"), "\x7F\x20\0"s); // the sheet counts as under way
    reader_->putSheet({.side1 = MarkRows(1)});
    EXPECT_EQ(bench_->wait(1s), "\n@@\r");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    EXPECT_EQ(reader_->errors(), Errors{});
    const std::vector<SheetRecord> expected = {{SheetEvent::Empty, 0}, {SheetEvent::Fed, 1}, {SheetEvent::Read, 1}};
    EXPECT_EQ(reader_->log(), expected);
}

TEST_F(VMR138Test, ASheetUnderWayIsNotAskedForAgain)
{
    start({}, {{.side1 = MarkRows(1)}, {.side1 = MarkRows(2)}});
    ask("0Q+Q");
    bench_->send("8");
    EXPECT_EQ(bench_->ask("Q", 10ms), "\x7F\x20\0"s);
    bench_->send("8");
    expectError("command 8 while a sheet is under way");
    EXPECT_EQ(bench_->wait(1s), "\n@@\r");
}

TEST_F(VMR138Test, AJamIsAFaultAndNoReply)
{
    start({}, {{.side1 = MarkRows(1)}, {.side1 = MarkRows(2)}}, {"jam@sheet=1"});
    ask("0Q+Q");
    EXPECT_EQ(ask("8"), "");
    EXPECT_EQ(ask("Q"), "\x7F\x02\0"s);
    ask("4");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    EXPECT_EQ(ask("8"), "\n@@@@\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(VMR138Test, NoiseComesInFrontOfThePage)
{
    start({{"noise", "00 \"@\" 0D"}}, {{.side1 = MarkRows(1)}});
    ask("0Q+Q");
    EXPECT_EQ(ask("8"), "\0@\r\n@@\r"s);
}

TEST_F(VMR138Test, UnknownCommandsAreAMistake)
{
    start({});
    ask("0q");
    expectError("unknown command 71");
}

TEST_F(VMR138Test, NothingComesBeforeTheSession)
{
    for (const char* command : {"Q", "D", "G", "E", "+", "-", "8", "9", "3", "4", "x"}) {
        start({});
        EXPECT_EQ(ask(command), "");
        ASSERT_EQ(reader_->errors().size(), 1U) << command;
        EXPECT_NE(reader_->errors()[0].find("before a session was started with 0"), std::string::npos) << command;
    }
}

TEST_F(VMR138Test, NothingComesAfterTheSession)
{
    start({});
    ask("0Q+9Q");
    expectError("command 51 before a session was started with 0");
}

TEST_F(VMR138Test, AClosedLineEndsTheSession)
{
    start({});
    ask("0Q");
    bench_->close();
    bench_->open();
    ask("Q");
    expectError("command 51 before a session was started with 0");
}

TEST_F(VMR138Test, StepsNeedAStatusAndAQuery)
{
    start({});
    ask("0+");
    expectError("a threshold step + without a status query before it");
    start({});
    ask("0Q-");
    expectError("a threshold step - before the threshold was asked for with +");
}

TEST_F(VMR138Test, EachReadNeedsAStatusOfItsOwn)
{
    start({}, {{.side1 = MarkRows(1)}, {.side1 = MarkRows(1)}});
    ask("0Q+8");
    ask("98");
    expectError("command 8 without a status query before it");
}

TEST_F(VMR138Test, APageIsEndedBeforeTheNext)
{
    start({}, {{.side1 = MarkRows(1)}, {.side1 = MarkRows(1)}});
    ask("0Q+8");
    ask("Q8");
    expectError("command 8 though the page before it was not ended with 9");
}

TEST_F(VMR138Test, AHostThatGivesUpEndsTheSession)
{
    start({}, {{.side1 = MarkRows(1)}});
    ask("0Q+Q");
    bench_->send("8");
    EXPECT_EQ(ask("9"), "");
    EXPECT_EQ(reader_->errors(), Errors{});
    EXPECT_EQ(reader_->log(), (std::vector<SheetRecord>{{SheetEvent::Ended, 0}}));
    ask("Q");
    expectError("command 51 before a session was started with 0");
}

TEST_F(VMR138Test, ANewSessionStartsAfresh)
{
    start({}, {{.side1 = MarkRows(1)}});
    ask("0Q+Q");
    bench_->send("8");
    bench_->send("0");
    EXPECT_EQ(bench_->wait(10s), "");
    EXPECT_EQ(ask("Q"), "\x7F\0\0"s);
    EXPECT_EQ(ask("+"), "C3");
    EXPECT_EQ(ask("8"), "\n@@\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

} // namespace
} // namespace kel
