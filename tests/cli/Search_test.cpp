// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/WatchedDevice.h"

#include <gmock/gmock.h>

#include <map>

// 'kelreader locate' and 'kelreader firmware' as a person or a script runs them, with ports of all kinds.

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Words = std::vector<std::string>;

constexpr const char* kProbe = "\x12R7777\x12I00\x12"
                               "E";
constexpr const char* kVersion = "\x12\x1BV\x12"
                                 "E";

/// A device that answers each command, which ends in "E", with the same, or not at all.
class Parrot final : public Simulator {
public:
    explicit Parrot(std::string answer) : Simulator({.rate = Rate::Unlimited}), answer_(std::move(answer)) {}
    std::string heard;

private:
    void onByte(Byte byte) override
    {
        heard += static_cast<char>(byte);
        if (byte == 'E')
            send(answer_);
    }

    std::string answer_;
};

/// A device behind a pseudo-terminal that a port of the command's map stands for.
class MappedDevice {
public:
    MappedDevice(int port, std::unique_ptr<Simulator> device)
        : port_(std::to_string(port)), device_(std::move(device)), watched_(*device_),
          pty_(watched_, {.link = {}, .paceHost = false})
    {
        runCommand({"ports", "set", port_, pty_.deviceFile()});
        pty_.start();
    }
    ~MappedDevice() { runCommand({"ports", "clear", port_}); }
    MappedDevice(const MappedDevice&) = delete;
    MappedDevice& operator=(const MappedDevice&) = delete;

    [[nodiscard]] const std::string& file() const { return pty_.deviceFile(); }

    /// The device, once its line has been closed after its use.
    template <class Device = Simulator>
    [[nodiscard]] Device& used()
    {
        watched_.waitForEnd();
        return untouched<Device>();
    }

    /// The device, of which no use was made.
    template <class Device = Simulator>
    [[nodiscard]] Device& untouched()
    {
        pty_.stop();
        pty_.join();
        return dynamic_cast<Device&>(*device_);
    }

private:
    std::string port_;
    std::unique_ptr<Simulator> device_;
    WatchedDevice watched_;
    PtyDeviceHost pty_;
};

std::unique_ptr<Simulator> right(kelReaderType model = kelReaderTypeNCSEZData)
{
    return makeSimulator(model, {.rate = Rate::Unlimited, .settings = {{"version", " Rev 3.1 "}}});
}

/// A reader has to answer within a tenth of a second, which it does under a virtual clock alone.
class SearchInTime : public testing::Test {
protected:
    static CommandOutcome locate(const Words& more)
    {
        Words words = {"locate", "--model"};
        words.insert(words.end(), more.begin(), more.end());
        return runWithin(addLocateCommand, words);
    }

    SimulatedPlatform machine_;
    PlatformScope scope_{machine_};
};

