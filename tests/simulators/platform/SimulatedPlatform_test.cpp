// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedPlatform.h"

#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(SimulatedPlatform, TheScreenRemembersAndAnswersAsScripted)
{
    SimulatedPlatform machine;
    SimulatedScreen& screen = machine.screen();
    screen.answer(BoxAnswer::Retry);
    EXPECT_EQ(screen.MsgBox("text", BoxIcon::Exclamation, BoxButtons::AbortRetryIgnore, "title"), BoxAnswer::Retry);
    EXPECT_EQ(screen.MsgBox("again", BoxIcon::None, BoxButtons::AbortRetryIgnore, ""), BoxAnswer::Abort);
    EXPECT_EQ(screen.MsgBox("ok", BoxIcon::Information, BoxButtons::Ok, ""), BoxAnswer::Ok);
    ASSERT_EQ(screen.boxes().size(), 3U);
    EXPECT_EQ(screen.boxes()[0], (ShownBox{"text", BoxIcon::Exclamation, BoxButtons::AbortRetryIgnore, "title"}));
    screen.Beep();
    screen.Beep();
    EXPECT_EQ(screen.beeps(), 2);
    EXPECT_EQ(screen.MousePointer(), kMousePointerDefault);
    screen.MousePointer(kMousePointerHourglass);
    screen.MousePointer(kMousePointerDefault);
    EXPECT_EQ(screen.pointers(), (std::vector<Int32>{kMousePointerHourglass, kMousePointerDefault}));
}

TEST(SimulatedPlatform, TheProcessIsAsTold)
{
    SimulatedPlatform machine;
    EXPECT_TRUE(std::filesystem::is_directory(machine.process().ComponentFolder()));
    machine.process().commandLine("host.exe /L=German");
    machine.process().componentFolder("/somewhere");
    machine.process().componentName("KELReader81U.so");
    EXPECT_EQ(machine.process().CommandLine(), "host.exe /L=German");
    EXPECT_EQ(machine.process().ComponentFile(), std::filesystem::path("/somewhere/KELReader81U.so"));
}

TEST(SimulatedPlatform, TheLanguageFileLiesInTheComponentFolder)
{
    SimulatedPlatform machine;
    EXPECT_TRUE(std::filesystem::exists(machine.process().ComponentFolder() / "LKELReader81.txt"));
}

TEST(SimulatedPlatform, TheLibraryOfTheUsbReadersIsMissingUntilItIsSet)
{
    SimulatedPlatform machine;
    try {
        static_cast<void>(machine.omrApiLoader().omrApi());
        FAIL();
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.number(), 53);
        EXPECT_EQ(failure.text(), "File not found: OMRAPI.DLL");
    }
}

} // namespace
} // namespace kel
