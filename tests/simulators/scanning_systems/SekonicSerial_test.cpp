#include "simulators/scanning_systems/SekonicSerial.h"

#include "simulators/SimulatorTable.h"
#include "tests/simulators/DeviceBench.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr Int16 kRows1 = 30;
constexpr Int16 kRows2 = 22;
constexpr Int16 kColumns = 48;
constexpr Int32 kSheets = 100;

using Window = std::array<Int16, 7>; // page, start row, rows, row gap, start column, columns, column gap

const std::vector<Window> kWindows = {{1, 2, 5, 1, 3, 10, 1}, {1, 29, 4, -2, 20, 6, 2}, {1, 10, 7, 2, 40, 8, -3},
                                      {1, 1, 1, 1, 1, 1, 1},  {2, 1, 22, 1, 1, 20, 1},  {2, 3, 5, 4, 30, 9, 2}};

struct Session {
    kelReaderType model;
    std::string mode;
    bool windows = false;
    bool duplex = false;
    bool barcode = false;
    bool print = false;
    bool rejecter = false;
    bool plain = false;
};

const Session kSessions[] = {
    {.model = kelReaderTypeScanningSystemsSR601, .mode = "0", .barcode = true, .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR601, .mode = "1", .windows = true, .print = true},
    {.model = kelReaderTypeScanningSystemsSR607,
     .mode = "2",
     .duplex = true,
     .barcode = true,
     .print = true,
     .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR607, .mode = "3", .windows = true, .duplex = true},
    {.model = kelReaderTypeScanningSystemsSR700351, .mode = "1", .barcode = true, .print = true, .plain = true},
    {.model = kelReaderTypeScanningSystemsSR700351, .mode = "2", .windows = true, .barcode = true, .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR700352, .mode = "0", .duplex = true},
    {.model = kelReaderTypeScanningSystemsSR700352,
     .mode = "3",
     .windows = true,
     .duplex = true,
     .barcode = true,
     .print = true,
     .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR410, .mode = "0"},
    {.model = kelReaderTypeSekonicSR430, .mode = "0"},
};

bool isLarge(kelReaderType model)
{
    return model != kelReaderTypeScanningSystemsSR410 && model != kelReaderTypeSekonicSR430;
}

/// The side as the host has to get it: all of it, or what lies in its windows.
std::vector<std::vector<Int16>> wanted(const MarkRows& marks, Int16 page, Int16 rows, bool windows)
{
    std::vector<std::vector<Int16>> cells(static_cast<std::size_t>(rows), std::vector<Int16>(kColumns, 0));
    for (Int32 row = 1; row <= rows; ++row)
        for (Int32 column = 1; column <= kColumns; ++column) {
            bool inside = !windows;
            for (const auto& [of, startRow, numRows, rowGap, startColumn, numColumns, columnGap] : kWindows)
                for (Int32 r = 0; r < numRows && of == page; ++r)
                    for (Int32 c = 0; c < numColumns; ++c)
                        inside = inside || (startRow + r * rowGap == row && startColumn + c * columnGap == column);
            if (inside)
                cells[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(column - 1)] =
                    markAt(marks, row, column);
        }
    return cells;
}

std::vector<std::vector<Int16>> cellsOf(const MarkArray& marks)
{
    std::vector<std::vector<Int16>> cells;
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        cells.emplace_back();
        for (Int32 column = 1; column <= marks.columns(); ++column)
            cells.back().push_back(marks(row, column));
    }
    return cells;
}

class SekonicSession : public testing::TestWithParam<Session> {
protected:
    void connect(std::vector<SimulatedSheet> sheets, std::map<std::string, std::string> settings = {},
                 std::initializer_list<const char*> faults = {}, Rate rate = Rate::Wire)
    {
        const Session& session = GetParam();
        settings.emplace("mode", session.mode);
        settings.emplace("rejecter", session.rejecter ? "true" : "false");
        settings.emplace("plain", session.plain ? "true" : "false");
        settings.emplace("line", session.model == kelReaderTypeSekonicSR430 ? "38400,N,7,2" : "9600,N,7,2");
        SimulatorOptions options{.sheets = SheetFeeder::of(sheets), .rate = rate, .settings = std::move(settings)};
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        device = makeSimulator(session.model, std::move(options));
        host.connect(session.model, *device);
        describeForm();
    }

