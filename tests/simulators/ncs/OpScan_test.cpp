// SPDX-License-Identifier: MIT
#include "simulators/ncs/OpScan.h"

#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using Errors = std::vector<std::string>;
using Log = std::vector<SheetRecord>;

const std::string kNoughts(48, '0');
const std::string kPlainRow = "a12F" + std::string(45, '0');
const SimulatedSheet kSheet{.side1 = {{1, 2, 15}}};

TEST(OpScanReply, RowsAreDigitsBehindTheirSide)
{
    const SimulatedSheet sheet{.side1 = {{0, 9, 10, 15, 16, -1}, {}}, .side2 = {std::vector<Int16>(60, 7)}};
    OpScanFormat format{.compressed = false};
    const std::string first = "a09AF00" + std::string(42, '0');
    EXPECT_EQ(opScanReply(sheet, format), first + "a" + kNoughts + "b" + std::string(48, '7') + "\r\n");
    format.alternating = true;
    EXPECT_EQ(opScanReply(sheet, format), first + "b" + std::string(48, '7') + "a" + kNoughts + "\r\n");
    EXPECT_EQ(opScanReply({}, format), "\r\n");
}

TEST(OpScanReply, FourEqualPositionsAreARun)
{
    const SimulatedSheet sheet{.side1 = {{1, 1, 1, 2, 2, 2, 2, 3}}};
    EXPECT_EQ(opScanReply(sheet, {}), "a111\x15\x44"
                                      "23\x15\x68"
                                      "0\r\n");
}

TEST(OpScanReply, RunsHave63PositionsAtMost)
{
    const SimulatedSheet sheet{.barcodes = {std::string(70, 'X')}};
    EXPECT_EQ(opScanReply(sheet, {.silentEnd = true}), "c\x15\x7FX\x15\x47X");
}

TEST(OpScanReply, BarcodesAreClosedAtALineEndAndSeparatedAtASilentOne)
{
    const SimulatedSheet sheet{.barcodes = {"12", "", "A7"}};
    EXPECT_EQ(opScanReply(sheet, {.barcodePrefix = "xy"}), "cxy12dxydxyA7d\r\n");
    EXPECT_EQ(opScanReply(sheet, {.silentEnd = true, .barcodePrefix = "xy"}), "cxy12dxydA7");
    EXPECT_EQ(opScanReply({}, {.silentEnd = true}), "\r\n");
}

class OpScanTest : public ::testing::Test {
protected:
    void make(std::map<std::string, std::string> settings, SheetFeeder sheets = {},
              std::initializer_list<const char*> faults = {})
    {
        SimulatorOptions options{.sheets = std::move(sheets), .rate = Rate::Unlimited, .settings = std::move(settings)};
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        reader_.emplace(std::move(options));
        bench_.emplace(*reader_);
    }

    /// A reader in a session, that sends plain rows.
    void start(SheetFeeder sheets = {}, std::map<std::string, std::string> settings = {},
               std::initializer_list<const char*> faults = {})
    {
        settings.try_emplace("compress", "false");
        make(std::move(settings), std::move(sheets), faults);
        ask("s0r");
    }

    std::string ask(std::string_view bytes, Moment time = 10s) { return bench_->ask(bytes, time); }

    /// The letters of a report: status and mode.
    std::string letters()
    {
        const std::string report = ask("s0");
        return report.size() < 51 ? report : std::string{report[34], report[48]};
    }

    void expectError(const std::string& text) { EXPECT_EQ(reader_->errors(), Errors{text}); }

    std::optional<OpScan> reader_;
    std::optional<DeviceBench> bench_;
};

