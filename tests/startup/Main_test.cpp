#include "startup/Main.h"

#include "platform/posix/PosixPlatform.h"

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

} // namespace
} // namespace kel