    void describeForm()
    {
        const Session& session = GetParam();
        clsKELReader& reader = host.reader();
        reader.RecognitionMode(session.windows ? kelRecognitionTypeWindow : kelRecognitionTypePage);
        reader.Side1Rows(pages({kRows1}));
        reader.Side1Cols(pages({kColumns}));
        reader.Side2Rows(pages({kRows2}));
        reader.Side2Cols(pages({kColumns}));
        reader.Duplex(session.duplex ? True : False);
        reader.DuplexForm(session.duplex ? True : False);
        reader.Barcode(session.barcode ? True : False);
        reader.Rejecter(isLarge(session.model) ? True : False);
        if (session.barcode) {
            const auto zone = makeReference<clsKELReaderBarcode>();
            zone->Distance(120);
            reader.Barcodes()->Add(zone);
        }
        for (const auto& [page, startRow, numRows, rowGap, startColumn, numColumns, columnGap] : kWindows) {
            if (!session.windows || (page == 2 && !session.duplex))
                continue;
            const auto window = makeReference<clsKELReaderWindow>();
            window->Page(page);
            window->StartRow(startRow);
            window->NumRows(numRows);
            window->RowGap(rowGap);
            window->StartCol(startColumn);
            window->NumCols(numColumns);
            window->ColGap(columnGap);
            reader.Windows()->Add(window);
        }
        reader.Printer()->Enabled(session.print ? True : False);
        reader.Printer()->Active(session.print ? True : False);
        reader.Printer()->Distance(25);
    }

    /// Heights from no row to the form's and beyond it, every eighth sheet without a barcode.
    static std::vector<SimulatedSheet> randomSheets()
    {
        std::vector<SimulatedSheet> sheets;
        for (std::size_t place = 0; place < kSheets; ++place) {
            const auto spread = static_cast<Int32>(place);
            SheetShape shape{.side1Rows = spread * 7 % 33,
                             .side1Columns = GetParam().model == kelReaderTypeSekonicSR430 ? 15 : kColumns,
                             .densityPercent = spread * 3 % 101,
                             .highestMark = 15,
                             .barcodes = spread % 8 == 7 ? 0 : 1};
            if (GetParam().duplex) {
                shape.side2Rows = spread * 5 % 24;
                shape.side2Columns = kColumns;
            }
            sheets.push_back(randomSheet(shape, 5, place));
        }
        return sheets;
    }

    void expectNoComplaints()
    {
        EXPECT_THAT(device->errors(), testing::IsEmpty());
        for (const ErrorReport& report : host.heard().reports)
            ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    }

    std::unique_ptr<Simulator> device; // outlives the line
    ReaderHost host;
};

TEST_P(SekonicSession, EverySheetItsPrintAndItsWay)
{
    const Session& session = GetParam();
    const std::vector<SimulatedSheet> sheets = randomSheets();
    connect(sheets);
    std::vector<SheetRecord> expectedLog;
    Int32 sheet = 0;
    host.heard().onReadSheet = [&](MarkArray& side1, MarkArray& side2, TextArray& barcodes, Boolean& bReject) {
        ASSERT_LT(sheet, kSheets);
        const SimulatedSheet& paper = sheets[static_cast<std::size_t>(sheet++)];
        SCOPED_TRACE("sheet " + std::to_string(sheet));
        EXPECT_EQ(cellsOf(side1), wanted(paper.side1, 1, kRows1, session.windows));
        EXPECT_EQ(static_cast<std::size_t>(host.reader().Side1TimingMarks()), paper.side1.size());
        expectedLog.push_back({SheetEvent::Fed, sheet});
        expectedLog.push_back({SheetEvent::Read, sheet});
        if (session.duplex) {
            EXPECT_EQ(cellsOf(side2), wanted(paper.side2, 2, kRows2, session.windows));
            EXPECT_EQ(static_cast<std::size_t>(host.reader().Side2TimingMarks()), paper.side2.size());
            expectedLog.push_back({SheetEvent::Read, sheet});
        } else {
            EXPECT_EQ(host.reader().Side2TimingMarks(), -1);
        }
        if (session.barcode)
            EXPECT_THAT(barcodes.elements(), testing::ElementsAre(paper.barcodes.empty() ? "?" : paper.barcodes[0]));
        else
            EXPECT_THAT(barcodes.elements(), testing::ElementsAre(""));

        const std::string lines[] = {"A" + std::to_string(sheet), "second \"line\"", std::string(90, 'z') + " "};
        for (Int32 line = 1; line <= 3; ++line) {
            const std::string text = line <= sheet % 4 ? lines[line - 1] : "";
            const auto printer = host.reader().Printer();
            line == 1 ? printer->Buffer1(text) : line == 2 ? printer->Buffer2(text) : printer->Buffer3(text);
        }
        if (sheet % 9 == 0) {
            host.reader().RejectPage();
            bReject = True;
            expectedLog.push_back({session.rejecter ? SheetEvent::Rejected : SheetEvent::Ejected, sheet});
            if (!isLarge(session.model))
                expectedLog.pop_back();
            else if (session.print)
                expectedLog.push_back({SheetEvent::Ejected, sheet});
        } else if (session.print) {
            for (Int32 line = 1; line <= sheet % 4; ++line)
                expectedLog.push_back({SheetEvent::Printed, sheet, lines[line - 1], line, 25});
        }
    };
    Int32 lSheetCount = 0;
    EXPECT_EQ(host.reader().ReadBatch(session.print ? True : False, kSheets, lSheetCount), True);
    EXPECT_EQ(sheet, kSheets);
    if (isLarge(session.model))
        expectedLog.push_back({SheetEvent::Ejected, kSheets});
    EXPECT_EQ(device->log(), expectedLog);
    EXPECT_EQ(host.reader().Rejecter() == True, session.rejecter);
    expectNoComplaints();
    const auto afterPrints =
        static_cast<Int32>(std::count(host.heard().order.begin(), host.heard().order.end(), "AfterPrint"));
    EXPECT_EQ(afterPrints, session.print ? kSheets - kSheets / 9 : 0);
}

