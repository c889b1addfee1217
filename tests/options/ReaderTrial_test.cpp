// SPDX-License-Identifier: MIT
// The test of a reader against simulated readers: what it says, that nothing of it reaches the host, that no sheet
// moves.

#include "options/ReaderTrial.h"

#include "failure/WithoutHost.h"
#include "platform/posix/PosixOmrApiLoader.h"
#include "simulators/SimulatorTable.h"
#include "simulators/sekonic_usb/OmrApiSimulation.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/ReaderHost.h"
#include "types/Text.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Kind = ReaderTrial::Outcome::Kind;

constexpr const char* kNoSheet = "A session was started and ended; no sheet was read.";

/// Takes all bytes and says nothing.
class SilentDevice final : public LineDevice {
public:
    void lineOpened(Moment, const LineParameters&) override {}
    void lineClosed(Moment) override {}
    void byteFromHost(Moment, Byte) override
    {
        if (onByte)
            onByte();
    }
    [[nodiscard]] std::optional<Moment> nextEvent() const override { return std::nullopt; }
    [[nodiscard]] std::optional<Byte> takeByte(Moment) override { return std::nullopt; }
    [[nodiscard]] bool hungUp() const override { return false; }

    std::function<void()> onByte;
};

bool movesSheet(const SheetRecord& record)
{
    return record.event != SheetEvent::Ended;
}

class ReaderTrialTest : public testing::Test {
protected:
    /// Tests a simulated reader of a model with the reader object's settings, which are the model's by default.
    ReaderTrial::Outcome test(kelReaderType model)
    {
        connect(model);
        return test();
    }

    ReaderTrial::Outcome test()
    {
        ReaderTrial work(host.reader(), std::nullopt);
        if (stopAt)
            host.machine.at(*stopAt, [&] { work.stop(); });
        ReaderTrial::Outcome outcome = work.run();
        expectThatTheHostNoticesNothing();
        return outcome;
    }

    void connect(kelReaderType model, const char* siteFault = nullptr)
    {
        SimulatorOptions options{.model = model, .seeded = SeededSheets{.seed = 7, .count = 3}};
        if (siteFault)
            options.siteFaults = {parseSiteFault(siteFault).value()};
        device = makeSimulator(model, std::move(options));
        host.connect(model, *device);
    }

    void connectSilent(kelReaderType model)
    {
        device.reset();
        host.connect(model, silent);
    }

    [[nodiscard]] std::string name() { return host.reader().ReaderName(); }

    SilentDevice silent;
    ReaderHost host;
    std::unique_ptr<Simulator> device;
    std::optional<Moment> stopAt;

private:
    void expectThatTheHostNoticesNothing()
    {
        EXPECT_THAT(host.heard().order, IsEmpty());
        EXPECT_THAT(host.machine.screen().boxes(), IsEmpty());
        EXPECT_TRUE(host.reader().CancelScan()) << "as on a new object";
        EXPECT_FALSE(host.machine.line(1).isOpen());
        EXPECT_FALSE(WithoutHost::isHere());
        if (device) {
            EXPECT_TRUE(std::ranges::none_of(device->log(), movesSheet));
        }
    }
};

/// The readers on a line.
class EachReaderTrialTest : public ReaderTrialTest, public testing::WithParamInterface<kelReaderType> {
protected:
    [[nodiscard]] static kelReaderType model() { return GetParam(); }
};

TEST_P(EachReaderTrialTest, AnswersAndKeepsItsSheets)
{
    const ReaderTrial::Outcome outcome = test(model());
    EXPECT_EQ(outcome.kind, Kind::Answers);
    EXPECT_THAT(outcome.sentence, AllOf(StartsWith(name() + " answers at port 1. "), HasSubstr(kNoSheet)));
    EXPECT_THAT(device->errors(), IsEmpty());
    const auto profile = host.reader().Profiles()->Item(CStr(model()));
    EXPECT_EQ(outcome.sentence.find("firmware version") != std::string::npos, profile->FirmwareEnabled() == True);
}

TEST_P(EachReaderTrialTest, IsMissedWhereTheLineIsSilent)
{
    connectSilent(model());
    const ReaderTrial::Outcome outcome = test();
    EXPECT_EQ(outcome.kind, Kind::Fails);
    EXPECT_THAT(outcome.sentence,
                AllOf(HasSubstr("settings of the line are those of the reader."), Not(HasSubstr("\n"))));
    EXPECT_LE(host.machine.now(), 60s);
}

TEST_P(EachReaderTrialTest, IsNotUnderstoodAtAnotherSpeed)
{
    connect(model(), usualLine(model()).starts_with("9600,") ? "wrong-speed:1200" : "wrong-speed:9600");
    const ReaderTrial::Outcome outcome = test();
    EXPECT_EQ(outcome.kind, Kind::Fails);
    EXPECT_THAT(outcome.sentence, Not(IsEmpty()));
}

TEST_P(EachReaderTrialTest, IsLeftInOrderWhenTheTestIsStopped)
{
    connectSilent(model());
    host.reader().Timeout(600);
    stopAt = 300ms;
    const ReaderTrial::Outcome outcome = test();
    // A reader that says nothing at its start is missed before.
    EXPECT_TRUE(outcome.kind == Kind::Stopped || host.machine.now() < 2s) << outcome.sentence;
    EXPECT_LE(host.machine.now(), 8s);
}

std::vector<kelReaderType> modelsOnALine()
{
    std::vector<kelReaderType> models;
    for (int number = 1; number <= kelReaderTypeChatsworthACP200; ++number) {
        const auto model = static_cast<kelReaderType>(number);
        if (hasSimulator(model))
            models.push_back(model);
    }
    return models;
}

