// SPDX-License-Identifier: MIT
#include "simulators/scanning_systems/SekonicSerial.h"

#include "tests/simulators/DeviceBench.h"
#include "tests/simulators/scanning_systems/SekonicRoundTrip.h"

#include <set>

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr std::size_t kSheets = 100;

class SekonicSessions : public testing::TestWithParam<SekonicSession> {
protected:
    void connect(std::vector<SimulatedSheet> sheets, std::map<std::string, std::string> settings = {},
                 std::initializer_list<const char*> faults = {}, Rate rate = Rate::Wire)
    {
        const SekonicSession& session = GetParam();
        settings.emplace("line", session.model == kelReaderTypeSekonicSR430 ? "38400,N,7,2" : "9600,N,7,2");
        SimulatorOptions options = optionsOf(session, std::move(settings));
        options.sheets = SheetFeeder::of(sheets);
        options.rate = rate;
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        device = makeSimulator(session.model, std::move(options));
        host.connect(session.model, *device);
        describeForm(host.reader(), session);
    }

public:
    // What a round trip needs.
    [[nodiscard]] clsKELReader& reader() { return host.reader(); }
    [[nodiscard]] RecordingHost& heard() { return host.heard(); }
    [[nodiscard]] const std::vector<SheetRecord>& log() const { return device->log(); }
    void expectNoComplaints()
    {
        EXPECT_THAT(device->errors(), testing::IsEmpty());
        for (const ErrorReport& report : host.heard().reports)
            ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    }

protected:
    std::unique_ptr<Simulator> device; // outlives the line
    ReaderHost host;
};

TEST_P(SekonicSessions, EverySheetItsPrintAndItsWay)
{
    const std::vector<SimulatedSheet> sheets = randomSekonicSheets(GetParam(), kSheets);
    connect(sheets);
    SekonicRoundTrip(*this, GetParam(), sheets).expectAll();
}

class SekonicPages : public SekonicSessions {};

TEST_P(SekonicPages, EndEarlyAndLeaveTheRestEmpty)
{
    connect({{.side1 = {{0, 3}, {}, {7}}, .side2 = {{9}}}}, {{"short-pages", "true"}});
    ASSERT_EQ(host.reader().StartReader(), True);
    EXPECT_EQ(host.reader().ReadPage(False), True);
    EXPECT_EQ(cellsOf(host.reader().Side1Array()), wantedMarks(GetParam(), {{0, 3}, {}, {7}}, 1));
    EXPECT_EQ(host.reader().EndReader(), True);
    expectNoComplaints();
}

TEST_P(SekonicSessions, ACancelEndsTheWaitForASheet)
{
    connect({}, {{"empty-status", "-1"}});
    ASSERT_EQ(host.reader().StartReader(), True);
    host.machine.at(host.machine.now() + 3s, [&] { host.reader().CancelScan(True); });
    const Moment begun = host.machine.now();
    EXPECT_EQ(host.reader().ReadPage(False), False);
    EXPECT_LT(host.machine.now() - begun, 4s);
    host.sent();
    EXPECT_EQ(host.reader().EndReader(), True);
    EXPECT_EQ(host.sent(), "");
    expectNoComplaints();
}

TEST_P(SekonicSessions, ACancelDoesNotEndTheStart)
{
    connect({});
    host.machine.atDoEvents(1, [&] { host.reader().CancelScan(True); });
    EXPECT_EQ(host.reader().StartReader(), True);
    host.reader().EndReader();
    expectNoComplaints();
}

/// Where a reader falls silent for good: after how many bytes, and what is then told.
TEST_P(SekonicSessions, SilenceAnywhereIsToldOrEndsTheReply)
{
    const SimulatedSheet paper = randomSekonicSheets(GetParam(), 41).back();
    for (Int32 byte = 1; byte <= 60; ++byte) {
        SCOPED_TRACE(byte);
        const std::string fault = "silent@byte=" + std::to_string(byte);
        host.heard().reports.clear();
        connect({paper}, {}, {fault.c_str()}, Rate::Unlimited);
        if (host.reader().StartReader() == True)
            host.reader().ReadPage(False);
        host.reader().EndReader();
        EXPECT_LE(host.heard().reports.size(), 2U); // a count that does not come ends nothing, the marks after it do
        EXPECT_THAT(device->errors(), testing::IsEmpty());
        EXPECT_LT(host.machine.now(), byte * 25s);
        host.reader().Windows()->RemoveAll();
        host.reader().Barcodes()->RemoveAll();
    }
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicSessions, testing::ValuesIn(kSekonicSessions), nameOfSession);

