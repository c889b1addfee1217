// SPDX-License-Identifier: MIT
#include "host/Batch.h"

#include "cli/JsonLines.h"
#include "cli/UsageError.h"
#include "contract/Dictionary.h"
#include "failure/basError.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <gmock/gmock.h>

#include <ctime>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

/// A simulated VMR138 on a machine without hardware, a reader object, and the lines of its scan.
class ScanSessionTest : public testing::Test {
protected:
    ScanSessionTest() : scope_(machine_)
    {
        request.model = kelReaderTypePDIVMR138;
        request.port = Int16{1};
    }

    void feed(const std::vector<SimulatedSheet>& sheets, std::vector<Fault> faults = {})
    {
        SimulatorOptions options;
        options.sheets = SheetFeeder::of(sheets);
        options.faults = std::move(faults);
        device_ = makeSimulator(kelReaderTypePDIVMR138, std::move(options));
        machine_.attach(1, *device_);
    }

    host::Result scan(const std::function<bool()>& stopWanted = {})
    {
        JsonLines sink([&](const std::string& line) { lines.push_back(line); });
        host::prepareReader(reader, request);
        return host::runScan(reader, request, sink, stopWanted);
    }

    /// The scanned line of a sheet with the first rows of side 1 as they are given, on the reader's 500 rows.
    static std::string sheetLine(Int32 number, const MarkRows& rows, bool rejected = false)
    {
        host::Sheet sheet;
        sheet.number = number;
        sheet.side1 = MarkArray(500, 14);
        for (Int32 row = 1; row <= static_cast<Int32>(rows.size()); ++row) {
            for (Int32 column = 1; column <= 12; ++column)
                sheet.side1(row, column) = markAt(rows, row, column) ? Int16{241} : Int16{0};
        }
        sheet.side1TimingMarks = static_cast<Int16>(rows.size());
        sheet.barcodes = TextArray(0, 0);
        sheet.rejected = rejected;
        return jsonLine(sheet) + "\n";
    }

    [[nodiscard]] std::vector<std::string> log() const
    {
        std::vector<std::string> entries;
        for (const SheetRecord& record : device_->log())
            entries.push_back(std::string(nameOf(record.event)) + " " + std::to_string(record.sheet));
        return entries;
    }

    SimulatedPlatform machine_;
    PlatformScope scope_;
    std::unique_ptr<Simulator> device_;

    host::Request request;
    clsKELReader reader;
    std::vector<std::string> lines;
};

const MarkRows kFirst = {{1, 0, 0}, {0, 1, 0}};
const MarkRows kBlank = {{0}, {0}, {0}};
const MarkRows kThird = {{0, 0, 1}};
const std::vector<SimulatedSheet> kThreeSheets = {{.side1 = kFirst, .side2 = {}, .barcodes = {}, .fields = {}},
                                                  {.side1 = kBlank, .side2 = {}, .barcodes = {}, .fields = {}},
                                                  {.side1 = kThird, .side2 = {}, .barcodes = {}, .fields = {}}};

constexpr const char* kEndOfBatch =
    "{\"event\":\"end\",\"started\":true,\"sheets\":3,\"cancelScan\":true,\"result\":true}\n";

TEST_F(ScanSessionTest, SheetsAreToldInTheirOrderThenTheEnd)
{
    feed(kThreeSheets);
    request.maxSheets = 3;
    const host::Result result = scan();
    EXPECT_THAT(lines, ElementsAre(sheetLine(1, kFirst), sheetLine(2, kBlank), sheetLine(3, kThird), kEndOfBatch));
    EXPECT_THAT(result.failures, IsEmpty());
    EXPECT_TRUE(result.end.started && result.end.result && result.end.cancelScan);
    EXPECT_EQ(result.end.sheets, 3);
    EXPECT_THAT(device_->errors(), IsEmpty());
}

TEST_F(ScanSessionTest, NoSheetsAreReadWithALimitOfNone)
{
    feed(kThreeSheets);
    request.maxSheets = 0;
    static_cast<void>(scan());
    EXPECT_THAT(
        lines, ElementsAre("{\"event\":\"end\",\"started\":true,\"sheets\":0,\"cancelScan\":false,\"result\":true}\n"));
}

TEST_F(ScanSessionTest, BlankSheetsAreRejected)
{
    feed(kThreeSheets);
    request.maxSheets = 3;
    request.rejectBlank = true;
    static_cast<void>(scan());
    EXPECT_THAT(lines,
                ElementsAre(sheetLine(1, kFirst), sheetLine(2, kBlank, true), sheetLine(3, kThird), kEndOfBatch));
    EXPECT_THAT(log(), testing::Contains("rejected 2"));
    EXPECT_THAT(log(), testing::Not(testing::Contains("rejected 1")));
}