std::string nameOfModel(const testing::TestParamInfo<kelReaderType>& info)
{
    return "Model" + CStr(info.param);
}

INSTANTIATE_TEST_SUITE_P(Models, EachReaderTrialTest, testing::ValuesIn(modelsOnALine()), &nameOfModel);

TEST_F(ReaderTrialTest, AReportOfTheReaderIsTheSentence)
{
    connectSilent(kelReaderTypeScantronScanMark2500);
    const ReaderTrial::Outcome outcome = test();
    EXPECT_EQ(outcome.kind, Kind::Fails);
    EXPECT_EQ(
        outcome.sentence,
        "Reader Not Answering: The reader did not answer, or not completely. Check that it is switched on and that "
        "the cable is connected to the chosen port, then start again. If all that is right, check that the "
        "settings of the line are those of the reader.");
}

TEST_F(ReaderTrialTest, AReaderThatIsUnpluggedInTheMiddleFails)
{
    for (const kelReaderType model : {kelReaderTypeScantronScanMark2500, kelReaderTypeNCSOpScan4,
                                      kelReaderTypeScanningSystemsSR601, kelReaderTypeAppersonBenchMark3000}) {
        connect(model);
        host.machine.at(host.machine.now() + 1ms, [&] { device->unplug(); });
        const ReaderTrial::Outcome outcome = test();
        EXPECT_EQ(outcome.kind, Kind::Fails) << model;
        EXPECT_THAT(outcome.sentence, Not(IsEmpty())) << model;
    }
}

TEST_F(ReaderTrialTest, APortThatDoesNotOpenIsTheSentence)
{
    connect(kelReaderTypeScantronScanMark2500);
    host.machine.portState(1, PortState::Busy);
    const ReaderTrial::Outcome outcome = test();
    EXPECT_EQ(outcome.kind, Kind::Fails);
    EXPECT_THAT(outcome.sentence, HasSubstr("already open"));
    EXPECT_THAT(outcome.sentence, Not(HasSubstr("settings of the line")));
}

TEST_F(ReaderTrialTest, AMissingLibraryOfUsbReadersIsTheSentenceAndNoBox)
{
    host.reader().LoadDefaults(kelReaderTypeSekonicSR3500);
    const ReaderTrial::Outcome outcome = test();
    EXPECT_EQ(outcome.kind, Kind::Fails);
    EXPECT_EQ(outcome.sentence,
              "Reader Library Missing: OMRAPI.DLL, the library that every Sekonic USB reader needs, was "
              "not found. Install the software that came with the reader, then start again.");
}

TEST_F(ReaderTrialTest, AUsbReaderAnswersWithoutAPort)
{
    const OmrApiSimulation simulation{simulatedOmrApi()};
    PosixOmrApiLoader loader{"/nowhere"};
    loader.libraryFile(simulatedOmrApi());
    host.machine.omrApiLoader().set(&loader.omrApi());
    host.reader().LoadDefaults(kelReaderTypeSekonicSR3500);
    const ReaderTrial::Outcome outcome = test();
    EXPECT_EQ(outcome.kind, Kind::Answers);
    EXPECT_EQ(outcome.sentence, name() + " answers. " + kNoSheet);
}

TEST_F(ReaderTrialTest, TheStartOfAReaderThatFeedsByItselfIsNotFinished)
{
    for (const kelReaderType model : {kelReaderTypeChatsworthOMR1100, kelReaderTypeChatsworthACP200,
                                      kelReaderTypeChatsworthACF200, kelReaderTypeAppersonAdvantage1200}) {
        connect(model);
        host.reader().Feeder(False);
        static_cast<void>(host.sent());
        EXPECT_EQ(test().kind, Kind::Answers) << model;
        EXPECT_THAT(host.sent(), AllOf(Not(HasSubstr("R7777I00E")),
                                       Not(HasSubstr("\x1B"
                                                     "FD")),
                                       Not(HasSubstr("M8"))));
    }
}

TEST_F(ReaderTrialTest, AStopThatComesBeforeTheStartCounts)
{
    connectSilent(kelReaderTypeScantronScanMark2500);
    ReaderTrial work(host.reader(), std::nullopt);
    work.stop();
    const ReaderTrial::Outcome outcome = work.run();
    EXPECT_EQ(outcome.kind, Kind::Stopped);
    EXPECT_EQ(outcome.sentence, "The test was stopped.");
    EXPECT_LE(host.machine.now(), 5s);
}

TEST_F(ReaderTrialTest, ALongPauseEndsWhenTheTestIsStopped)
{
    connectSilent(kelReaderTypePDIVMR138);
    host.reader().SleepTime(10000);
    ReaderTrial work(host.reader(), std::nullopt);
    silent.onByte = [&] { work.stop(); };
    EXPECT_EQ(work.run().kind, Kind::Stopped);
    EXPECT_LE(host.machine.now(), 8s);
}

TEST_F(ReaderTrialTest, TheStagesAreSaid)
{
    connectSilent(kelReaderTypeScantronScanMark2500);
    ReaderTrial work(host.reader(), std::nullopt);
    EXPECT_EQ(work.progress(), "Test: opening port 1 …");
    std::string waiting;
    host.machine.at(1s, [&] { waiting = work.progress(); });
    static_cast<void>(work.run());
    EXPECT_EQ(waiting, "Test: waiting for the reader …");
    EXPECT_EQ(work.progress(), "Test: ending the session …");
}

} // namespace
} // namespace kel::test
