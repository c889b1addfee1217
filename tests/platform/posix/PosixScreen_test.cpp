// SPDX-License-Identifier: MIT
#include "platform/posix/PosixScreen.h"

#include "platform/FileDescriptor.h"
#include "simulators/pseudo_terminal/Pty.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kel {
namespace {

TEST(PosixScreen, BoxesGoToStandardErrorLineByLineBehindTheirTitle)
{
    PosixScreen screen;
    ::testing::internal::CaptureStderr();
    const BoxAnswer answer =
        screen.MsgBox("No paper.\r\n\r\nFill the feeder.", BoxIcon::Exclamation, BoxButtons::Ok, "Reader Error");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Reader Error: No paper.\nReader Error: Fill the feeder.\n");
    EXPECT_EQ(answer, BoxAnswer::Ok);
}

TEST(PosixScreen, ABoxWithoutTitleIsItsText)
{
    PosixScreen screen;
    ::testing::internal::CaptureStderr();
    screen.MsgBox("Done.", BoxIcon::None, BoxButtons::Ok, "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Done.\n");
}

TEST(PosixScreen, ABoxThatOffersToAbortIsAborted)
{
    PosixScreen screen;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(screen.MsgBox("Read error", BoxIcon::Exclamation, BoxButtons::AbortRetryIgnore, "Load"),
              BoxAnswer::Abort);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Load: Read error\n");
}

TEST(PosixScreen, BeepsOnATerminalOnly)
{
    PosixScreen screen;
    ::testing::internal::CaptureStderr();
    screen.Beep();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");

    Pty terminal;
    const FileDescriptor device(::open(terminal.name().c_str(), O_RDWR | O_NOCTTY));
    const FileDescriptor before(::dup(STDERR_FILENO));
    ASSERT_GE(::dup2(device.number(), STDERR_FILENO), 0);
    screen.Beep();
    ::dup2(before.number(), STDERR_FILENO);
    EXPECT_EQ(terminal.read(), "\a");
}

TEST(PosixScreen, RemembersTheMousePointer)
{
    PosixScreen screen;
    EXPECT_EQ(screen.MousePointer(), kMousePointerDefault);
    screen.MousePointer(kMousePointerHourglass);
    EXPECT_EQ(screen.MousePointer(), kMousePointerHourglass);
}

} // namespace
} // namespace kel