TEST_F(ScanSessionTest, SheetsAreRejectedByTheirNumber)
{
    feed(kThreeSheets);
    request.maxSheets = 3;
    request.rejectSheets = {1, 3, 9};
    static_cast<void>(scan());
    EXPECT_THAT(lines,
                ElementsAre(sheetLine(1, kFirst, true), sheetLine(2, kBlank), sheetLine(3, kThird, true), kEndOfBatch));
    EXPECT_THAT(log(), testing::IsSupersetOf({"rejected 1", "rejected 3"}));
    EXPECT_THAT(log(), testing::Not(testing::Contains("rejected 2")));
}

TEST_F(ScanSessionTest, StopBetweenSheetsEndsTheBatch)
{
    feed(kThreeSheets);
    const host::Result result = scan([this] { return lines.size() == 2; });
    EXPECT_THAT(lines, ElementsAre(sheetLine(1, kFirst), sheetLine(2, kBlank),
                                   "{\"event\":\"end\",\"started\":true,\"sheets\":2,\"cancelScan\":true,"
                                   "\"result\":true}\n"));
    EXPECT_TRUE(result.failures.empty());
    EXPECT_THAT(log(), testing::Contains("ejected 2")) << "the last sheet is not left in the reader";
}

TEST_F(ScanSessionTest, StopReachesAReadThatWaits)
{
    feed({});
    bool stop = false;
    machine_.at(std::chrono::minutes(5), [&] { stop = true; });
    static_cast<void>(scan([&] { return stop; }));
    EXPECT_THAT(lines,
                ElementsAre("{\"event\":\"end\",\"started\":true,\"sheets\":0,\"cancelScan\":true,\"result\":true}\n"));
    EXPECT_GE(machine_.now(), std::chrono::minutes(5));
    EXPECT_LT(machine_.now(), std::chrono::minutes(6));
}

TEST_F(ScanSessionTest, PortThatIsNotAllowedIsReported)
{
    request.port = Int16{17};
    const host::Result result = scan();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(),
              "{\"event\":\"failure\",\"line\":0,\"number\":8002,\"type\":1,\"description\":\"Port 17 is "
              "not allowed. Choose a port from 1 to 16 in the reader settings, then start again.\","
              "\"source\":\"basRead.ReaderInit\",\"title\":\"Port Not Allowed\"}\n");
    EXPECT_EQ(lines.back(),
              "{\"event\":\"end\",\"started\":false,\"sheets\":0,\"cancelScan\":false,\"result\":false}\n");
    EXPECT_FALSE(result.end.started);
    EXPECT_EQ(result.failures.size(), lines.size() - 1);
}

TEST_F(ScanSessionTest, FaultInTheMiddleOfAPageIsReportedBetweenTheSheetsAndTheEnd)
{
    feed(kThreeSheets, {parseFault("unplug@sheet=2,byte=3")});
    const host::Result result = scan();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines.front(), sheetLine(1, kFirst));
    for (std::size_t i = 1; i + 1 < lines.size(); ++i)
        EXPECT_THAT(lines[i], StartsWith("{\"event\":\"failure\","));
    EXPECT_EQ(lines.back(), "{\"event\":\"end\",\"started\":true,\"sheets\":1,\"cancelScan\":true,\"result\":true}\n");
    EXPECT_EQ(result.failures.size(), lines.size() - 2);
    EXPECT_EQ(result.failures.back().number, 8020);
}

/// Notes what the printer object holds when a sheet would be printed on.
class PrinterWatch final : public ReaderEvents {
public:
    explicit PrinterWatch(clsKELReader& reader) : reader_(reader) {}

    void BeforeSheet(Boolean& bInitializePrinter) override
    {
        initialized.push_back(static_cast<bool>(bInitializePrinter));
        active.push_back(static_cast<bool>(reader_.Printer()->Active()));
    }
    void BeforePrint(Boolean& bCancel) override
    {
        texts.push_back(reader_.Printer()->Buffer1() + "|" + reader_.Printer()->Buffer2() + "|" +
                        reader_.Printer()->Buffer3() + (bCancel ? "|cancelled" : ""));
    }

    std::vector<bool> initialized;
    std::vector<bool> active;
    std::vector<std::string> texts;

private:
    clsKELReader& reader_;
};