TEST_F(OpScanTest, AWholeSession)
{
    make({{"feeder", "true"}}, {kSheet, {.barcodes = {"12"}}});
    EXPECT_EQ(ask("s0"), std::string(34, '0') + "N" + std::string(13, '0') + "i00");
    EXPECT_EQ(ask("r"), "");
    EXPECT_EQ(ask("\x11"), "a12F\x15\x6D"
                           "0\r\n");
    EXPECT_EQ(ask("s1"), "0@@\r");
    EXPECT_EQ(ask("1"
                  "07\x04"
                  "2KEL 7 \x04"),
              "");
    EXPECT_EQ(ask("\x1B\x12"), "");
    EXPECT_EQ(ask("\x11"), "c0012d\r\n");
    EXPECT_EQ(ask("s1"), "0@@\r");
    EXPECT_EQ(ask("\x12"), "");
    bench_->close();
    EXPECT_EQ(reader_->errors(), Errors{});
    EXPECT_EQ(reader_->log(), (Log{{SheetEvent::Fed, 1},
                                   {SheetEvent::Read, 1},
                                   {SheetEvent::Printed, 1, "KEL 7", 1, 7},
                                   {SheetEvent::Rejected, 1, "reject"},
                                   {SheetEvent::Fed, 2},
                                   {SheetEvent::Read, 2},
                                   {SheetEvent::Ejected, 2}}));
}

TEST_F(OpScanTest, ModesChangeByWayOfW)
{
    make({{"mode", "t"}});
    EXPECT_EQ(letters(), "Nt");
    ask("ew\x04");
    EXPECT_EQ(letters(), "Nw");
    ask("ei\x04");
    EXPECT_EQ(letters(), "Ni");
    EXPECT_EQ(reader_->errors(), Errors{});
    ask("et\x04");
    expectError("from mode i to t without w between them");
    EXPECT_EQ(reader_->mode(), 'i');
    make({});
    ask("ex\x04");
    expectError("there is no scan mode \"x\"");
    make({});
    ask("e\x04");
    expectError("there is no scan mode \"\"");
}

TEST_F(OpScanTest, AModeInCapitalsIsThatMode)
{
    for (const std::string mode : {"I", "T"}) {
        make({{"mode", mode}});
        EXPECT_EQ(ask("s0").at(48), mode[0]);
        EXPECT_EQ(reader_->mode(), mode == "I" ? 'i' : 't');
        ask("ew\x04"
            "ei\x04");
        EXPECT_EQ(ask("s0").at(48), 'I');
        ask("r");
        EXPECT_EQ(reader_->errors(), Errors{});
        ask("eW\x04");
        EXPECT_EQ(reader_->errors(), Errors{"there is no scan mode \"W\""});
    }
}

TEST_F(OpScanTest, APositionHasItsText)
{
    for (const std::string_view next : {"\x12", "\x11", "r"}) {
        start({kSheet, kSheet});
        ask("\x11");
        ask("s1");
        ask("1"
            "07\x04");
        ask(next);
        EXPECT_EQ(reader_->errors(), Errors{"command 1 without a text after it"});
    }
}

TEST_F(OpScanTest, StatusLettersAAndIDemandAConfirmation)
{
    for (const char* letter : {"A", "a", "I", "i"}) {
        make({{"mode", "t"}, {"driver-status", letter}});
        ask("ew\x04\x11"
            "ei\x04\x11"
            "r");
        EXPECT_EQ(reader_->errors(), Errors{}) << letter;
        EXPECT_EQ(letters(), letter + "i"s);
        make({{"mode", "t"}, {"driver-status", letter}});
        ask("ew\x04"
            "ei\x04\x11");
        expectError("command 65 though the mode command was not confirmed with 11");
    }
    make({{"mode", "t"}});
    ask("ew\x04\x11");
    expectError("command 11 without a session");
}

TEST_F(OpScanTest, ReportsMayTellTheModeBefore)
{
    make({{"mode", "t"}, {"late-reports", "2"}});
    ask("ew\x04"
        "ei\x04");
    for (const char* expected : {"Nt", "Nt", "Ni", "Ni"})
        EXPECT_EQ(letters(), expected);
}

