// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"
#include "simulators/ncs/OpScan.h"

#include "strings/VBLMRTSModule.h"
#include "tests/simulators/ncs/RandomSession.h"

#include <gtest/gtest.h>

#include <algorithm>

// The reader object against the simulated OpScan readers: what the sheets hold is what the host hears, but for column
// 48, which always reads 0.

namespace kel::test {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> textsOf(const std::vector<ErrorReport>& reports)
{
    std::vector<std::string> texts;
    for (const ErrorReport& report : reports)
        texts.push_back(report.ErrorSource + ": " + report.ErrorDescription);
    return texts;
}

using Texts = std::vector<std::string>;

void readRandomSheets(std::uint64_t seed, Rate rate, int mostRows)
{
    const RandomSession session(seed, {.mostRows = mostRows});
    ReaderHost host;
    OpScan device(session.options(rate));
    host.connect(session.model(), device);
    session.describeTo(host.reader());
    Int32 count = 0;
    EXPECT_TRUE(host.reader().ReadBatch(False, static_cast<Int32>(session.sheets().size()), count));
    session.expectHeard(host.reader(), host.heard(), device);
}

TEST(OpScanSessions, AThousandRandomSheets)
{
    for (std::uint64_t seed = 1; seed <= 1000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        readRandomSheets(seed, Rate::Unlimited, seed % 50 == 0 ? 150 : 10);
    }
}

TEST(OpScanSessions, RandomSheetsAtWireSpeed)
{
    for (std::uint64_t seed = 2001; seed <= 2100 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        readRandomSheets(seed, Rate::Wire, 10);
    }
}

TEST(OpScanSessions, SeededSheetsOfAllModels)
{
    for (const kelReaderType model : kOpScanModels) {
        SCOPED_TRACE("model " + std::to_string(model));
        const std::unique_ptr<Simulator> device =
            makeSimulator(model, {.seeded = SeededSheets{.seed = 3, .count = 2}, .rate = Rate::Unlimited});
        ReaderHost host;
        host.connect(model, *device);
        Int32 count = 0;
        EXPECT_TRUE(host.reader().ReadBatch(False, 2, count));
        EXPECT_EQ(device->errors(), Texts{});
        EXPECT_EQ(textsOf(host.heard().reports), Texts{});
        ASSERT_EQ(host.heard().sheets.size(), 2U);
        for (std::uint64_t place = 0; place < 2; ++place)
            EXPECT_EQ(host.heard().sheets[place].side1, heardOf(randomSheet(sheetShape(model), 3, place).side1));
    }
}

/// One reader whose feeder is empty unless told otherwise.
class OpScanSession : public testing::Test {
protected:
    void connect(kelReaderType model, std::map<std::string, std::string> settings, SheetFeeder sheets = {},
                 std::initializer_list<const char*> faults = {})
    {
        SimulatorOptions options{.model = model, .sheets = std::move(sheets), .rate = Rate::Unlimited};
        options.settings = std::move(settings);
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        device_.emplace(std::move(options));
        host_.connect(model, *device_);
    }

    clsKELReader& reader() { return host_.reader(); }
    Texts reports() { return textsOf(host_.heard().reports); }

    void expectNoError()
    {
        EXPECT_EQ(device_->errors(), Texts{});
        EXPECT_EQ(reports(), Texts{});
    }

