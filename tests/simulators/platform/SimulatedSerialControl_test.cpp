// SPDX-License-Identifier: MIT
#include "platform/ReceivedInput.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/simulators/platform/ScriptedDevice.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;

class SimulatedSerialControlTest : public ::testing::Test {
protected:
    SimulatedSerialControlTest() : scope_(machine_), control_(machine_.newSerialControl())
    {
        machine_.attach(1, device_);
    }

    SimulatedPlatform machine_;
    PlatformScope scope_;
    ScriptedDevice device_;
    std::unique_ptr<SerialControl> control_;
};

template <class Statement>
Int32 failureOf(Statement statement)
{
    try {
        statement();
    } catch (const RuntimeFailure& failure) {
        return failure.number();
    }
    return 0;
}

TEST_F(SimulatedSerialControlTest, OpensWithItsSettings)
{
    control_->Handshaking(2);
    control_->CommPort(1);
    control_->Settings("1200,E,7,1.5");
    EXPECT_EQ(control_->PortOpen(), False);
    control_->PortOpen(True);
    EXPECT_EQ(control_->PortOpen(), True);
    EXPECT_EQ(device_.openedAt.size(), 1U);
    EXPECT_EQ(device_.parameters.baudRate, 1200);
    EXPECT_EQ(device_.parameters.parity, 'E');
    EXPECT_EQ(device_.parameters.handshaking, 2);
    control_->PortOpen(False);
    control_->PortOpen(False);
    EXPECT_EQ(device_.closedAt.size(), 1U);
}

TEST_F(SimulatedSerialControlTest, RefusesPropertyValues)
{
    EXPECT_EQ(failureOf([&] { control_->Settings("9600;N;8;1"); }), 380);
    EXPECT_EQ(failureOf([&] { control_->Handshaking(4); }), 380);
    EXPECT_EQ(failureOf([&] { control_->Handshaking(-1); }), 380);
    EXPECT_EQ(failureOf([&] { control_->InputLen(-1); }), 380);
    EXPECT_EQ(control_->InputLen(), 0);
}

TEST_F(SimulatedSerialControlTest, PortsAreAbsentBusyOrNotPermitted)
{
    machine_.portState(3, PortState::Busy);
    machine_.portState(4, PortState::NotPermitted);
    machine_.portState(5, PortState::Present); // but nothing is attached
    for (const auto& [port, number] : std::vector<std::pair<Int16, Int32>>{{Int16{2}, 8002},
                                                                           {Int16{0}, 8002},
                                                                           {Int16{17}, 8002},
                                                                           {Int16{3}, 8005},
                                                                           {Int16{4}, 8010},
                                                                           {Int16{5}, 8002}}) {
        control_->CommPort(port);
        EXPECT_EQ(failureOf([&] { control_->PortOpen(True); }), number) << port;
        EXPECT_EQ(control_->PortOpen(), False);
    }
}

TEST_F(SimulatedSerialControlTest, APortIsOpenOnce)
{
    control_->PortOpen(True);
    EXPECT_EQ(failureOf([&] { control_->PortOpen(True); }), 8005);
    EXPECT_EQ(failureOf([&] { control_->CommPort(2); }), 8005);
    const std::unique_ptr<SerialControl> other = machine_.newSerialControl();
    EXPECT_EQ(failureOf([&] { other->PortOpen(True); }), 8005);
    control_.reset();
    EXPECT_EQ(device_.closedAt.size(), 1U);
    other->PortOpen(True);
}

TEST_F(SimulatedSerialControlTest, AClosedPortTakesAndGivesNothing)
{
    EXPECT_EQ(failureOf([&] { static_cast<void>(control_->InBufferCount()); }), 8018);
    EXPECT_EQ(failureOf([&] { static_cast<void>(control_->Input()); }), 8018);
    EXPECT_EQ(failureOf([&] { control_->Output("A"); }), 8018);
}

TEST_F(SimulatedSerialControlTest, CountsWhatHasArrivedWithoutAPump)
{
    device_.sendAt(10ms, "AB");
    device_.sendAt(20ms, "C");
    control_->PortOpen(True);
    EXPECT_EQ(control_->InBufferCount(), 0);
    Sleep(10);
    EXPECT_EQ(control_->InBufferCount(), 2);
    Sleep(10);
    EXPECT_EQ(control_->InBufferCount(), 3);
}

