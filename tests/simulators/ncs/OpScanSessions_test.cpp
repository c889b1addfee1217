#include "simulators/SimulatorTable.h"
#include "simulators/ncs/OpScan.h"

#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/PtyDeviceHost.h"
#include "strings/VBLMRTSModule.h"
#include "tests/support/ReaderHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

// The reader object against the simulated OpScan readers: what the sheets hold is what the host hears, but for column
// 48, which always reads 0.

namespace kel::test {
namespace {

using namespace std::chrono_literals;

constexpr kelReaderType kModels[] = {
    kelReaderTypeNCSOpScan2, kelReaderTypeNCSOpScan3,        kelReaderTypeNCSOpScan4,
    kelReaderTypeNCSOpScan5, kelReaderTypeNCSOpScan6,        kelReaderTypeNCSOpScan7,
    kelReaderTypeNCSOpScan8, kelReaderTypeNCSOpScaniNSIGHT2, kelReaderTypeNCSOpScaniNSIGHT4};

constexpr Int32 kRows = 150;
constexpr Int32 kColumns = 48;

class Chance {
public:
    explicit Chance(std::uint64_t seed) : numbers_(seed) {}

    int number(int lowest, int highest)
    {
        return lowest + static_cast<int>(numbers_() % static_cast<std::uint64_t>(highest - lowest + 1));
    }
    bool one(int of) { return number(1, of) == 1; }

    template <class T, std::size_t N>
    T of(const T (&choices)[N])
    {
        return choices[number(0, static_cast<int>(N) - 1)];
    }

    /// Marks with stretches of equal ones.
    MarkRows marks(int rows)
    {
        MarkRows marks(static_cast<std::size_t>(rows), std::vector<Int16>(kColumns));
        for (auto& row : marks) {
            Int16 value = 0;
            const int change = number(1, 10);
            for (Int16& cell : row)
                cell = value = one(change) ? static_cast<Int16>(number(0, 15)) : value;
        }
        return marks;
    }