    ReaderHost host_;
    std::optional<OpScan> device_;
};

TEST_F(OpScanSession, TheModeFoundIsRestored)
{
    for (const auto& [found, left] : {std::pair{'i', 'i'}, {'e', 'e'}, {'t', 't'}, {'d', 'd'}, {'w', 'i'}, {'s', 's'}})
        for (const char* letter : {"N", "A", "I"}) {
            SCOPED_TRACE(std::string(1, found) + letter);
            connect(kelReaderTypeNCSOpScan5, {{"mode", std::string(1, found)}, {"driver-status", letter}});
            host_.sent();
            EXPECT_TRUE(reader().StartReader());
            EXPECT_EQ(device_->mode(), 'i');
            const std::string start = host_.sent();
            EXPECT_EQ(start.find('e') == std::string::npos, found == 'i');
            EXPECT_TRUE(reader().EndReader());
            EXPECT_EQ(device_->mode(), left);
            expectNoError();
        }
}

TEST_F(OpScanSession, TwelveReportsAreTooMany)
{
    connect(kelReaderTypeNCSOpScan5, {{"mode", "t"}, {"late-reports", "11"}});
    EXPECT_FALSE(reader().StartReader());
    EXPECT_EQ(reports(), Texts{"basNCS.InitReaderNCS: " + VBLM_RTString(TextNumber(256))});
    EXPECT_TRUE(reader().EndReader());
    EXPECT_EQ(device_->mode(), 't');
    EXPECT_EQ(device_->errors(), Texts{});
}

TEST_F(OpScanSession, ACancelEndsTheUntimedWait)
{
    for (const auto& [feeder, grade] : {std::pair{False, False}, {False, True}, {True, True}}) {
        SCOPED_TRACE(std::string(feeder ? "feeder" : "") + (grade ? " grade" : ""));
        connect(kelReaderTypeNCSOpScan3, {{"feeder", feeder ? "true" : "false"}});
        reader().Feeder(feeder);
        reader().ReaderGrade(grade);
        reader().Timeout(1);
        EXPECT_TRUE(reader().StartReader());
        const Moment cancelled = host_.machine.now() + 2h;
        host_.machine.at(cancelled, [this] { reader().CancelScan(True); });
        EXPECT_FALSE(reader().ReadPage(False));
        EXPECT_EQ(host_.machine.now(), cancelled);
        EXPECT_TRUE(reader().EndReader());
        expectNoError();
    }
}

TEST_F(OpScanSession, ASheetEndsTheUntimedWait)
{
    for (const auto& [feeder, grade] : {std::pair{False, False}, {False, True}, {True, True}}) {
        connect(kelReaderTypeNCSOpScan3, {{"feeder", feeder ? "true" : "false"}});
        reader().Feeder(feeder);
        reader().ReaderGrade(grade);
        reader().Timeout(1);
        EXPECT_TRUE(reader().StartReader());
        host_.machine.at(host_.machine.now() + 2h, [this] { device_->putSheet({.side1 = {{7}}}); });
        EXPECT_TRUE(reader().ReadPage(False));
        EXPECT_EQ(reader().Side1Array()(1, 1), 7);
        EXPECT_TRUE(reader().EndReader());
        expectNoError();
        const auto& sleeps = host_.machine.sleeps();
        const bool graded =
            std::any_of(sleeps.begin(), sleeps.end(), [](const HostSleep& sleep) { return sleep.milliseconds == 500; });
        EXPECT_EQ(graded, static_cast<bool>(grade));
    }
}

TEST_F(OpScanSession, AnEmptyFeederIsTimed)
{
    connect(kelReaderTypeNCSOpScan3, {{"feeder", "true"}});
    EXPECT_TRUE(reader().StartReader());
    const Moment begin = host_.machine.now();
    EXPECT_FALSE(reader().ReadPage(False));
    EXPECT_EQ(host_.machine.now() - begin, 10s);
    EXPECT_EQ(reports(), Texts{"basNCS.ReadPageNCS: " + VBLM_RTString(TextNumber(274))});
    EXPECT_TRUE(reader().EndReader());
    EXPECT_EQ(device_->errors(), Texts{});
}

TEST_F(OpScanSession, PrintRejectAndEjectAreInTheLog)
{
    connect(kelReaderTypeNCSOpScan8, {{"mode", "d"}}, {{}, {}, {}});
    reader().Printer()->Enabled(True);
    host_.heard().onReadSheet = [this](MarkArray&, MarkArray&, TextArray&, Boolean& bReject) {
        const std::size_t sheet = host_.heard().sheets.size();
        reader().Printer()->Active(True);
        reader().Printer()->Distance(12);
        reader().Printer()->Buffer1("SHEET " + std::to_string(sheet));
        if (sheet == 2) {
            bReject = True;
            reader().RejectPage();
        }
    };
    Int32 count = 0;
    EXPECT_TRUE(reader().ReadBatch(True, 3, count));
    expectNoError();
    EXPECT_EQ(device_->log(), (std::vector<SheetRecord>{{SheetEvent::Fed, 1},
                                                        {SheetEvent::Read, 1},
                                                        {SheetEvent::Printed, 1, "SHEET 1", 1, 12},
                                                        {SheetEvent::Ejected, 1},
                                                        {SheetEvent::Fed, 2},
                                                        {SheetEvent::Read, 2},
                                                        {SheetEvent::Rejected, 2, "reject"},
                                                        {SheetEvent::Fed, 3},
                                                        {SheetEvent::Read, 3},
                                                        {SheetEvent::Printed, 3, "SHEET 3", 1, 12},
                                                        {SheetEvent::Ejected, 3}}));
}

TEST_F(OpScanSession, AJamIsRejectedAndStopsTheBatch)
{
    connect(kelReaderTypeNCSOpScan8, {}, {{}, {}, {}}, {"jam@sheet=2"});
    Int32 count = 0;
    EXPECT_TRUE(reader().ReadBatch(False, -1, count));
    EXPECT_EQ(host_.heard().sheets.size(), 1U);
    EXPECT_EQ(reports(), Texts{"basNCS.CheckStatusNCS: " + VBLM_RTString(TextNumber(266))});
    EXPECT_EQ(device_->errors(), Texts{});
    EXPECT_EQ(device_->log().back(), (SheetRecord{SheetEvent::Rejected, 2, "reject"}));
}

TEST_F(OpScanSession, APauseOfNothingBecomes50AtTheEnd)
{
    connect(kelReaderTypeNCSOpScan5, {});
    reader().SleepTime(0);
    EXPECT_TRUE(reader().StartReader());
    EXPECT_TRUE(reader().EndReader());
    EXPECT_EQ(reader().SleepTime(), 50);
    EXPECT_EQ(host_.machine.sleeps().back().milliseconds, 100);
    expectNoError();
}

} // namespace
} // namespace kel::test