TEST_F(ScanSessionTest, PrinterIsSetBeforeTheStartAndFilledSheetBySheet)
{
    feed(kThreeSheets);
    request.maxSheets = 3;
    request.rejectSheets = {2};
    request.print = {.print1 = "Sheet {sheet}", .print2 = {}, .print3 = "[{barcode}]", .distance = Int16{12}};
    // A printer that is on stays on when a model comes that it does not concern.
    request.model = kelReaderTypeScantronScanMark2500;
    request.assignments = {"Printer.Enabled=true", "ReaderType=24", "BaudRate=9600", "StopBits=1",
                           "RecognitionThreshold=240"};
    const auto watch = std::make_shared<PrinterWatch>(reader);
    reader.Advise(watch);
    static_cast<void>(scan());
    EXPECT_EQ(reader.Printer()->Distance(), 12);
    EXPECT_THAT(watch->initialized, ElementsAre(true, true, true));
    EXPECT_THAT(watch->active, ElementsAre(true, true, true));
    EXPECT_THAT(watch->texts, ElementsAre("Sheet 1||[]", "Sheet 2||[]|cancelled", "Sheet 3||[]"));
}

TEST_F(ScanSessionTest, NothingIsInitializedWithoutAPrintFlag)
{
    feed(kThreeSheets);
    request.maxSheets = 1;
    request.assignments = {"Printer.Enabled=true"};
    const auto watch = std::make_shared<PrinterWatch>(reader);
    reader.Advise(watch);
    static_cast<void>(scan());
    EXPECT_THAT(watch->initialized, ElementsAre(false));
    EXPECT_THAT(watch->texts, IsEmpty());
}

TEST_F(ScanSessionTest, ReaderIsPreparedByDefaultsFormPortAndAssignmentsInThatOrder)
{
    request.model = kelReaderTypeScantronScanMark2500;
    request.form = host::parseForm(R"({"recognitionMode":"window","side1Rows":[5]})", "form");
    request.port = Int16{3};
    request.assignments = {"Port=4", "SleepTime=7", "SleepTime=8"};
    host::prepareReader(reader, request);
    EXPECT_EQ(reader.BaudRate(), kelReaderBaudRate19200);
    EXPECT_EQ(reader.RecognitionMode(), kelRecognitionTypeWindow);
    EXPECT_EQ(reader.Side1Rows(), PageArray::of(1, {5}));
    EXPECT_EQ(reader.Port(), 4);
    EXPECT_EQ(reader.SleepTime(), 8);
    EXPECT_FALSE(reader.Printer()->Enabled());

    request.assignments = {"SleepTime=x"};
    EXPECT_THROW(host::prepareReader(reader, request), host::UsageError);
}

TEST_F(ScanSessionTest, PagesAreReadWhereTheFormSaysNothing)
{
    host::prepareReader(reader, request);
    EXPECT_EQ(reader.RecognitionMode(), kelRecognitionTypePage);
}

TEST_F(ScanSessionTest, ProcessIsLeftAsItWas)
{
    feed(kThreeSheets);
    request.maxSheets = 1;
    static_cast<void>(scan());
    EXPECT_EQ(errorObject(), nullptr);
    lines.clear();
    reader.ReadPage(False);
    EXPECT_THAT(lines, IsEmpty());
}

TEST(PrintText, PlaceholdersAreFilledIn)
{
    const std::time_t now = std::time(nullptr);
    char date[sizeof "2024-01-31"];
    std::strftime(date, sizeof date, "%Y-%m-%d", std::localtime(&now));
    EXPECT_EQ(host::filledIn("{date} no. {sheet}: {barcode}{sheet}", 7, "47"), std::string(date) + " no. 7: 477");
    EXPECT_EQ(host::filledIn("plain", 7, "47"), "plain");
    EXPECT_EQ(host::filledIn("{other} {barcode}", 7, "{sheet}"), "{other} {sheet}");
}

/// A Sekonic reader's first wait does not look at the stop flag, and lasts as long as the host has said.
TEST(StoppedBatch, DoesNotWaitForASilentReaderToTheEndOfItsTime)
{
    using namespace std::chrono_literals;
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    SimulatorOptions options;
    options.faults = {Fault{.kind = Fault::Kind::Silent, .byte = 1}};
    const auto device = makeSimulator(kelReaderTypeScanningSystemsSR601, std::move(options));
    machine.attach(1, *device);
    bool stopped = false;
    machine.at(5s, [&] { stopped = true; });

    host::Request request;
    request.model = kelReaderTypeScanningSystemsSR601;
    request.port = Int16{1};
    request.assignments = {"Timeout=600"};
    clsKELReader reader;
    const Reference<Carrier> carrier = reader.fComm();
    JsonLines nobody([](const std::string&) {});
    host::prepareReader(reader, request);
    EXPECT_TRUE(host::runScan(reader, request, nobody, [&] { return stopped; }).end.cancelScan);
    EXPECT_LT(machine.now(), 60s);
    EXPECT_EQ(reader.fComm(), carrier);
    EXPECT_FALSE(machine.line(1).isOpen());
}

} // namespace
} // namespace kel::test
