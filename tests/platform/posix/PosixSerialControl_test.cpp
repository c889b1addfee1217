// SPDX-License-Identifier: MIT
#include "platform/posix/LineInput.h"
#include "platform/posix/TerminalAttributes.h"
#include "tests/platform/posix/PosixTest.h"

#include <fcntl.h>
#include <termios.h>

namespace kel {
namespace {

using test::expectFailure;

class PosixSerialControlTest : public test::PosixTest {};

TEST_F(PosixSerialControlTest, IsClosedAtFirst)
{
    PosixSerialControl line(pump(), registry());
    EXPECT_EQ(line.PortOpen(), False);
    EXPECT_EQ(line.Settings(), "9600,N,8,1");
    EXPECT_EQ(line.Handshaking(), 0);
    EXPECT_EQ(line.InputLen(), 0);
}

// --- Settings

TEST_F(PosixSerialControlTest, SetsEverySpeedThatReadersKnowAndOthers)
{
    for (const Int32 speed :
         {110, 300, 600, 1200, 2400, 4800, 9600, 14400, 19200, 28800, 38400, 56000, 128000, 256000, 12345}) {
        const Pty pty;
        const auto line = control(pty.name());
        line->Settings(std::to_string(speed) + ",N,8,1");
        line->PortOpen(True);
        EXPECT_EQ(pty.line().baudRate, speed);
    }
}

TEST_F(PosixSerialControlTest, SetsStopBitsAndHandshaking)
{
    for (const Int32 handshaking : {0, 1, 2, 3}) {
        const Pty pty;
        const auto line = control(pty.name());
        line->Settings("9600,N,8,2");
        line->Handshaking(handshaking);
        line->PortOpen(True);
        EXPECT_EQ(pty.line().stopBits, 2);
        EXPECT_EQ(pty.line().handshaking, handshaking);
    }
}

TEST_F(PosixSerialControlTest, ALineWithoutAWireMayKeepItsOwnDataBitsAndParity)
{
    const Pty pty;
    for (const char* settings :
         {"9600,E,7,1", "9600,O,7,2", "9600,M,6,1", "9600,S,8,1", "1200,N,5,1", "1200,e,5,1.5"}) {
        const auto line = control(pty.name());
        line->Settings(settings);
        line->PortOpen(True);
        EXPECT_EQ(line->PortOpen(), True) << settings;
    }
}

TEST_F(PosixSerialControlTest, OneAndAHalfStopBitsNeedFiveDataBits)
{
    const Pty pty;
    const auto line = control(pty.name());
    line->Settings("1200,E,7,1.5");
    expectFailure(FailureCode::CannotSetLineState, {"Port 1 (" + pty.name() + ")", "1.5 stop bits"},
                  [&] { line->PortOpen(True); });
    EXPECT_EQ(line->PortOpen(), False);
}

TEST_F(PosixSerialControlTest, SettingsThatAreNoneAreRefusedAsSuch)
{
    PosixSerialControl line(pump(), registry());
    for (const char* settings :
         {"", "9600", "9600;N;8;1", "fast,N,8,1", "9600,X,8,1", "9600,N,4,1", "9600,N,9,1", "9600,N,8,3", "0,N,8,1"})
        expectFailure(FailureCode::InvalidPropertyValue, {std::string("\"") + settings + "\""},
                      [&] { line.Settings(settings); });
    for (const Int32 handshaking : {-1, 4})
        expectFailure(FailureCode::InvalidPropertyValue, {std::to_string(handshaking)},
                      [&] { line.Handshaking(handshaking); });
    expectFailure(FailureCode::InvalidPropertyValue, {}, [&] { line.InputLen(-1); });
    EXPECT_EQ(line.Settings(), "9600,N,8,1");
}

TEST_F(PosixSerialControlTest, AnOpenLineTakesNewSettingsAtOnce)
{
    const Pty pty;
    const auto line = openControl(pty);
    line->Settings("19200,N,8,2");
    line->Handshaking(2);
    EXPECT_EQ(pty.line().baudRate, 19200);
    EXPECT_EQ(pty.line().stopBits, 2);
    EXPECT_EQ(pty.line().handshaking, 2);
}

TEST_F(PosixSerialControlTest, AnOpenLineKeepsItsSettingsWhenNewOnesAreRefused)
{
    const Pty pty;
    const auto line = openControl(pty);
    line->Settings("19200,N,8,2");
    expectFailure(FailureCode::CannotSetLineState, {}, [&] { line->Settings("1200,N,8,1.5"); });
    EXPECT_EQ(line->Settings(), "19200,N,8,2");
    EXPECT_EQ(pty.line().baudRate, 19200);
}

TEST_F(PosixSerialControlTest, BytesPassAsTheyStand)
{
    Pty pty;
    // A terminal as a log-in would have left it.
    termios cooked{};
    ASSERT_EQ(::tcgetattr(pty.handle(), &cooked), 0);
    cooked.c_iflag |= ICRNL | ISTRIP | INPCK | BRKINT;
    cooked.c_oflag |= OPOST | ONLCR;
    cooked.c_lflag |= ICANON | ECHO | ISIG | IEXTEN;
    ASSERT_EQ(::tcsetattr(pty.handle(), TCSANOW, &cooked), 0);

    const auto line = openControl(pty);
    std::string all;
    for (int code = 0; code < 256; ++code)
        all += static_cast<char>(code);

    line->Output(all);
    EXPECT_EQ(pty.read(), all);

    ASSERT_EQ(pty.write(all), all.size());
    std::string received;
    while (received.size() < all.size()) {
        machine.pump().DoEvents();
        received += line->Input();
    }
    EXPECT_EQ(received, all);
}

TEST_F(PosixSerialControlTest, ReadsDoNotConfuseAPauseWithTheEndOfTheLine)
{
    const Pty pty;
    const auto line = openControl(pty);
    termios found{};
    ASSERT_EQ(::tcgetattr(pty.handle(), &found), 0);
    EXPECT_EQ(found.c_cc[VMIN], 1);
    EXPECT_EQ(found.c_cc[VTIME], 0);
    EXPECT_NE(::fcntl(line->input().handle(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(::fcntl(line->input().handle(), F_GETFD) & FD_CLOEXEC, 0);
}

// --- Opening and closing

TEST_F(PosixSerialControlTest, OpensByALink)
{
    const Pty pty;
    const std::filesystem::path link = folder.path() / "reader";
    std::filesystem::create_symlink(pty.name(), link);
    EXPECT_EQ(openControl(link.string())->PortOpen(), True);
}

TEST_F(PosixSerialControlTest, DropsWhatCameBeforeItWasOpened)
{
    Pty pty;
    ASSERT_EQ(pty.write("old"), 3U);
    while (pty.allRead())
        std::this_thread::yield();
    const auto line = openControl(pty);
    EXPECT_EQ(line->InBufferCount(), 0);
}

TEST_F(PosixSerialControlTest, GivesTheFormerSettingsBack)
{
    const Pty pty;
    TerminalAttributes before;
    ASSERT_TRUE(before.readFrom(pty.handle()));
    const auto line = control(pty.name());
    line->Settings("300,N,8,2");
    line->PortOpen(True);
    line->PortOpen(False);
    TerminalAttributes after;
    ASSERT_TRUE(after.readFrom(pty.handle()));
    EXPECT_TRUE(before == after);
    EXPECT_EQ(line->PortOpen(), False);
}

TEST_F(PosixSerialControlTest, LeavesTheModemLinesAloneWhenItCloses)
{
    const Pty pty;
    TerminalAttributes attributes;
    ASSERT_TRUE(attributes.readFrom(pty.handle()));
    attributes.hangUpOnClose(true);
    ASSERT_TRUE(attributes.writeTo(pty.handle()));
    openControl(pty)->PortOpen(False);
    ASSERT_TRUE(attributes.readFrom(pty.handle()));
    EXPECT_FALSE(attributes.hangsUpOnClose());
}

TEST_F(PosixSerialControlTest, MayBeOpenedAgain)
{
    Pty pty;
    const auto line = openControl(pty);
    line->PortOpen(False);
    line->PortOpen(False);
    line->PortOpen(True);
    line->Output("x");
    EXPECT_EQ(pty.read(), "x");
}

TEST_F(PosixSerialControlTest, ClosingDoesNotWaitForAReaderThatTakesNothing)
{
    const Pty pty;
    const auto line = openControl(pty);
    const std::string much(100000, 'x');
    while (::write(line->input().handle(), much.data(), much.size()) > 0) {
    }
    line->PortOpen(False); // comes back although nobody takes any of it
    EXPECT_EQ(line->PortOpen(), False);
}

TEST_F(PosixSerialControlTest, AControlMayOutliveItsPlatform)
{
    const Pty pty;
    auto other = std::make_unique<PosixPlatform>(RegistryFolders(folder.path() / "registry"));
    PortMap(other->registry()).set(4, pty.name());
    const std::unique_ptr<SerialControl> line = other->newSerialControl();
    const std::unique_ptr<ScanTimer> timer = other->newScanTimer();
    timer->Enabled(True);
    line->CommPort(4);
    line->PortOpen(True);
    other.reset();
    EXPECT_EQ(line->InBufferCount(), 0);
    line->PortOpen(False);
}

// --- Failures of the state

TEST_F(PosixSerialControlTest, AClosedLineHasNoInputAndTakesNoOutput)
{
    PosixSerialControl line(pump(), registry());
    expectFailure(FailureCode::PortNotOpen, {}, [&] { static_cast<void>(line.InBufferCount()); });
    expectFailure(FailureCode::PortNotOpen, {}, [&] { static_cast<void>(line.Input()); });
    expectFailure(FailureCode::PortNotOpen, {}, [&] { line.Output("x"); });
    expectFailure(FailureCode::PortNotOpen, {}, [&] { line.Output(""); });
}

TEST_F(PosixSerialControlTest, AnOpenLineCannotBeOpenedOrMoved)
{
    const Pty pty;
    const auto line = openControl(pty);
    expectFailure(FailureCode::PortAlreadyOpen, {}, [&] { line->PortOpen(True); });
    expectFailure(FailureCode::PortAlreadyOpen, {}, [&] { line->CommPort(2); });
    EXPECT_EQ(line->CommPort(), 1);
    EXPECT_EQ(line->PortOpen(), True);
}

} // namespace
} // namespace kel
