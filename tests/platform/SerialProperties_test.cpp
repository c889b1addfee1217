// SPDX-License-Identifier: MIT
// The properties of a serial control are the same on a line of the system, on a simulated one and in a replay.

#include "platform/SerialProperties.h"

#include "platform/LineControl.h"
#include "simulators/platform/ReplayCarrier.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/platform/FakeLine.h"
#include "tests/simulators/platform/ScriptedDevice.h"

#include <gmock/gmock.h>

#include <vector>

namespace kel::test {
namespace {

/// A line that keeps how it was set, and can refuse it.
class SetLine final : public OpenLine {
public:
    explicit SetLine(std::vector<LineParameters>& set) : set_(set) {}

    void set(const LineParameters& line) override
    {
        set_.push_back(line);
        if (line.stopBits == 1.5)
            throw RuntimeFailure(FailureCode::CannotSetLineState);
    }
    [[nodiscard]] ReceivedInput& input() override { return input_; }
    void send(std::string_view) override {}

private:
    std::vector<LineParameters>& set_;
    FakeTime time_;
    FakeLine input_{time_};
};

/// What the systems' controls share, on a line of a test.
class SystemControl final : public LineControl {
public:
    explicit SystemControl(Int32 leastDataBits = 4) : LineControl(leastDataBits) {}

    std::vector<LineParameters> set;

private:
    [[nodiscard]] std::unique_ptr<OpenLine> open(Int16, const LineParameters&) override
    {
        return std::make_unique<SetLine>(set);
    }
};

enum class Kind { System, Simulated, Replay };

std::string nameOf(Kind kind)
{
    switch (kind) {
    case Kind::System: return "System";
    case Kind::Simulated: return "Simulated";
    default: return "Replay";
    }
}

class SerialPropertiesTest : public testing::TestWithParam<Kind> {
protected:
    SerialPropertiesTest() { machine_.attach(1, device_); }

    [[nodiscard]] SerialControl& control()
    {
        switch (GetParam()) {
        case Kind::System: return system_;
        case Kind::Simulated: return *simulated_;
        default: return replay_.mscComm();
        }
    }

    /// The text of the failure 380 that a statement ends with.
    template <class Statement>
    [[nodiscard]] static std::string refusal(Statement statement)
    {
        try {
            statement();
        } catch (const RuntimeFailure& failure) {
            EXPECT_EQ(failure.code(), FailureCode::InvalidPropertyValue) << failure.text();
            return failure.text();
        }
        return "nothing failed";
    }

private:
    SimulatedPlatform machine_;
    PlatformScope scope_{machine_};
    ScriptedDevice device_;
    SystemControl system_;
    std::unique_ptr<SerialControl> simulated_ = machine_.newSerialControl();
    ReplayCarrier replay_{parseTranscript("> 41\n< 42\n")};
};

TEST_P(SerialPropertiesTest, AtFirst)
{
    EXPECT_EQ(control().CommPort(), 1);
    EXPECT_EQ(control().Settings(), "9600,N,8,1");
    EXPECT_EQ(control().Handshaking(), 0);
    EXPECT_EQ(control().InputLen(), 0);
    EXPECT_EQ(control().PortOpen(), False);
}

TEST_P(SerialPropertiesTest, AreKeptAsTheyWereGiven)
{
    control().CommPort(7);
    control().Settings("1200,e,7,1.5");
    control().Handshaking(3);
    control().InputLen(12);
    EXPECT_EQ(control().CommPort(), 7);
    EXPECT_EQ(control().Settings(), "1200,e,7,1.5");
    EXPECT_EQ(control().Handshaking(), 3);
    EXPECT_EQ(control().InputLen(), 12);
}

TEST_P(SerialPropertiesTest, OtherValuesAreRefusedAndTheOldOnesStay)
{
    for (const std::string settings : {"", "9600;N;8;1", "9600,N,3,1", "9600,N,9,1", "9600,X,8,1"})
        EXPECT_EQ(refusal([&] { control().Settings(settings); }), "Invalid property value: \"" + settings + "\"");
    for (const Int32 handshaking : {-1, 4, 7})
        EXPECT_EQ(refusal([&] { control().Handshaking(handshaking); }),
                  "Invalid property value: handshaking " + std::to_string(handshaking) + " is not 0 to 3");
    EXPECT_EQ(refusal([&] { control().InputLen(-1); }), "Invalid property value");
    EXPECT_EQ(control().Settings(), "9600,N,8,1");
    EXPECT_EQ(control().Handshaking(), 0);
    EXPECT_EQ(control().InputLen(), 0);
}

TEST_P(SerialPropertiesTest, ThePortOfAnOpenLineStays)
{
    control().PortOpen(True);
    try {
        control().CommPort(2);
        ADD_FAILURE() << "the line is open";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.code(), FailureCode::PortAlreadyOpen);
    }
    EXPECT_EQ(control().CommPort(), 1);
    control().PortOpen(False);
    control().CommPort(2);
    EXPECT_EQ(control().CommPort(), 2);
}

INSTANTIATE_TEST_SUITE_P(Controls, SerialPropertiesTest, testing::Values(Kind::System, Kind::Simulated, Kind::Replay),
                         [](const testing::TestParamInfo<Kind>& each) { return nameOf(each.param); });

TEST(LineControlTest, ASystemMayNeedMoreDataBits)
{
    SystemControl control(5);
    try {
        control.Settings("9600,N,4,1");
        ADD_FAILURE() << "four data bits are too few";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.code(), FailureCode::InvalidPropertyValue);
        EXPECT_EQ(failure.text(), "Invalid property value: \"9600,N,4,1\"; lines have 5 to 8 data bits on this system");
    }
    EXPECT_EQ(control.Settings(), "9600,N,8,1");
}

TEST(LineControlTest, AnOpenLineIsSetAtOnceAndBackWhenItRefuses)
{
    SystemControl control;
    control.PortOpen(True);
    control.Handshaking(2);
    EXPECT_THROW(control.Settings("1200,N,5,1.5"), RuntimeFailure);
    EXPECT_EQ(control.Settings(), "9600,N,8,1");
    ASSERT_EQ(control.set.size(), 3U);
    EXPECT_EQ(control.set[0].handshaking, 2);
    EXPECT_EQ(control.set[1].baudRate, 1200);
    EXPECT_EQ(control.set[1].handshaking, 2);
    EXPECT_EQ(control.set[2].baudRate, 9600);
    EXPECT_EQ(control.set[2].handshaking, 2);
}

} // namespace
} // namespace kel::test
