// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"
#include "simulators/scantron/Scanmark.h"

#include "strings/VBLMRTSModule.h"
#include "tests/simulators/scantron/RandomWindows.h"

#include <gtest/gtest.h>

#include <algorithm>

// The reader object against the simulated Scanmark readers: what the sheets hold is what the host hears.

namespace kel::test {
namespace {

using namespace std::chrono_literals;

bool ejects(kelReaderType model)
{
    return model != kelReaderTypeScantron8000 && model != kelReaderTypeScantron8400 &&
           model != kelReaderTypeScantronScanMarkES2010 && model != kelReaderTypeScantronScanMarkES2260;
}

/// The host's pump has the wait come round every few milliseconds, as a real one does, rather than jump to the next
/// event of the line.
void runPump(ReaderHost& host)
{
    host.machine.pump().hostPump([] {});
}

void demandNoError(const Simulator& device, ReaderHost& host)
{
    EXPECT_EQ(device.errors(), std::vector<std::string>{});
    for (const ErrorReport& report : host.heard().reports)
        ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
}

/// One form of windows, by a seed, and the first so many of its sheets.
void readRandomWindows(std::uint64_t seed, Rate rate, std::size_t mostSheets = 3)
{
    const RandomWindows form(seed);
    const std::size_t sheets = std::min(form.sheets().size(), mostSheets);
    ReaderHost host;
    SimulatorOptions options{.model = form.model(), .sheets = SheetFeeder::of(form.sheets()), .rate = rate};
    // Only position 9 may be looked at as a bit field: position 8 would be a fault.
    if (rate == Rate::Unlimited)
        options.settings = {{"status", "\"00000000 000\""}};
    Scanmark device(std::move(options));
    host.connect(form.model(), device);
    runPump(host);
    form.describeTo(host.reader());
    Int32 count = 0;
    EXPECT_TRUE(host.reader().ReadBatch(False, static_cast<Int32>(sheets), count));
    demandNoError(device, host);
    ASSERT_EQ(host.heard().sheets.size(), sheets);
    for (std::size_t place = 0; place < sheets; ++place) {
        const HeardSheet taken = form.takenOf(form.sheets()[place]);
        EXPECT_EQ(host.heard().sheets[place].side1, taken.side1);
        EXPECT_EQ(host.heard().sheets[place].side2, taken.side2);
    }
}

TEST(ScanmarkSessions, AThousandFormsOfWindows)
{
    for (std::uint64_t seed = 1; seed <= 1000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        readRandomWindows(seed, Rate::Unlimited);
    }
}

// The end of the reply comes one character time after the last cell. The pause that the host makes when no cell waits
// brings it in, unless that pause ends between the two: then it is the first character of the status, and what is left
// of that is the first of the next one. So one sheet a form.
TEST(ScanmarkSessions, FormsOfWindowsAtWireSpeed)
{
    for (std::uint64_t seed = 5001; seed <= 5200 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        readRandomWindows(seed, Rate::Wire, 1);
    }
}

TEST(ScanmarkSessions, PagesOnAllModels)
{
    for (const kelReaderType model : kScanmarkModels)
        for (const bool twoSides : {false, true})
            for (const bool feeder : {false, true}) {
                SCOPED_TRACE("model " + std::to_string(model) + (twoSides ? ", two sides" : ""));
                ScanmarkChance chance(static_cast<std::uint64_t>(model));
                const SheetFeeder sheets = {{.side1 = chance.marks(20, 48), .side2 = chance.marks(9, 48)},
                                            {.side1 = chance.marks(20, 48), .side2 = chance.marks(9, 48)}};
                SheetFeeder expected = sheets;
                ReaderHost host;
                Scanmark device({.model = model, .sheets = sheets});
                host.connect(model, device);
                runPump(host);
                host.reader().RecognitionMode(kelRecognitionTypePage);
                host.reader().Feeder(Boolean(feeder));
                host.reader().Duplex(Boolean(twoSides));
                host.reader().DuplexForm(Boolean(twoSides));
                host.reader().Side1Rows(pages({20}));
                host.reader().Side1Cols(pages({48}));
                host.reader().Side2Rows(pages({static_cast<Int16>(twoSides ? 9 : 0)}));
                host.reader().Side2Cols(pages({static_cast<Int16>(twoSides ? 48 : 0)}));
                Int32 count = 0;
                EXPECT_TRUE(host.reader().ReadBatch(False, 2, count));
                demandNoError(device, host);
                ASSERT_EQ(host.heard().sheets.size(), 2U);
                for (const HeardSheet& heard : host.heard().sheets) {
                    const SimulatedSheet sheet = expected.take();
                    EXPECT_EQ(heard.side1, arrayOf(sheet.side1, 20, 48));
                    EXPECT_EQ(heard.side2, twoSides ? arrayOf(sheet.side2, 9, 48) : MarkArray());
                }
                EXPECT_EQ(device.log().back().event, SheetEvent::Ejected);
                EXPECT_EQ(device.log().back().text, ejects(model) ? "A" : "");
            }
}

TEST(ScanmarkSessions, SeededSheetsOfAllModels)
{
    for (const kelReaderType model : kScanmarkModels) {
        SCOPED_TRACE("model " + std::to_string(model));
        const std::unique_ptr<Simulator> device =
            makeSimulator(model, {.seeded = SeededSheets{.seed = 3, .count = 2}, .rate = Rate::Unlimited});
        ReaderHost host;
        host.connect(model, *device);
        runPump(host);
        host.reader().RecognitionMode(kelRecognitionTypePage);
        host.reader().Duplex(False);
        host.reader().Side1Rows(pages({63}));
        host.reader().Side1Cols(pages({48}));
        host.reader().Side2Rows(pages({0}));
        host.reader().Side2Cols(pages({0}));
        Int32 count = 0;
        EXPECT_TRUE(host.reader().ReadBatch(False, 2, count));
        demandNoError(*device, host);
        ASSERT_EQ(host.heard().sheets.size(), 2U);
        for (std::uint64_t place = 0; place < 2; ++place)
            EXPECT_EQ(host.heard().sheets[place].side1,
                      arrayOf(randomSheet(sheetShape(model), 3, place).side1, 63, 48));
    }
}

TEST(ScanmarkSessions, SheetsTakeTheFormsOfAJobInTurn)
{
    ScanmarkChance chance(77);
    const SheetFeeder sheets = {{.side1 = chance.marks(12, 48)}, {.side1 = chance.marks(12, 48)}};
    SheetFeeder expected = sheets;
    ReaderHost host;
    Scanmark device({.model = kelReaderTypeScantronScanMark2500, .sheets = sheets});
    host.connect(kelReaderTypeScantronScanMark2500, device);
    runPump(host);
    host.reader().RecognitionMode(kelRecognitionTypePage);
    host.reader().Side1Rows(pages({3, 12}));
    host.reader().Side1Cols(pages({48, 48}));
    host.reader().Side2Rows(pages({0, 0}));
    host.reader().Side2Cols(pages({0, 0}));
    Int32 count = 0;
    EXPECT_TRUE(host.reader().ReadBatch(False, 2, count));
    demandNoError(device, host);
    ASSERT_EQ(host.heard().sheets.size(), 2U);
    MarkRows first = expected.take().side1;
    first.resize(3);
    EXPECT_EQ(host.heard().sheets[0].side1, arrayOf(first, 12, 48));
    EXPECT_EQ(host.heard().sheets[1].side1, arrayOf(expected.take().side1, 12, 48));
}

/// A Scanmark 2500 with a form of one row of 48 columns.
class ScanmarkSession : public testing::Test {
protected:
    void connect(std::initializer_list<const char*> faults = {}, SheetFeeder sheets = {{.side1 = {{1, 2, 3}}}})
    {
        SimulatorOptions options{
            .model = kelReaderTypeScantronScanMark2500, .sheets = std::move(sheets), .rate = Rate::Unlimited};
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        device_.emplace(std::move(options));
        host_.connect(kelReaderTypeScantronScanMark2500, *device_);
        runPump(host_);
        reader().RecognitionMode(kelRecognitionTypePage);
        reader().Duplex(False);
        reader().Timeout(600);
        reader().Side1Rows(pages({1}));
        reader().Side1Cols(pages({48}));
        reader().Side2Rows(pages({0}));
        reader().Side2Cols(pages({0}));
    }