    std::string barcode()
    {
        // No letter a to d: those are markers.
        constexpr std::string_view characters = "0000123456789ABCDEFGXYZefgxyz -.$/+%";
        std::string text;
        for (int left = number(0, 20); left > 0; --left)
            text += characters[static_cast<std::size_t>(number(0, static_cast<int>(characters.size()) - 1))];
        return text;
    }

private:
    std::mt19937_64 numbers_;
};

MarkArray heardOf(const MarkRows& marks)
{
    MarkArray array(kRows, kColumns);
    for (Int32 row = 1; row <= kRows; ++row)
        for (Int32 column = 1; column < kColumns; ++column)
            array(row, column) = markAt(marks, row, column);
    return array;
}

TextArray heardOf(const std::vector<std::string>& barcodes)
{
    return TextArray::of(1, barcodes.empty() ? std::vector<std::string>{"?"} : barcodes);
}

std::vector<std::string> textsOf(const std::vector<ErrorReport>& reports)
{
    std::vector<std::string> texts;
    for (const ErrorReport& report : reports)
        texts.push_back(report.ErrorSource + ": " + report.ErrorDescription);
    return texts;
}

using Texts = std::vector<std::string>;

/// A few sheets with settings of reader and host by a seed.
void readRandomSheets(std::uint64_t seed, Rate rate, int mostRows)
{
    Chance chance(seed);
    const kelReaderType model = chance.of(kModels);
    std::vector<SimulatedSheet> sheets;
    const bool printedTwoSides = chance.one(2);
    for (int left = chance.number(1, 2); left > 0; --left) {
        SimulatedSheet sheet{.side1 = chance.marks(chance.number(0, mostRows))};
        if (printedTwoSides)
            sheet.side2 = chance.marks(chance.number(0, mostRows));
        for (int barcodes = chance.number(0, 5); barcodes > 0; --barcodes)
            sheet.barcodes.push_back(chance.barcode());
        sheets.push_back(sheet);
    }
    const Boolean duplex(chance.one(2));
    const Boolean duplexForm(chance.one(2));
    const Boolean feeder(chance.one(2));
    const std::string mode(1, "ietdws"[chance.number(0, 5)]);
    SimulatorOptions options{.model = model, .sheets = SheetFeeder::of(sheets), .rate = rate};
    options.settings = {{"mode", mode},
                        {"driver-status", chance.one(2)   ? "N"
                                          : chance.one(2) ? "A"
                                                          : "i"},
                        {"late-reports", std::to_string(chance.number(0, 10))},
                        {"feeder", feeder ? "true" : "false"},
                        {"compress", chance.one(2) ? "true" : "false"},
                        {"alternate", chance.one(2) ? "true" : "false"},
                        {"end", chance.one(2) ? "crlf" : "silence"},
                        {"barcode-prefix", chance.one(2) ? "00" : "X9"}};

    ReaderHost host;
    OpScan device(std::move(options));
    host.connect(model, device);
    host.reader().Duplex(duplex);
    host.reader().DuplexForm(duplexForm);
    host.reader().Feeder(feeder);
    host.reader().ReaderGrade(Boolean(chance.one(2)));
    Int32 count = 0;
    EXPECT_TRUE(host.reader().ReadBatch(False, static_cast<Int32>(sheets.size()), count));
    EXPECT_EQ(device.errors(), Texts{});
    EXPECT_EQ(textsOf(host.heard().reports), Texts{});
    ASSERT_EQ(host.heard().sheets.size(), sheets.size());
    const bool twoSides = duplex && duplexForm;
    for (std::size_t index = 0; index < sheets.size(); ++index) {
        const HeardSheet& heard = host.heard().sheets[index];
        EXPECT_EQ(heard.side1, heardOf(sheets[index].side1));
        EXPECT_EQ(heard.side2, twoSides ? heardOf(sheets[index].side2) : MarkArray());
        EXPECT_EQ(heard.barcodes.LBound(), 1);
        EXPECT_EQ(heard.barcodes.elements(), heardOf(sheets[index].barcodes).elements());
    }
    EXPECT_EQ(host.reader().Side1TimingMarks(), static_cast<Int16>(sheets.back().side1.size()));
    EXPECT_EQ(host.reader().Side2TimingMarks(), twoSides ? static_cast<Int16>(sheets.back().side2.size()) : -1);
    EXPECT_EQ(std::string(1, device.mode()), mode == "w" ? "i" : mode);
    EXPECT_EQ(device.log().back().event, feeder ? SheetEvent::Ejected : SheetEvent::Ended);
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
    for (const kelReaderType model : kModels) {
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

TEST(OpScanOverAPseudoTerminal, ThreeSheets)
{
    const std::vector<SimulatedSheet> sheets = {{.side1 = {{1, 2, 15}}, .barcodes = {"4711"}},
                                                {.side1 = {{}, {4}}, .side2 = {{5}}, .barcodes = {"1", "22", "333"}},
                                                {.side1 = MarkRows(63, std::vector<Int16>(48, 9))}};
    const std::unique_ptr<Platform> machine = makePosixPlatform();
    const PlatformScope scope(*machine);
    SimulatorOptions options{
        .model = kelReaderTypeNCSOpScan5, .sheets = SheetFeeder::of(sheets), .rate = Rate::Unlimited};
    options.settings = {{"mode", "t"}, {"end", "silence"}};
    OpScan device(std::move(options));
    PtyDeviceHost pty(device);
    const PortOverride line(1, pty.deviceFile());
    pty.start();
    clsKELReader reader;
    const auto heard = std::make_shared<RecordingHost>();
    reader.Advise(heard);
    reader.SetError(heard);
    reader.LoadDefaults(kelReaderTypeNCSOpScan5);
    reader.Port(1);
    reader.Duplex(True);
    reader.DuplexForm(True);
    Int32 count = 0;
    EXPECT_TRUE(reader.ReadBatch(False, 3, count));
    setErrorObject(nullptr);
    pty.stop();
    pty.join();
    EXPECT_EQ(device.errors(), Texts{});
    EXPECT_EQ(textsOf(heard->reports), Texts{});
    ASSERT_EQ(heard->sheets.size(), 3U);
    for (std::size_t index = 0; index < sheets.size(); ++index) {
        EXPECT_EQ(heard->sheets[index].side1, heardOf(sheets[index].side1));
        EXPECT_EQ(heard->sheets[index].side2, heardOf(sheets[index].side2));
        EXPECT_EQ(heard->sheets[index].barcodes.elements(), heardOf(sheets[index].barcodes).elements());
    }
}

} // namespace
} // namespace kel::test