std::vector<SekonicSession> pageSessions()
{
    std::vector<SekonicSession> sessions;
    std::copy_if(kSekonicSessions.begin(), kSekonicSessions.end(), std::back_inserter(sessions),
                 [](const SekonicSession& session) { return !session.windows; });
    return sessions;
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicPages, testing::ValuesIn(pageSessions()), nameOfSession);

TEST(SekonicSerial, PrintsThatWentWellAreHeardOf)
{
    for (const auto& [status, heard] : {std::pair{"0", 1}, std::pair{"01", 0}, std::pair{"10", 1}, std::pair{"1", 0}}) {
        const std::unique_ptr<Simulator> device =
            makeSimulator(kelReaderTypeScanningSystemsSR601,
                          {.sheets = {{.side1 = MarkRows(2)}}, .settings = {{"print-status", status}}});
        ReaderHost host;
        host.connect(kelReaderTypeScanningSystemsSR601, *device);
        host.reader().RecognitionMode(kelRecognitionTypePage);
        host.reader().Side1Rows(pages({2}));
        host.reader().Side1Cols(pages({48}));
        host.reader().Printer()->Enabled(True);
        host.reader().Printer()->Active(True);
        host.reader().Printer()->Buffer2("X");
        Int32 lSheetCount = 0;
        host.reader().ReadBatch(True, 1, lSheetCount);
        EXPECT_EQ(std::count(host.heard().order.begin(), host.heard().order.end(), "AfterPrint"), heard) << status;
        EXPECT_TRUE(host.heard().reports.empty());
        EXPECT_THAT(device->errors(), testing::IsEmpty());
    }
}

/// What a status code is told as: by the table of the small readers, of the modes below 2, of mode 2, and above it.
struct StatusText {
    Int32 status;
    std::array<std::optional<TextNumber>, 4> texts;
};

constexpr std::nullopt_t kNone = std::nullopt;

const StatusText kStatusTexts[] = {
    {49, {TextNumber(384), TextNumber(398), TextNumber(398), TextNumber(414)}},
    {50, {TextNumber(386), TextNumber(404), TextNumber(408), TextNumber(416)}},
    {51, {TextNumber(388), kNone, kNone, TextNumber(406)}},
    {52, {kNone, TextNumber(394), TextNumber(394), TextNumber(392)}},
    {53, {kNone, kNone, TextNumber(406), kNone}},
    {54, {TextNumber(390), TextNumber(406), TextNumber(390), TextNumber(390)}},
    {57, {kNone, kNone, TextNumber(410), kNone}},
    {58, {TextNumber(392), kNone, TextNumber(392), kNone}},
    {60, {kNone, kNone, TextNumber(412), kNone}},
    {64, {TextNumber(394), kNone, kNone, TextNumber(394)}},
    {68, {TextNumber(396), kNone, kNone, TextNumber(410)}},
    {80, {TextNumber(398), kNone, kNone, TextNumber(398)}},
    {81, {TextNumber(400), kNone, kNone, TextNumber(400)}},
};

