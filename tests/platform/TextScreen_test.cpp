// SPDX-License-Identifier: MIT
#include "platform/TextScreen.h"

#include "platform/FileDescriptor.h"
#include "simulators/pseudo_terminal/Pty.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kel {
namespace {

TEST(TextScreen, BoxesGoToStandardErrorLineByLineBehindTheirTitle)
{
    TextScreen screen;
    ::testing::internal::CaptureStderr();
    const BoxAnswer answer =
        screen.MsgBox("No paper.\r\n\r\nFill the feeder.", BoxIcon::Exclamation, BoxButtons::Ok, "Reader Error");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Reader Error: No paper.\nReader Error: Fill the feeder.\n");
    EXPECT_EQ(answer, BoxAnswer::Ok);
}

TEST(TextScreen, ABoxWithoutTitleIsItsText)
{
    TextScreen screen;
    ::testing::internal::CaptureStderr();
    screen.MsgBox("Done.", BoxIcon::None, BoxButtons::Ok, "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Done.\n");
}

TEST(TextScreen, ABoxThatOffersToAbortIsAborted)
{
    TextScreen screen;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(screen.MsgBox("Read error", BoxIcon::Exclamation, BoxButtons::AbortRetryIgnore, "Load"),
              BoxAnswer::Abort);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Load: Read error\n");
}

TEST(TextScreen, BeepsOnATerminalOnly)
{
    TextScreen screen;
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

TEST(TextScreen, RemembersTheMousePointer)
{
    TextScreen screen;
    EXPECT_EQ(screen.MousePointer(), kMousePointerDefault);
    screen.MousePointer(kMousePointerHourglass);
    EXPECT_EQ(screen.MousePointer(), kMousePointerHourglass);
}

} // namespace
} // namespace kel