TEST_F(OpScanTest, StatusBitsStandUntilTheSheetIsGone)
{
    start({kSheet, kSheet}, {{"status1", "0x03"}, {"status2", "0x0F"}});
    ask("\x11");
    EXPECT_EQ(ask("s1"), "0@@\r"); // the session began after them
    reader_->statusBits(0x02, 0x09);
    ask("\x11");
    EXPECT_EQ(ask("s1"), "0BI\r");
    ask("\x1B\x12");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(OpScanTest, RepliesMayBeLonger)
{
    start({kSheet}, {{"report-length", "200"}, {"status-length", "6"}});
    ask("\x11");
    EXPECT_EQ(ask("s1"), "0@@\r00");
    EXPECT_EQ(ask("s0").size(), 200U);
    EXPECT_THROW(make({{"report-length", "50"}}), std::invalid_argument);
    EXPECT_THROW(make({{"status-length", "3"}}), std::invalid_argument);
    EXPECT_THROW(make({{"mode", "q"}}), std::invalid_argument);
}

TEST_F(OpScanTest, AnEmptyFeederIsSilenceUntilASheetComes)
{
    start();
    EXPECT_EQ(ask("\x11", 3600s), "");
    reader_->putSheet(kSheet);
    EXPECT_EQ(bench_->wait(1s), kPlainRow + "\r\n");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(OpScanTest, AJamIsAReplyWithoutRowsAndABit)
{
    start({kSheet, kSheet}, {}, {"jam@sheet=1"});
    EXPECT_EQ(ask("\x11"), "\r\n");
    EXPECT_EQ(ask("s1"), "0@H\r");
    ask("\x1B\x12");
    EXPECT_EQ(ask("\x11"), kPlainRow + "\r\n");
    EXPECT_EQ(ask("s1"), "0@@\r");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(OpScanTest, ReadsNeedASessionAndAStatusEach)
{
    make({}, {kSheet});
    EXPECT_EQ(ask("\x11"), "");
    expectError("command 11 without a session");
    start({kSheet, kSheet});
    bench_->send("\x11\x11");
    expectError("command 11 while a sheet is under way");
    start({kSheet, kSheet});
    ask("\x11");
    ask("\x11");
    expectError("command 11 without s1 after the sheet before it");
    make({{"mode", "t"}});
    ask("r");
    expectError("command r in mode t");
}

TEST_F(OpScanTest, ASheetBelongsToStatusEjectAndPrint)
{
    const std::pair<const char*, const char*> wrong[] = {
        {"s1", "s1 without a sheet whose reply is through"},
        {"\x12", "command 12 without a sheet whose status was asked for"},
        {"\x1B\x12", "command 1B 12 without a sheet whose status was asked for"},
        {"105\x04", "command 1 without a sheet whose status was asked for"},
        {"2X \x04", "command 2 without a position before it"},
    };
    for (const auto& [bytes, error] : wrong) {
        start({kSheet});
        ask(bytes);
        expectError(error);
    }
    const std::pair<const char*, const char*> wrongPrints[] = {
        {"1"
         "5\x04",
         "the print position \"5\" is not two digits"},
        {"1-5\x04", "the print position \"-5\" is not two digits"},
        {"105\x04"
         "2X\x04",
         "the print text \"X\" does not end with a blank"},
    };
    for (const auto& [bytes, error] : wrongPrints) {
        start({kSheet});
        ask("\x11");
        ask("s1");
        ask(bytes);
        expectError(error);
    }
}

TEST_F(OpScanTest, UnknownCommandsAreAMistake)
{
    start();
    ask("q");
    expectError("unknown command 71");
    start();
    ask("s2");
    expectError("unknown command 73 32");
    start();
    ask("\x1B\x11");
    expectError("unknown command 1B 11");
}

TEST_F(OpScanTest, TheEndIsToldWithoutAFeederAlone)
{
    start({}, {{"feeder", "true"}});
    ask("\x0E");
    expectError("command 0E at a reader with a feeder");
    start({}, {{"feeder", "false"}});
    bench_->close();
    expectError("the line was closed without 0E");
    start({}, {{"feeder", "false"}});
    bench_->send("\x11\x0E");
    EXPECT_EQ(bench_->wait(10s), "");
    bench_->close();
    EXPECT_EQ(reader_->errors(), Errors{});
    EXPECT_EQ(reader_->log(), (Log{{SheetEvent::Ended, 0}}));
}

TEST_F(OpScanTest, AClosedLineEndsTheSession)
{
    start({kSheet});
    bench_->send("\x11");
    bench_->close();
    bench_->open();
    EXPECT_EQ(bench_->wait(10s), "");
    EXPECT_EQ(letters(), "Ni");
    ask("\x11");
    expectError("command 11 without a session");
    start();
    bench_->send("ew");
    bench_->close();
    expectError("the line was closed within the command 65");
}

} // namespace
} // namespace kel
