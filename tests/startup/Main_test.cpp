// SPDX-License-Identifier: MIT
#include "startup/Main.h"

#include "platform/posix/PosixPlatform.h"

#include "reader/clsKELReader.h"
#include "startup/CrashCapture.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace kel {
namespace {

TEST(Main, GivesEachThreadAPlatformOfThisSystem)
{
    Main();
    Main();
    Platform* here = &platform();
    EXPECT_NE(dynamic_cast<PosixPlatform*>(here), nullptr);
    EXPECT_EQ(&platform(), here);
    Platform* there = nullptr;
    std::thread([&] { there = &platform(); }).join();
    EXPECT_NE(there, nullptr);
    EXPECT_NE(there, here);
}

#if !defined(__clang__) // whose code the capture cannot work on
/// Makes the first object of a process, and ends the process: with 1 if that has put a handler of the component's in.
[[noreturn]] void endAfterFirstObject(bool captures)
{
    struct sigaction before {};
    sigaction(SIGTRAP, nullptr, &before);
    captureFaults(captures);
    const clsKELReader reader;
    struct sigaction after {};
    sigaction(SIGTRAP, nullptr, &after);
    std::_Exit(before.sa_sigaction == after.sa_sigaction ? 0 : 1);
}

TEST(CrashCaptureTest, IsInstalledUnlessTheHostSaysNo)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process of its own, in which nothing has been made yet
    EXPECT_EXIT(endAfterFirstObject(true), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(endAfterFirstObject(false), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
} // namespace kel
