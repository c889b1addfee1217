// SPDX-License-Identifier: MIT
#include "tests/windows/platform/PortTest.h"

#include "types/RuntimeFailure.h"

#include <chrono>
#include <thread>

namespace kel {
namespace {

using std::chrono::milliseconds;

template <class Action>
FailureCode failureOf(Action action)
{
    try {
        action();
    } catch (const RuntimeFailure& failure) {
        return failure.code();
    }
    return FailureCode{};
}

class WindowsSerialControlTest : public test::PortTest {};

TEST_F(WindowsSerialControlTest, WhatTheReaderSendsArrives)
{
    open();
    ask("echo 48 mark columns");
    EXPECT_EQ(waitFor(15), 15);
    EXPECT_EQ(line->Input(), "48 mark columns");
    EXPECT_EQ(line->InBufferCount(), 0);
    EXPECT_EQ(line->Input(), "");
}

TEST_F(WindowsSerialControlTest, InputComesInPiecesOfTheLengthThatIsSet)
{
    open();
    ask("echo abcdef");
    ASSERT_EQ(waitFor(6), 6);
    line->InputLen(1);
    EXPECT_EQ(line->Input(), "a");
    EXPECT_EQ(line->InBufferCount(), 5);
    line->InputLen(3);
    EXPECT_EQ(line->Input(), "bcd");
    line->InputLen(0);
    EXPECT_EQ(line->Input(), "ef");
}

TEST_F(WindowsSerialControlTest, WhatHasArrivedIsSeenWithoutThePump)
{
    open();
    ask("echo x");
    EXPECT_TRUE(test::waitUntil([&] { return line->InBufferCount() == 1; }));
}

TEST_F(WindowsSerialControlTest, APageArrivesWhole)
{
    open();
    ask("send 20000");
    ASSERT_EQ(waitFor(20000), 20000);
    const std::string page = line->Input();
    for (std::size_t i = 0; i < page.size(); ++i)
        ASSERT_EQ(page[i], static_cast<char>('a' + i % 26)) << i;
}

TEST_F(WindowsSerialControlTest, AllBytesPassAsTheyStand)
{
    open();
    std::string all;
    for (int code = 0; code < 256; ++code) {
        if (code != '\n')
            all += static_cast<char>(code);
    }
    ask("echo " + all);
    ASSERT_EQ(waitFor(255), 255);
    EXPECT_EQ(line->Input(), all);
}

TEST_F(WindowsSerialControlTest, AllSettingsOfTheReadersAreTaken)
{
    for (const char* settings : {"110,N,8,1", "1200,E,7,1", "9600,O,7,2", "14400,M,8,1", "38400,S,7,1", "56000,N,8,1",
                                 "128000,N,8,2", "256000,N,8,1"}) {
        line->Settings(settings);
        for (Int32 handshaking = 0; handshaking <= 3; ++handshaking) {
            line->Handshaking(handshaking);
            EXPECT_NO_THROW(open()) << settings << " " << handshaking;
            line->PortOpen(False);
        }
    }
}

TEST_F(WindowsSerialControlTest, AnOpenLineTakesNewSettings)
{
    open();
    line->Settings("9600,N,8,1");
    EXPECT_EQ(failureOf([&] { line->Settings("9600,N,8,1.5"); }), FailureCode::CannotSetLineState);
    EXPECT_EQ(line->Settings(), "9600,N,8,1");
    ask("echo still there");
    EXPECT_EQ(waitFor(11), 11);
}

TEST_F(WindowsSerialControlTest, FailuresBearTheirNumbers)
{
    EXPECT_EQ(failureOf([&] { static_cast<void>(line->InBufferCount()); }), FailureCode::PortNotOpen);
    EXPECT_EQ(failureOf([&] { line->Output("x"); }), FailureCode::PortNotOpen);
    EXPECT_EQ(failureOf([&] { line->Settings("fast"); }), FailureCode::InvalidPropertyValue);
    EXPECT_EQ(failureOf([&] { line->Handshaking(4); }), FailureCode::InvalidPropertyValue);
    EXPECT_EQ(failureOf([&] { line->InputLen(-1); }), FailureCode::InvalidPropertyValue);
    line->CommPort(0);
    EXPECT_EQ(failureOf([&] { open(); }), FailureCode::InvalidPortNumber);
    line->CommPort(15); // mapped to nothing
    EXPECT_EQ(failureOf([&] { open(); }), FailureCode::InvalidPortNumber);
    line->CommPort(16); // mapped to a file
    EXPECT_EQ(failureOf([&] { open(); }), FailureCode::DeviceNotOpen);
}

TEST_F(WindowsSerialControlTest, APortHasOneUser)
{
    open();
    EXPECT_EQ(failureOf([&] { open(); }), FailureCode::PortAlreadyOpen);
    EXPECT_EQ(failureOf([&] { line->CommPort(2); }), FailureCode::PortAlreadyOpen);
    const auto second = machine.newSerialControl();
    second->CommPort(kPort);
    EXPECT_EQ(failureOf([&] { second->PortOpen(True); }), FailureCode::PortAlreadyOpen);
    line->PortOpen(False);
    EXPECT_NO_THROW(second->PortOpen(True));
}

TEST_F(WindowsSerialControlTest, WhatCameBeforeOpeningIsDropped)
{
    open();
    ask("late 50 old");
    line->PortOpen(False);
    std::this_thread::sleep_for(std::chrono::seconds(2)); // nobody sees it come
    open();
    EXPECT_EQ(line->InBufferCount(), 0);
}

TEST_F(WindowsSerialControlTest, ALineThatHangsUpGivesWhatCameBeforeAndFailsThen)
{
    open();
    ask("hangup last words");
    ASSERT_EQ(waitFor(10), 10);
    std::this_thread::sleep_for(milliseconds(300)); // the line is gone by then, unless the machine is very busy
    EXPECT_EQ(line->Input(), "last words");
    EXPECT_EQ(failureOf([&] { static_cast<void>(waitFor(1)); }), FailureCode::ErrorReadingDevice);
    EXPECT_EQ(failureOf([&] { line->Output("x"); }), FailureCode::ErrorReadingDevice);
    line->PortOpen(False);
    EXPECT_NO_THROW(open());
}

} // namespace
} // namespace kel
