// SPDX-License-Identifier: MIT
#include "platform/posix/LineOpenFailure.h"
#include "tests/platform/posix/PosixTest.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace kel {
namespace {

using test::expectFailure;
using test::OtherProcess;

TEST(LineOpenFailure, TellsTheCausesApart)
{
    for (const int error : {EBUSY, EAGAIN})
        EXPECT_EQ(lineOpenFailureCode(error), FailureCode::PortAlreadyOpen);
    for (const int error : {EACCES, EPERM, EMFILE, ENOMEM})
        EXPECT_EQ(lineOpenFailureCode(error), FailureCode::HardwareNotAvailable);
    for (const int error : {ENOTTY, EINVAL, EISDIR})
        EXPECT_EQ(lineOpenFailureCode(error), FailureCode::DeviceNotOpen);
    for (const int error : {ENOENT, ENOTDIR, ENXIO, ENODEV, EIO, ELOOP})
        EXPECT_EQ(lineOpenFailureCode(error), FailureCode::InvalidPortNumber);
}

TEST(LineOpenFailure, ADeviceThatIsOutOfReachOtherwiseIsToldWithItsCause)
{
    const RuntimeFailure failure = lineOpenFailure(2, "/dev/ttyS9", EMFILE);
    EXPECT_EQ(failure.text(), failureText(FailureCode::HardwareNotAvailable) +
                                  ": Port 2 (/dev/ttyS9) cannot be opened: Too many open files.");
}

class OpeningALine : public test::PosixTest {
protected:
    void expectToFail(FailureCode code, const std::vector<std::string>& words, const std::string& device)
    {
        const auto line = control(device, 7);
        expectFailure(code, words, [&] { line->PortOpen(True); });
        EXPECT_EQ(line->PortOpen(), False);
    }
};

TEST_F(OpeningALine, OfAPortWithoutDeviceTellsHowToMapIt)
{
    PosixSerialControl line(pump(), registry());
    line.CommPort(3);
    expectFailure(FailureCode::InvalidPortNumber, {"Port 3 ", "kelreader ports set 3 DEVICE"},
                  [&] { line.PortOpen(True); });
    for (const Int16 port : {Int16{0}, Int16{17}}) {
        line.CommPort(port);
        expectFailure(FailureCode::InvalidPortNumber,
                      {"There is no port " + std::to_string(port) + "; ports are 1 to 16"},
                      [&] { line.PortOpen(True); });
    }
}

TEST_F(OpeningALine, ThatIsAbsentNamesPortDeviceAndCause)
{
    const std::string device = (folder.path() / "ttyUSB0").string();
    expectToFail(FailureCode::InvalidPortNumber,
                 {"Port 7 (" + device + ")", "No such file or directory", "kelreader ports set 7 DEVICE"}, device);
}

TEST_F(OpeningALine, ANameWithoutFolderIsADevice)
{
    expectToFail(FailureCode::InvalidPortNumber, {"Port 7 (/dev/kel-no-such-device)"}, "kel-no-such-device");
}

TEST_F(OpeningALine, ThatIsNoSerialDeviceIsRefused)
{
    const std::string file = (folder.path() / "file").string();
    std::ofstream(file) << "text";
    for (const std::string& device : {std::string("/dev/null"), file, folder.path().string()})
        expectToFail(FailureCode::DeviceNotOpen, {"Port 7 (" + device + ")", "not a serial device"}, device);
}

TEST_F(OpeningALine, OfWhichTheOtherEndIsGoneFindsItAbsent)
{
    std::string device;
    {
        const Pty pty;
        device = pty.name();
    }
    expectToFail(FailureCode::InvalidPortNumber, {device}, device);
}

TEST_F(OpeningALine, ThatThisProcessHasOpenIsRefused)
{
    const Pty pty;
    const auto line = openControl(pty);
    expectToFail(FailureCode::PortAlreadyOpen, {"Port 7 (" + pty.name() + ")", "in this process"}, pty.name());
    line->PortOpen(False);
    EXPECT_EQ(openControl(pty)->PortOpen(), True);
}

TEST_F(OpeningALine, ThatAnotherProcessHasOpenNamesIt)
{
    const Pty pty;
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe(ready.data()), 0);
    OtherProcess other([&] {
        const auto line = openControl(pty);
        EXPECT_EQ(::write(ready[1], "x", 1), 1);
        ::pause();
        return std::string();
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    expectToFail(FailureCode::PortAlreadyOpen, {"process " + std::to_string(other.number()) + " ("}, pty.name());

    // However the other one ends, the line is free then.
    other.kill();
    EXPECT_EQ(openControl(pty)->PortOpen(), True);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST_F(OpeningALine, ThatIsInUseDisturbsNoSetting)
{
    const Pty pty;
    const auto line = control(pty.name());
    line->Settings("19200,N,8,2");
    line->PortOpen(True);
    expectToFail(FailureCode::PortAlreadyOpen, {}, pty.name());
    EXPECT_EQ(pty.line().baudRate, 19200);
}

TEST_F(OpeningALine, ThatIsNotPermittedTellsWhoseItIsAndWhoAsks)
{
    const Pty pty;
    ASSERT_EQ(::chmod(pty.name().c_str(), 0), 0);
    OtherProcess other([&] {
        test::becomeOrdinaryUser();
        const std::optional<RuntimeFailure> failure = test::caught([&] { static_cast<void>(openControl(pty, 7)); });
        return failure ? std::to_string(failure->number()) + " " + failure->text() : "opened";
    });
    const std::string answer = other.answer();
    EXPECT_EQ(answer.find("8010 "), 0U) << answer;
    for (const std::string& word : {"Port 7 (" + pty.name() + ")", std::string("Permission denied"),
                                    std::string("belongs to "), std::string("mode 0000"), std::string("you are "),
                                    "ask the administrator for read and write access to " + pty.name()})
        EXPECT_NE(answer.find(word), std::string::npos) << "no \"" << word << "\" in: " << answer;
}

TEST_F(OpeningALine, ThatAGroupMayUseNamesTheGroup)
{
    const Pty pty;
    // Only root can give a device to a group that it is not in itself. Anybody else is in the group.
    const group* dialout = ::getgrnam("dialout");
    const bool root = ::geteuid() == 0 && dialout;
    if (root) {
        ASSERT_EQ(::chown(pty.name().c_str(), 0, dialout->gr_gid), 0);
    }
    ASSERT_EQ(::chmod(pty.name().c_str(), root ? 0660 : 0060), 0);
    OtherProcess other([&] {
        test::becomeOrdinaryUser();
        const std::optional<RuntimeFailure> failure = test::caught([&] { static_cast<void>(openControl(pty)); });
        return failure ? failure->text() : "opened";
    });
    const std::string answer = other.answer();
    const std::string wanted = root ? "join the group dialout (sudo usermod -a -G dialout " : "ask the administrator";
    EXPECT_NE(answer.find(wanted), std::string::npos) << answer;
}

} // namespace
} // namespace kel