    clsKELReader& reader() { return host_.reader(); }

    void cancelAt(Moment moment)
    {
        host_.machine.at(moment, [this] { reader().CancelScan(True); });
    }

    std::vector<std::string> reports() { return textsOf(host_.heard().reports); }

    static std::vector<std::string> textsOf(const std::vector<ErrorReport>& reports)
    {
        std::vector<std::string> texts;
        for (const ErrorReport& report : reports)
            texts.push_back(report.ErrorDescription);
        return texts;
    }

    ReaderHost host_;
    std::optional<Scanmark> device_;
};

using Texts = std::vector<std::string>;

TEST_F(ScanmarkSession, PrintRejectAndEjectAreInTheLog)
{
    connect({}, {{}, {}, {}});
    reader().Rejecter(True);
    reader().Printer()->Enabled(True);
    host_.heard().onReadSheet = [this](MarkArray&, MarkArray&, TextArray&, Boolean& bReject) {
        const std::size_t sheet = host_.heard().sheets.size();
        reader().Printer()->Active(True);
        reader().Printer()->Distance(7);
        reader().Printer()->Buffer1("SHEET " + std::to_string(sheet));
        if (sheet == 2) {
            bReject = True;
            reader().RejectPage();
        }
    };
    Int32 count = 0;
    EXPECT_TRUE(reader().ReadBatch(True, 3, count));
    demandNoError(*device_, host_);
    EXPECT_EQ(device_->log(), (std::vector<SheetRecord>{{SheetEvent::Fed, 1},
                                                        {SheetEvent::Read, 1},
                                                        {SheetEvent::Printed, 1, "SHEET 1", 1, 7},
                                                        {SheetEvent::Ejected, 1},
                                                        {SheetEvent::Fed, 2},
                                                        {SheetEvent::Read, 2},
                                                        {SheetEvent::Rejected, 2, "C"},
                                                        {SheetEvent::Fed, 3},
                                                        {SheetEvent::Read, 3},
                                                        {SheetEvent::Printed, 3, "SHEET 3", 1, 7},
                                                        {SheetEvent::Ejected, 3, "A"}}));
}

// The reader's bytes up to the first sheet: an answer each to the reset and to three commands of the form, 12 of the
// status, 48 cells and their end, 12 of the status after them.
TEST_F(ScanmarkSession, ACancelEndsTheStart)
{
    const std::pair<const char*, Texts> waits[] = {
        {"silent@byte=1", {}},
        {"silent@byte=2", {VBLM_RTString(TextNumber(436))}},
        {"silent@byte=3",
         {VBLM_RTString(TextNumber(438)) + "\r\n\r\n" + VBLM_RTString(TextNumber(440)) + "1\r\n" +
          VBLM_RTString(TextNumber(442))}},
        {"silent@byte=4", {VBLM_RTString(TextNumber(452))}},
    };
    for (const auto& [silence, texts] : waits) {
        SCOPED_TRACE(silence);
        host_.heard().reports.clear();
        connect({silence});
        const Moment begin = host_.machine.now();
        cancelAt(begin + 5s);
        EXPECT_FALSE(reader().StartReader());
        EXPECT_GE(host_.machine.now() - begin, 5s);
        EXPECT_LT(host_.machine.now() - begin, 6s);
        EXPECT_EQ(reports(), texts);
        EXPECT_FALSE(reader().EndReader());
        EXPECT_EQ(device_->errors(), Texts{});
    }
}

TEST_F(ScanmarkSession, ACancelEndsTheRead)
{
    for (const char* silence : {"silent@byte=5", "silent@byte=17", "silent@byte=66"}) {
        SCOPED_TRACE(silence);
        connect({silence});
        const Moment begin = host_.machine.now();
        EXPECT_TRUE(reader().StartReader());
        cancelAt(begin + 5s);
        EXPECT_FALSE(reader().ReadPage(False));
        EXPECT_EQ(host_.machine.now() - begin, 5s);
        EXPECT_EQ(reports(), Texts{});
        reader().EndReader();
        EXPECT_EQ(device_->errors(), Texts{});
        EXPECT_EQ(host_.heard().sheets.size(), 0U);
    }
}

TEST_F(ScanmarkSession, ACancelEndsTheWaitForASheetPutInByHand)
{
    connect({}, {});
    reader().Feeder(False);
    EXPECT_TRUE(reader().StartReader());
    cancelAt(5s);
    EXPECT_FALSE(reader().ReadPage(False));
    EXPECT_LT(host_.machine.now(), 6s);
    EXPECT_EQ(reports(), Texts{});
    reader().EndReader();
    EXPECT_EQ(device_->errors(), Texts{});
}

TEST_F(ScanmarkSession, ASheetPutInByHandIsRead)
{
    connect({}, {});
    reader().Feeder(False);
    EXPECT_TRUE(reader().StartReader());
    host_.machine.at(3s, [this] { device_->putSheet({.side1 = {{9}}}); });
    EXPECT_TRUE(reader().ReadPage(False));
    EXPECT_EQ(reader().Side1Array(), arrayOf({{9}}, 1, 48));
    reader().EndReader();
    demandNoError(*device_, host_);
}

TEST_F(ScanmarkSession, ACancelIsNotLookedAtWithinStatusAndCells)
{
    const std::pair<const char*, std::string> waits[] = {
        {"silent@byte=8", VBLM_RTString(TextNumber(428))},
        {"silent@byte=20", VBLM_RTString(TextNumber(456))},
        {"silent@byte=70", VBLM_RTString(TextNumber(428))},
    };
    for (const auto& [silence, text] : waits) {
        SCOPED_TRACE(silence);
        host_.heard().reports.clear();
        connect({silence});
        reader().Timeout(10);
        const Moment begin = host_.machine.now();
        EXPECT_TRUE(reader().StartReader());
        cancelAt(begin + 5s);
        EXPECT_FALSE(reader().ReadPage(False));
        EXPECT_GE(host_.machine.now() - begin, 10s);
        EXPECT_LT(host_.machine.now() - begin, 12s);
        EXPECT_EQ(reports(), Texts{text});
        reader().EndReader();
        EXPECT_EQ(device_->errors(), Texts{});
    }
}

TEST_F(ScanmarkSession, ACancelEndsPrintAndEject)
{
    for (const bool print : {true, false}) {
        SCOPED_TRACE(print ? "print" : "eject");
        connect({"silent@byte=78"});
        reader().Printer()->Enabled(True);
        reader().Printer()->Active(Boolean(print));
        Moment cancelled{};
        host_.heard().onReadSheet = [&](MarkArray&, MarkArray&, TextArray&, Boolean&) {
            cancelled = host_.machine.now() + 5s;
            cancelAt(cancelled);
            if (!print)
                reader().EjectPage();
        };
        EXPECT_TRUE(reader().StartReader());
        EXPECT_TRUE(reader().ReadPage(Boolean(print)));
        EXPECT_EQ(host_.machine.now(), cancelled);
        EXPECT_EQ(reports(), Texts{});
        reader().EndReader();
        EXPECT_EQ(device_->errors(), Texts{});
    }
}

TEST_F(ScanmarkSession, OnlyARejectToTheHopperPauses)
{
    for (const bool hopper : {true, false}) {
        SCOPED_TRACE(hopper ? "hopper" : "stack");
        connect({}, {{}, {}});
        reader().Rejecter(Boolean(hopper));
        reader().SleepTime(100);
        EXPECT_TRUE(reader().StartReader());
        EXPECT_TRUE(reader().ReadPage(False));
        const std::size_t before = host_.machine.sleeps().size();
        reader().RejectPage();
        const auto sleeps = host_.machine.sleeps();
        ASSERT_EQ(sleeps.size() - before, hopper ? 1U : 0U);
        if (hopper) {
            EXPECT_EQ(sleeps.back().milliseconds, 1500);
        }
        reader().EndReader();
        demandNoError(*device_, host_);
    }
}

TEST_F(ScanmarkSession, TheEndOfWhatNeverBeganSendsNothing)
{
    connect();
    EXPECT_TRUE(reader().EndReader());
    EXPECT_EQ(host_.sent(), "");
    demandNoError(*device_, host_);
}

// The reset at the end is the reader's 78th byte, after a whole sheet; there is no eject here.
TEST_F(ScanmarkSession, ACancelAtTheEndClosesTheLineAllTheSame)
{
    connect({"silent@byte=78"});
    EXPECT_TRUE(reader().StartReader());
    EXPECT_TRUE(reader().ReadPage(False));
    cancelAt(host_.machine.now() + 5s);
    EXPECT_FALSE(reader().EndReader());
    EXPECT_FALSE(reader().fComm()->mscComm().PortOpen());
    demandNoError(*device_, host_);
}

TEST_F(ScanmarkSession, AJamStopsTheBatch)
{
    connect({"jam@sheet=2"}, {{}, {}, {}});
    Int32 count = 0;
    EXPECT_TRUE(reader().ReadBatch(False, -1, count));
    EXPECT_EQ(host_.heard().sheets.size(), 1U);
    EXPECT_EQ(reports(), Texts{VBLM_RTString(TextNumber(466))});
    EXPECT_EQ(device_->errors(), Texts{});
}

} // namespace
} // namespace kel::test