TEST(SekonicSerial, EveryStatusIsToldByItsTableOrNotAtAll)
{
    struct Table {
        std::size_t column;
        kelReaderType model;
        const char* mode;
    };
    const Table tables[] = {{0, kelReaderTypeScanningSystemsSR410, "0"}, {0, kelReaderTypeSekonicSR430, "2"},
                            {1, kelReaderTypeScanningSystemsSR601, "0"}, {1, kelReaderTypeScanningSystemsSR700351, "1"},
                            {2, kelReaderTypeScanningSystemsSR607, "2"}, {3, kelReaderTypeScanningSystemsSR700352, "3"},
                            {3, kelReaderTypeScanningSystemsSR601, "9"}};
    for (const auto& [column, model, mode] : tables) {
        for (Int32 status = 1; status <= 127; ++status) {
            if (status == 48)
                continue;
            SCOPED_TRACE(model);
            SCOPED_TRACE(status);
            const std::unique_ptr<Simulator> device =
                makeSimulator(model, {.settings = {{"mode", mode}, {"empty-status", std::to_string(status)}}});
            ReaderHost host;
            host.connect(model, *device);
            ASSERT_EQ(host.reader().StartReader(), True);
            EXPECT_EQ(host.reader().ReadPage(False), False);
            EXPECT_EQ(host.reader().CancelScan(), True);
            EXPECT_EQ(host.reader().EndReader(), True);
            const auto found = std::find_if(std::begin(kStatusTexts), std::end(kStatusTexts),
                                            [status](const StatusText& text) { return text.status == status; });
            std::vector<std::string> expected;
            if (found != std::end(kStatusTexts) && found->texts.at(column))
                expected.push_back("Scanner Error: " + VBLM_RTString(*found->texts.at(column)));
            std::vector<std::string> told;
            for (const ErrorReport& report : host.heard().reports)
                told.push_back(report.ErrorTitle + ": " + report.ErrorDescription);
            EXPECT_EQ(told, expected);
        }
    }
}

TEST(SekonicSerial, RepliesInTheFormOfItsTables)
{
    const std::unique_ptr<Simulator> device =
        makeSimulator(kelReaderTypeScanningSystemsSR607,
                      {.sheets = {{.side1 = {{0, 2, 0, 15}, {}, {1}}, .side2 = {{0, 0, 9}}, .barcodes = {"471"}}},
                       .rate = Rate::Unlimited,
                       .settings = {{"plain", "true"}, {"mode", "2"}}});
    DeviceBench bench(*device);
    const std::pair<std::string, std::string> dialogue[] = {{"\x18\r", "\x06"},
                                                            {"\x05O\r", "00000100"},
                                                            {"\x05OM\r", "2"},
                                                            {"\x10"
                                                             "DL07\r"
                                                             "\x13"
                                                             "DD02\r"
                                                             "\x10Q\r"
                                                             "\x10W\r\x02"
                                                             "010301010401112\r"
                                                             "/\x10W\r\x02"
                                                             "010101030101112\r"
                                                             "\x13"
                                                             "BA00\r\x13"
                                                             "BA01\r\x13"
                                                             "BA10999120\r\x13P10\r\x13P3100\r",
                                                             ""},
                                                            {"?\r", "00"},
                                                            {"\x05T\r", "003,7"},
                                                            {"/\x05T\r", "001,7"},
                                                            {"\x13"
                                                             "BA05\r",
                                                             "*471\r"},
                                                            {"\x10"
                                                             "ED001004\r",
                                                             "123?\r\r01\r\r"},
                                                            {"/\x10"
                                                             "ED001001\r",
                                                             "29\r"},
                                                            {"\x10R*\r", "224?, 0,11,\r"},
                                                            {"/\x10R*\r", "19,\r"},
                                                            {"\x13P32007\r\x13P41two \r\x13P21\r", ""},
                                                            {"?P\r", "10"},
                                                            {"\x13R05\r", ""}};
    for (const auto& [command, reply] : dialogue)
        EXPECT_EQ(bench.ask(command), reply) << command;
    EXPECT_THAT(device->errors(), testing::IsEmpty());
    EXPECT_THAT(device->log(),
                testing::ElementsAre(SheetRecord{SheetEvent::Fed, 1}, SheetRecord{SheetEvent::Read, 1},
                                     SheetRecord{SheetEvent::Read, 1}, SheetRecord{SheetEvent::Read, 1},
                                     SheetRecord{SheetEvent::Read, 1}, SheetRecord{SheetEvent::Printed, 1, "two", 2, 7},
                                     SheetRecord{SheetEvent::Rejected, 1}));
}