TEST_F(SearchInTime, FindsTheReaderBehindPortsOfAllKinds)
{
    Parrot silent("");
    Parrot other("?\r");
    Parrot longer("GG\r");
    const std::unique_ptr<Simulator> scanmark = makeSimulator(kelReaderTypeScantronScanMark2500, {});
    const std::unique_ptr<Simulator> reader = right();
    machine_.attach(3, silent);
    machine_.attach(4, other);
    machine_.attach(5, longer);
    machine_.attach(6, *scanmark);
    machine_.attach(9, *reader);
    const CommandOutcome outcome = locate({"EZData"});
    EXPECT_EQ(outcome.output, "9\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(silent.heard, kProbe);
    EXPECT_EQ(other.heard, kProbe);
    EXPECT_EQ(longer.heard, kProbe);
    EXPECT_THAT(scanmark->errors(), Not(IsEmpty()));
    EXPECT_THAT(reader->errors(), IsEmpty());
}

TEST_F(SearchInTime, LooksAtTheGivenPortFirst)
{
    Parrot silent("");
    const std::unique_ptr<Simulator> reader = right(kelReaderTypeChatsworthOMR2000);
    machine_.attach(1, silent);
    machine_.attach(9, *reader);
    EXPECT_EQ(locate({"21", "--port", "9"}).output, "9\n");
    EXPECT_THAT(reader->errors(), IsEmpty());
    EXPECT_EQ(silent.heard, "");
}

TEST_F(SearchInTime, PortsThatAreNotThereArePassedOver)
{
    const std::unique_ptr<Simulator> reader = right();
    machine_.attach(16, *reader);
    EXPECT_EQ(locate({"23"}).output, "16\n");
    EXPECT_THAT(reader->errors(), IsEmpty());
}

TEST_F(SearchInTime, AVersionIsWrittenWithoutItsBlanks)
{
    for (const char* model : {"20", "21", "22", "23", "35", "37", "41"}) {
        const std::unique_ptr<Simulator> reader = right(static_cast<kelReaderType>(std::stoi(model)));
        machine_.attach(9, *reader);
        const CommandOutcome outcome = runWithin(addFirmwareCommand, {"firmware", "--model", model, "--port", "9"});
        EXPECT_EQ(outcome.output, "Rev 3.1\n") << model;
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(reader->errors(), IsEmpty());
    }
}

/// What does not hang on how soon somebody answers, with real ports.
class SearchOverAPseudoTerminal : public testing::Test {
protected:
    void SetUp() override { runCommand({"ports", "set", "2", "/dev/no-such-device"}); }
    void TearDown() override { runCommand({"ports", "clear", "2"}); }
};

TEST_F(SearchOverAPseudoTerminal, TellsWhatItMetWhenNobodyAnswers)
{
    MappedDevice silent(3, std::make_unique<Parrot>(""));
    MappedDevice inUse(7, right());
    const std::unique_ptr<Platform> machine = makePosixPlatform();
    const PlatformScope scope(*machine);
    const PortOverride line(1, inUse.file());
    const std::unique_ptr<SerialControl> somebodyElse = machine->newSerialControl();
    somebodyElse->CommPort(1);
    somebodyElse->PortOpen(True);

    const CommandOutcome search = runCommand({"locate", "--model", "23"});
    EXPECT_EQ(search.output, "");
    EXPECT_THAT(search.errors,
                AllOf(HasSubstr("(/dev/no-such-device) is not there"), HasSubstr("(8002, basNCSEZData.Locate"),
                      HasSubstr("Port 7 (" + inUse.file() + ")"), HasSubstr("(8005, basNCSEZData.Locate"),
                      HasSubstr("No Scantron EZData answered at any port."), Not(HasSubstr("Port 16"))));
    EXPECT_EQ(search.status, 1);
    EXPECT_EQ(silent.used<Parrot>().heard, kProbe);

    const CommandOutcome version = runCommand({"firmware", "--model", "23", "--port", "7"});
    EXPECT_THAT(version.errors, HasSubstr("(8005, basNCSEZData.FirmwareVersionNCSEZ"));
    EXPECT_EQ(version.status, 1);
}

TEST_F(SearchOverAPseudoTerminal, NoVersionIsAFailureWithItsReason)
{
    MappedDevice other(4, std::make_unique<Parrot>("Rev 3.1?\r"));
    const std::map<std::string, std::string> reasons = {
        {"0", "There is no port 0; ports are 1 to 16 ('kelreader ports') (8002, basNCSEZData.Firmware"},
        {"1", "Port 1 has no device. Assign it to one: kelreader ports set 1 DEVICE (8002, basNCSEZData.Firmware"},
        {"2", "(/dev/no-such-device) is not there"},
        {"4", "No Scantron EZData reported its firmware version at port 4."}};
    for (const auto& [port, reason] : reasons) {
        const CommandOutcome outcome = runCommand({"firmware", "--model", "23", "--port", port});
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, HasSubstr(reason));
        EXPECT_EQ(outcome.status, 1);
    }
    EXPECT_EQ(other.used<Parrot>().heard, kVersion);
}

TEST_F(SearchOverAPseudoTerminal, ModelsThatAreNotSearchedForAreToldSo)
{
    MappedDevice reader(9, std::make_unique<Parrot>("G\r"));
    for (const char* model : {"35", "41", "7", "24"}) {
        const CommandOutcome outcome = runCommand({"locate", "--model", model});
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, HasSubstr("cannot be searched for"));
        EXPECT_EQ(outcome.status, 1);
    }
    EXPECT_THAT(runCommand({"firmware", "--model", "7", "--port", "9"}).errors,
                HasSubstr("does not report its firmware version"));
    EXPECT_EQ(reader.untouched<Parrot>().heard, "");
}

} // namespace
} // namespace kel::test
