// SPDX-License-Identifier: MIT
#include "host/Reader.h"

#include "failure/basError.h"
#include "host/Replay.h"
#include "host/UsageError.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <thread>

namespace kel::test {
namespace {

using host::Mark;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::vector<SimulatedSheet> kPile = {
    {.side1 = {{1, 0, 0}, {0, 1, 0}}}, {.side1 = {{0}, {0}, {0}}}, {.side1 = {{0, 0, 1}}}};

/// A simulated VMR138 on a machine without hardware.
class HostReaderTest : public testing::Test {
protected:
    HostReaderTest() : scope_(machine_) { feed(kPile); }

    void feed(const std::vector<SimulatedSheet>& sheets, std::vector<Fault> faults = {})
    {
        SimulatorOptions options;
        options.sheets = SheetFeeder::of(sheets);
        options.faults = std::move(faults);
        device_ = makeSimulator(kelReaderTypePDIVMR138, std::move(options));
        machine_.attach(1, *device_);
    }

    static host::Request request() { return {.model = "VMR138", .port = Int16{1}}; }

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
};

TEST_F(HostReaderTest, RangeGivesEachSheetAndEndsWithTheFeeder)
{
    host::Request wanted = request();
    wanted.maxSheets = 3;
    host::Reader reader(wanted);
    std::vector<Int32> numbers;
    std::vector<std::vector<Mark>> marks;
    for (const host::Sheet& sheet : reader.sheets()) {
        numbers.push_back(sheet.number);
        marks.push_back(sheet.marks());
    }
    EXPECT_THAT(numbers, ElementsAre(1, 2, 3));
    EXPECT_THAT(marks,
                ElementsAre(ElementsAre(Mark{1, 1, 241}, Mark{2, 2, 241}), IsEmpty(), ElementsAre(Mark{1, 3, 241})));
    EXPECT_FALSE(machine_.line(1).isOpen());
    EXPECT_THAT(log(), Contains("ejected 3")) << "the last sheet is not left in the reader";
    EXPECT_THAT(device_->errors(), IsEmpty());
    EXPECT_THAT(reader.failures(), IsEmpty());
}

TEST_F(HostReaderTest, LoopThatIsLeftEndsTheSession)
{
    host::Reader reader(request());
    for (const host::Sheet& sheet : reader.sheets()) {
        EXPECT_TRUE(machine_.line(1).isOpen());
        if (sheet.number == 2)
            break;
    }
    EXPECT_FALSE(machine_.line(1).isOpen());
    EXPECT_THAT(log(), Contains("ejected 2"));
    EXPECT_THAT(log(), Not(Contains("fed 3")));
}

TEST_F(HostReaderTest, AFurtherLoopGoesOnWithTheBatch)
{
    host::Request wanted = request();
    wanted.maxSheets = 3;
    host::Reader reader(wanted);
    std::vector<Int32> numbers;
    host::Sheets sheets = reader.sheets();
    const auto readUpTo = [&](Int32 last) {
        for (const host::Sheet& sheet : sheets) {
            numbers.push_back(sheet.number);
            if (sheet.number == last)
                break;
        }
    };
    readUpTo(1);
    EXPECT_TRUE(machine_.line(1).isOpen());
    readUpTo(4);
    EXPECT_FALSE(machine_.line(1).isOpen());
    readUpTo(4);
    EXPECT_THAT(numbers, ElementsAre(1, 2, 3)) << "a batch that is over has no more sheets";
    EXPECT_THAT(device_->errors(), IsEmpty());
}

TEST_F(HostReaderTest, AFurtherLoopAfterAFailureIsEmpty)
{
    host::Request wanted = request();
    wanted.port = Int16{17};
    host::Reader reader(wanted);
    host::Sheets sheets = reader.sheets();
    EXPECT_THROW(static_cast<void>(sheets.begin()), host::ReaderFailed);
    for ([[maybe_unused]] const host::Sheet& sheet : sheets)
        ADD_FAILURE() << "the batch is over";
    EXPECT_FALSE(reader.failures().empty());
}

TEST_F(HostReaderTest, StopEndsTheRangeAfterTheSheet)
{
    host::Reader reader(request());
    Int32 sheets = 0;
    for ([[maybe_unused]] const host::Sheet& sheet : reader.sheets()) {
        ++sheets;
        reader.stop();
    }
    EXPECT_EQ(sheets, 1);
    EXPECT_FALSE(machine_.line(1).isOpen());
}

TEST_F(HostReaderTest, SheetIsRejectedWithinTheLoop)
{
    host::Request wanted = request();
    wanted.maxSheets = 3;
    host::Reader reader(wanted);
    for (const host::Sheet& sheet : reader.sheets()) {
        if (sheet.marks().empty())
            reader.reject();
    }
    EXPECT_THAT(log(), Contains("rejected 2"));
    EXPECT_THAT(log(), Not(Contains("rejected 1")));
}

TEST_F(HostReaderTest, FailureIsThrownOnceTheReaderHasEnded)
{
    host::Request wanted = request();
    wanted.port = Int16{17};
    host::Reader reader(wanted);
    try {
        for ([[maybe_unused]] const host::Sheet& sheet : reader.sheets())
            ADD_FAILURE() << "nothing can be read";
        FAIL() << "the failure was not thrown";
    } catch (const host::ReaderFailed& failed) {
        ASSERT_FALSE(failed.failures().empty());
        EXPECT_EQ(failed.failures().front().number, 8002);
        EXPECT_EQ(failed.failures().front().source, "basRead.ReaderInit");
        EXPECT_THAT(failed.what(), HasSubstr("Port 17 is not allowed"));
    }
    EXPECT_EQ(errorObject(), nullptr);
}

TEST_F(HostReaderTest, FailureIsKeptWhereTheHostWantsThat)
{
    host::Request wanted = request();
    wanted.port = Int16{17};
    host::Reader reader(wanted);
    for ([[maybe_unused]] const host::Sheet& sheet : reader.sheets(host::OnFailure::Keep))
        ADD_FAILURE() << "nothing can be read";
    ASSERT_FALSE(reader.failures().empty());
    EXPECT_EQ(reader.failures().front().number, 8002);
}

TEST_F(HostReaderTest, UnknownModelIsRefusedWithTheNearestNames)
{
    EXPECT_THROW(host::Reader({.model = "Grademasster"}), host::UsageError);
}

TEST_F(HostReaderTest, SettingsThatDoNotFitAreThrown)
{
    machine_.registry().text(kelReaderRegistryKeyCurrentUser, "Acme", "Barcode", "perhaps");
    const host::Request wanted{.settings = RegistryPath{kelReaderRegistryKeyCurrentUser, "Acme"}};
    EXPECT_THROW(host::Reader{wanted}, host::ReaderFailed);
}

TEST_F(HostReaderTest, TraceIsReplayedToTheSameSheets)
{
    const TemporaryFolder folder;
    host::Request wanted = request();
    wanted.maxSheets = 3;
    wanted.traceFile = folder.path() / "trace.txt";
    std::vector<std::vector<Mark>> read;
    {
        host::Reader reader(wanted);
        for (const host::Sheet& sheet : reader.sheets())
            read.push_back(sheet.marks());
        EXPECT_EQ(reader.traceProblem(), "");
    }
    ASSERT_EQ(read.size(), 3U);

    struct Sheets final : host::Events {
        void sheet(const host::Sheet& event) override { marks.push_back(event.marks()); }

        std::vector<std::vector<Mark>> marks;
    } replayed;
    host::Replay replay(fileText(wanted.traceFile));
    const host::Result result = replay.read(replayed);
    EXPECT_EQ(replayed.marks, read);
    EXPECT_THAT(result.failures, IsEmpty());
    EXPECT_THAT(replay.differences(), IsEmpty());
    EXPECT_EQ(replay.unsent(), "");
}

/// On the machine itself, with a simulated reader behind a pseudo-terminal.
TEST(HostReaderOverAPseudoTerminalTest, SimulatedReaderIsReadLikeAnyOther)
{
    host::Reader reader({.model = "GradeMaster",
                         .simulated = host::Simulation{.seed = 5, .count = 2, .unlimited = true},
                         .maxSheets = 2});
    std::vector<std::string> barcodes;
    for (const host::Sheet& sheet : reader.sheets())
        barcodes.push_back(sheet.barcode());
    EXPECT_EQ(barcodes.size(), 2U);
    EXPECT_THAT(barcodes, Not(Contains("")));
    EXPECT_THAT(reader.simulatorErrors(), IsEmpty());
}

TEST(HostReaderOverAPseudoTerminalTest, ReportNamesPortDeviceAndCause)
{
    host::Reader reader({.model = "GradeMaster", .device = "/nowhere/ttyUSB9"});
    for ([[maybe_unused]] const host::Sheet& sheet : reader.sheets(host::OnFailure::Keep))
        ADD_FAILURE() << "nothing can be read";
    ASSERT_FALSE(reader.failures().empty());
    const host::Failure& failure = reader.failures().front();
    EXPECT_EQ(failure.number, 8002);
    EXPECT_EQ(failure.port, 1);
    EXPECT_EQ(failure.device, "/nowhere/ttyUSB9");
    EXPECT_EQ(failure.cause, "is not there: No such file or directory");
    EXPECT_THAT(failure.remedy, HasSubstr("Connect the reader"));
    EXPECT_THAT(failure.description, HasSubstr("Port 1 (/nowhere/ttyUSB9) is not there: No such file or directory. "));
}

TEST(HostReaderOverAPseudoTerminalTest, ReadersOnTwoThreadsHaveTheirOwnReports)
{
    const auto failuresOf = [](const std::string& device) {
        host::Reader reader({.model = "GradeMaster", .device = device});
        for ([[maybe_unused]] const host::Sheet& sheet : reader.sheets(host::OnFailure::Keep))
            ADD_FAILURE() << "nothing can be read";
        return reader.failures();
    };
    std::vector<host::Failure> others;
    std::thread other([&] { others = failuresOf("/nowhere/other"); });
    const std::vector<host::Failure> own = failuresOf("/nowhere/own");
    other.join();
    for (const host::Failure& failure : own)
        EXPECT_THAT(failure.device, testing::AnyOf("", "/nowhere/own"));
    for (const host::Failure& failure : others)
        EXPECT_THAT(failure.device, testing::AnyOf("", "/nowhere/other"));
    EXPECT_FALSE(own.empty());
    EXPECT_FALSE(others.empty());
    EXPECT_EQ(errorObject(), nullptr);
}

} // namespace
} // namespace kel::test