TEST(SekonicSerial, ComplainsOfWhatAHostMustNotDo)
{
    const std::string start = "\x18\r";
    const std::string mode = "\x05OM\r";
    const std::string armed = mode + "\x10"
                                     "DL1\r";
    const std::string print = "\x13P10\r\x13P3100\r";
    struct Mistake {
        kelReaderType model;
        std::vector<std::string> commands;
        const char* complaint;
    };
    const Mistake mistakes[] = {
        {kelReaderTypeScanningSystemsSR601, {"\x05OM\r"}, "command 05 \"OM\" before a reset"},
        {kelReaderTypeScanningSystemsSR601, {start, "?\r"}, "a sheet before the threshold"},
        {kelReaderTypeScanningSystemsSR601,
         {start, mode,
          "\x10"
          "DL4\r"},
         "threshold DL4, which is not of this model and mode"},
        {kelReaderTypeScanningSystemsSR601,
         {start, "\x10W\r\x02"
                 "010101010101112\r"},
         "a window without Q before it"},
        {kelReaderTypeScanningSystemsSR601,
         {start, "\x10Q\r\x10W\r\x02"
                 "0101010101100112\r"},
         "a window of other fields: 02 \"0101010101100112\""},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed,
          "\x13"
          "BA00\r?\r"},
         "barcodes armed with 00 "},
        {kelReaderTypeScanningSystemsSR601, {start, armed, "\x13P10\r?\r"}, "the printer armed with P10"},
        {kelReaderTypeScanningSystemsSR601, {start, "\x05T\r"}, "timing marks without a good sheet"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, "?\r",
          "\x13"
          "BA05\r"},
         "a barcode that was not armed for this sheet"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, "?\r", "\x13P32001\r"},
         "a print that was not armed for this sheet"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, "?\r",
          "\x10"
          "ED0011000\r"},
         "marks down to row 1000"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, "?\r", "\x05T\r\x05T\r"},
         "a query before the reply to the one before it was through"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, "?\r", "/\x05T\r"},
         "command 05 \"T\" for a second side, which this reader has not"},
        {kelReaderTypeScanningSystemsSR601,
         {start, "\x10"
                 "DL1\r"},
         "the threshold before the mode was asked for"},
        {kelReaderTypeScanningSystemsSR601,
         {start, mode,
          "\x13"
          "DD02\r"},
         "mark discrimination though the last reply does not allow it"},
        {kelReaderTypeScanningSystemsSR601, {start, armed, "?\r", "\x10R*\r"}, "windows without Q before them"},
        {kelReaderTypeScanningSystemsSR601, {start, armed, print + "?\r", "\x13P40A \r"}, "a print without a position"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, print + "?\r", "?P\r"},
         "the print status without a position"},
        {kelReaderTypeScanningSystemsSR601,
         {start, armed, print + "?\r", "\x13P32001\r\x13P40A \r\x13P20\r?P\r", print + "?\r", "\x13P40B \r"},
         "a print without a position"},
        {kelReaderTypeSekonicSR430,
         {start, "\x10T\r\x02"
                 "2\r\x10"
                 "DL01\r?\r"},
         "a sheet before 13 \"15\""},
        {kelReaderTypeScanningSystemsSR410, {start, "\x05OM\r"}, "unknown command 05 \"OM\""},
        {kelReaderTypeScanningSystemsSR410,
         {start, "\x10"
                 "DL01\r"},
         "the threshold before the start command"},
        {kelReaderTypeSekonicSR430, {start, "\x10T\r1\r"}, "start command \"1\" for 02 \"2\""},
        {kelReaderTypeSekonicSR430, {start, "\x13R05\r"}, "unknown command 13 \"R05\""}};
    for (const Mistake& mistake : mistakes) {
        const std::unique_ptr<Simulator> device = makeSimulator(
            mistake.model, {.sheets = {{.side1 = MarkRows(1)}, {.side1 = MarkRows(1)}}, .rate = Rate::Unlimited});
        DeviceBench bench(*device);
        for (const std::string& command : mistake.commands)
            bench.ask(command);
        EXPECT_THAT(device->errors(), testing::ElementsAre(mistake.complaint));
    }
}