class SekonicPages : public SekonicSession {};

TEST_P(SekonicPages, EndEarlyAndLeaveTheRestEmpty)
{
    connect({{.side1 = {{0, 3}, {}, {7}}, .side2 = {{9}}}}, {{"short-pages", "true"}});
    ASSERT_EQ(host.reader().StartReader(), True);
    EXPECT_EQ(host.reader().ReadPage(False), True);
    EXPECT_EQ(cellsOf(host.reader().Side1Array()), wanted({{0, 3}, {}, {7}}, 1, kRows1, false));
    EXPECT_EQ(host.reader().EndReader(), True);
    expectNoComplaints();
}

TEST_P(SekonicSession, ACancelEndsTheWaitForASheet)
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

TEST_P(SekonicSession, ACancelDoesNotEndTheStart)
{
    connect({});
    host.machine.atDoEvents(1, [&] { host.reader().CancelScan(True); });
    EXPECT_EQ(host.reader().StartReader(), True);
    host.reader().EndReader();
    expectNoComplaints();
}

/// Where a reader falls silent for good: behind how many bytes, and what is then told.
TEST_P(SekonicSession, SilenceAnywhereIsToldOrEndsTheReply)
{
    const SimulatedSheet paper = randomSheets()[40];
    for (Int32 byte = 1; byte <= 60; ++byte) {
        SCOPED_TRACE(byte);
        const std::string fault = "silent@byte=" + std::to_string(byte);
        host.heard().reports.clear();
        connect({paper}, {}, {fault.c_str()}, Rate::Unlimited);
        if (host.reader().StartReader() == True)
            host.reader().ReadPage(False);
        host.reader().EndReader();
        EXPECT_LE(host.heard().reports.size(), 2U); // a count that does not come ends nothing, the marks behind it do
        EXPECT_THAT(device->errors(), testing::IsEmpty());
        EXPECT_LT(host.machine.now(), byte * 25s);
        host.reader().Windows()->RemoveAll();
        host.reader().Barcodes()->RemoveAll();
    }
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicSession, testing::ValuesIn(kSessions), [](const auto& session) {
    return "Model" + std::to_string(session.param.model) + (session.param.windows ? "Windows" : "");
});

std::vector<Session> pageSessions()
{
    std::vector<Session> sessions;
    std::copy_if(std::begin(kSessions), std::end(kSessions), std::back_inserter(sessions),
                 [](const Session& session) { return !session.windows; });
    return sessions;
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicPages, testing::ValuesIn(pageSessions()));

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
                                                            {"\x05OM\r", "2"},
                                                            {"\x05O\r", "00000100"},
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
    const std::string armed = "\x10"
                              "DL1\r";
    struct Mistake {
        kelReaderType model;
        std::vector<std::string> commands;
        const char* complaint;
    };
    const Mistake mistakes[] = {
        {kelReaderTypeScanningSystemsSR601, {"\x05OM\r"}, "command 05 \"OM\" before a reset"},
        {kelReaderTypeScanningSystemsSR601, {start, "?\r"}, "a sheet before the threshold"},
        {kelReaderTypeScanningSystemsSR601,
         {start, "\x10"
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

} // namespace
} // namespace kel::test