TEST_F(SimulatedSerialControlTest, InputTakesUpToItsLength)
{
    device_.sendAt(0ms, "ABCDE");
    control_->PortOpen(True);
    control_->InputLen(2);
    EXPECT_EQ(control_->Input(), "AB");
    control_->InputLen(1);
    EXPECT_EQ(control_->Input(), "C");
    control_->InputLen(0);
    EXPECT_EQ(control_->Input(), "DE");
    EXPECT_EQ(control_->Input(), "");
}

TEST_F(SimulatedSerialControlTest, ALongReplyComesWholeThroughManyReads)
{
    std::string reply;
    for (int count = 0; count < 200'000; ++count)
        reply += static_cast<char>(count * 7);
    device_.sendAt(0ms, reply);
    control_->PortOpen(True);
    control_->InputLen(1);
    std::string taken;
    while (control_->InBufferCount() > 0)
        taken += control_->Input();
    EXPECT_EQ(taken, reply);
}

TEST_F(SimulatedSerialControlTest, ADeviceIsHeldUpWhileTheLineIsFull)
{
    constexpr auto kFull = static_cast<Int32>(ReceivedInput::kRoom);
    std::string reply;
    for (Int32 count = 0; count < kFull + 1000; ++count)
        reply += static_cast<char>(count * 7);
    device_.sendAt(5ms, reply);
    machine_.hostPace(HostPace::Instant);
    control_->PortOpen(True);
    Sleep(10);
    EXPECT_EQ(control_->InBufferCount(), kFull);
    control_->Output("A");
    EXPECT_EQ(device_.heard, (std::vector<ScriptedDevice::Heard>{{10ms, 'A'}})) << "it hears, held up or not";

    control_->InputLen(600);
    std::string taken = control_->Input();
    EXPECT_EQ(control_->InBufferCount(), kFull);
    taken += control_->Input();
    EXPECT_EQ(control_->InBufferCount(), kFull - 200);
    control_->InputLen(0);
    EXPECT_EQ(taken + control_->Input(), reply);
}

TEST_F(SimulatedSerialControlTest, AFullLineBringsNothingToAHostThatWaits)
{
    device_.sendAt(1ms, std::string(2 * ReceivedInput::kRoom, 'x'));
    control_->PortOpen(True);
    Sleep(5);
    EXPECT_EQ(control_->InBufferCount(), static_cast<Int32>(ReceivedInput::kRoom));
    for (int turn = 0; turn < 10; ++turn)
        DoEvents();
    EXPECT_GT(machine_.now(), 5ms) << "a wait that nothing ends blocks for a moment";
    EXPECT_EQ(control_->InBufferCount(), static_cast<Int32>(ReceivedInput::kRoom));
}

TEST_F(SimulatedSerialControlTest, ALineMayForgetWhatTheHostDoes)
{
    machine_.line(1).forgetActions();
    control_->PortOpen(True);
    control_->Output("A");
    Sleep(10);
    EXPECT_EQ(control_->InBufferCount(), 0);
    EXPECT_EQ(device_.heard.size(), 1U);
    EXPECT_TRUE(machine_.line(1).actions().empty());
}

TEST_F(SimulatedSerialControlTest, TheHostsBytesTakeTheirTimeOnTheWire)
{
    control_->Settings("1000,N,8,1");
    control_->PortOpen(True);
    control_->Output("AB");
    Sleep(5);
    control_->Output("C"); // queues after the B
    EXPECT_TRUE(device_.heard.empty());
    Sleep(1000);
    EXPECT_EQ(control_->InBufferCount(), 0);
    const std::vector<ScriptedDevice::Heard> expected = {{10ms, 'A'}, {20ms, 'B'}, {30ms, 'C'}};
    EXPECT_EQ(device_.heard, expected);
}

TEST_F(SimulatedSerialControlTest, TheHostsBytesCanBeThereAtOnce)
{
    machine_.hostPace(HostPace::Instant);
    control_->PortOpen(True);
    Sleep(3);
    control_->Output("AB");
    const std::vector<ScriptedDevice::Heard> expected = {{3ms, 'A'}, {3ms, 'B'}};
    EXPECT_EQ(device_.heard, expected);
}

TEST_F(SimulatedSerialControlTest, TheOrderOfTimesHoldsHoweverFarTheClockJumps)
{
    control_->Settings("1000,N,8,1");
    control_->PortOpen(True);
    device_.echoAfter(15ms);
    control_->Output("ABC");
    Sleep(44);
    EXPECT_EQ(control_->Input(), "AB");
    Sleep(1);
    EXPECT_EQ(control_->Input(), "C");
}

TEST_F(SimulatedSerialControlTest, ClosingLetsTheLastBytesOut)
{
    control_->Settings("1000,N,8,1");
    control_->PortOpen(True);
    control_->Output("9");
    control_->PortOpen(False);
    const std::vector<ScriptedDevice::Heard> expected = {{10ms, '9'}};
    EXPECT_EQ(device_.heard, expected);
    EXPECT_EQ(device_.closedAt, std::vector<Moment>{10ms});
}

TEST_F(SimulatedSerialControlTest, OpeningBeginsWithAnEmptyBuffer)
{
    device_.sendAt(0ms, "old");
    control_->PortOpen(True);
    EXPECT_EQ(control_->InBufferCount(), 3);
    control_->PortOpen(False);
    control_->PortOpen(True);
    EXPECT_EQ(control_->InBufferCount(), 0);
}

TEST_F(SimulatedSerialControlTest, AfterAHangUpWhatCameBeforeIsStillThere)
{
    device_.sendAt(1ms, "AB");
    device_.unplugAt(2ms);
    control_->PortOpen(True);
    Sleep(10);
    control_->InputLen(1);
    EXPECT_EQ(control_->InBufferCount(), 2);
    EXPECT_EQ(control_->Input(), "A");
    EXPECT_EQ(control_->Input(), "B");
    EXPECT_EQ(failureOf([&] { static_cast<void>(control_->InBufferCount()); }), 8020);
    EXPECT_EQ(failureOf([&] { static_cast<void>(control_->Input()); }), 8020);
    EXPECT_EQ(failureOf([&] { control_->Output("A"); }), 8020);
    EXPECT_EQ(control_->PortOpen(), True);
    control_->PortOpen(False);
    EXPECT_EQ(failureOf([&] { control_->PortOpen(True); }), 8002);
}

TEST_F(SimulatedSerialControlTest, EverythingThatTheHostDidIsRecorded)
{
    control_->Handshaking(0);
    control_->CommPort(1);
    control_->Settings("9600,N,8,1");
    control_->PortOpen(True);
    Sleep(100);
    control_->Output("\x1BQ\r");
    Sleep(100);
    control_->Output("x");
    Sleep(100);
    control_->PortOpen(False);
    using Kind = HostAction::Kind;
    const std::vector<HostAction> expected = {
        {0ms, Kind::Handshaking, "0"},   {0ms, Kind::Port, "1"},           {0ms, Kind::Settings, "9600,N,8,1"},
        {0ms, Kind::Open, "9600,N,8,1"}, {100ms, Kind::Output, "\x1BQ\r"}, {200ms, Kind::Output, "x"},
        {300ms, Kind::Close, ""}};
    EXPECT_EQ(machine_.line(1).actions(), expected);
    EXPECT_EQ(machine_.line(1).sent(), "\x1BQ\rx");
    EXPECT_EQ(machine_.line(1).sent(5), "x");
    EXPECT_TRUE(machine_.line(2).actions().empty());
    EXPECT_THROW(static_cast<void>(machine_.line(17)), std::out_of_range);
}

TEST_F(SimulatedSerialControlTest, TwoPortsAreTwoLines)
{
    ScriptedDevice other;
    machine_.attach(16, other);
    const std::unique_ptr<SerialControl> second = machine_.newSerialControl();
    second->CommPort(16);
    control_->PortOpen(True);
    second->PortOpen(True);
    other.sendAt(1ms, "B");
    DoEvents();
    EXPECT_EQ(control_->InBufferCount(), 0);
    EXPECT_EQ(second->InBufferCount(), 1);
}

} // namespace
} // namespace kel