TEST(SekonicSerial, AFaultHasAStatusByteForEachSide)
{
    const auto ask = [](kelReaderType model, std::map<std::string, std::string> settings) {
        const std::unique_ptr<Simulator> device = makeSimulator(
            model, {.sheets = {{}}, .faults = {parseFault("jam@sheet=1")}, .settings = std::move(settings)});
        DeviceBench bench(*device);
        bench.ask("\x18\r");
        bench.ask("\x05OM\r");
        bench.ask("\x10"
                  "DL1\r");
        const std::string jam = bench.ask("?\r");
        return jam + bench.ask("?\r");
    };
    EXPECT_EQ(ask(kelReaderTypeScanningSystemsSR601, {{"jam-status", "52"}}), "42");
    EXPECT_EQ(ask(kelReaderTypeScanningSystemsSR607, {{"jam-status", "52"}}), "4422");
    EXPECT_EQ(ask(kelReaderTypeScanningSystemsSR607, {{"jam-status", "52"}, {"fault-side", "1"}}), "0402");
    EXPECT_EQ(ask(kelReaderTypeScanningSystemsSR607, {{"jam-status", "52"}, {"fault-side", "2"}}), "4020");
    EXPECT_EQ(ask(kelReaderTypeScanningSystemsSR607, {{"empty-status", "-1"}}), "11");
    EXPECT_THROW(ask(kelReaderTypeScanningSystemsSR601, {{"fault-side", "2"}}), std::invalid_argument);
    EXPECT_THROW(ask(kelReaderTypeScanningSystemsSR607, {{"fault-side", "3"}}), std::invalid_argument);
}

TEST(SekonicSerial, AFaultOfTheSecondSideCountsOnTwoSidedForms)
{
    for (const Boolean duplexForm : {True, False}) {
        const std::unique_ptr<Simulator> device =
            makeSimulator(kelReaderTypeScanningSystemsSR607,
                          {.sheets = {{.side1 = MarkRows(2)}},
                           .settings = {{"empty-status", "52"}, {"fault-side", "2"}, {"rejecter", "true"}}});
        ReaderHost host;
        host.connect(kelReaderTypeScanningSystemsSR607, *device);
        host.reader().RecognitionMode(kelRecognitionTypePage);
        host.reader().Side1Rows(pages({2}));
        host.reader().Side1Cols(pages({48}));
        host.reader().Duplex(True);
        host.reader().DuplexForm(duplexForm);
        host.reader().Side2Rows(pages({2}));
        host.reader().Side2Cols(pages({48}));
        ASSERT_EQ(host.reader().StartReader(), True);
        EXPECT_EQ(host.reader().ReadPage(False), True);
        host.heard().reports.clear();
        host.reader().ReadPage(False); // the feeder is empty
        ASSERT_EQ(host.heard().reports.size(), duplexForm ? 1U : 0U);
        if (duplexForm) {
            EXPECT_EQ(host.heard().reports[0].ErrorDescription, VBLM_RTString(TextNumber(394)));
        }
    }
}

TEST(SekonicSerial, RepliesComeAsTheyAreOnTheWireButForTheOptions)
{
    const auto pauses = [](std::map<std::string, std::string> settings, std::string_view command) {
        const std::unique_ptr<Simulator> device =
            makeSimulator(kelReaderTypeScanningSystemsSR607, {.sheets = {{}}, .settings = std::move(settings)});
        DeviceBench bench(*device, {.baudRate = 1000});
        bench.ask("\x18\r");
        bench.ask("\x05OM\r");
        bench.ask("\x10"
                  "DL1\r");
        const std::size_t before = bench.arrivals().size();
        bench.ask(command);
        std::set<Moment> moments;
        for (std::size_t at = before; at < bench.arrivals().size(); ++at)
            moments.insert(bench.arrivals()[at].at);
        return moments.size();
    };
    EXPECT_EQ(pauses({}, "?\r"), 2U);
    EXPECT_EQ(pauses({{"reply-lump", "0"}}, "?\r"), 1U);
    EXPECT_EQ(pauses({}, "\x05O\r"), 1U);
    EXPECT_EQ(pauses({{"options-lump", "1"}}, "\x05O\r"), 8U);
    EXPECT_EQ(pauses({{"options-lump", "3"}}, "\x05O\r"), 3U);
}

} // namespace
} // namespace kel::test
