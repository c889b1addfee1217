// SPDX-License-Identifier: MIT
// A session that waits is stopped from elsewhere. The waits have no other end that a test would live to see.

#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "reader/clsKELReader.h"
#include "tests/platform/posix/PosixTest.h"
#include "tests/support/KeptReports.h"

#include <atomic>
#include <csignal>
#include <thread>

namespace kel {
namespace {

class StopRequestTest : public test::PosixTest {
protected:
    StopRequestTest() : scope(machine), port(1, pty.name())
    {
        // It waits for a reply to its first command, as long as the time-out allows.
        reader.LoadDefaults(kelReaderTypeAppersonAdvantageLink);
        reader.Port(1);
        reader.Timeout(600);
        reader.SetError(std::make_shared<test::KeptReports>());
    }
    ~StopRequestTest() override { reader.SetError(nullptr); }

    /// The host has sent its first command, and is waiting or about to.
    void awaitCommand()
    {
        while (pty.read().empty())
            std::this_thread::yield();
    }

    Pty pty;
    PlatformScope scope;
    PortOverride port;
    clsKELReader reader;
};

TEST_F(StopRequestTest, AnotherThreadEndsAWait)
{
    std::thread other([&] {
        awaitCommand();
        reader.CancelScan(True);
    });
    EXPECT_EQ(reader.StartReader(), False);
    other.join();
    EXPECT_EQ(reader.CancelScan(), True);
}

clsKELReader* readerOfHandler = nullptr;

TEST_F(StopRequestTest, ASignalHandlerEndsAWait)
{
    readerOfHandler = &reader;
    struct sigaction stopping {};
    struct sigaction before {};
    stopping.sa_handler = [](int) { readerOfHandler->CancelScan(True); };
    ::sigaction(SIGUSR2, &stopping, &before);
    const pthread_t host = ::pthread_self();
    std::thread other([&] {
        awaitCommand();
        ::pthread_kill(host, SIGUSR2);
    });
    EXPECT_EQ(reader.StartReader(), False);
    other.join();
    ::sigaction(SIGUSR2, &before, nullptr);
}

TEST_F(StopRequestTest, AReaderMayMoveToAnotherThread)
{
    std::thread host([&] {
        PosixPlatform own(RegistryFolders(folder.path() / "other"));
        const PlatformScope there(own);
        const PortOverride samePort(1, pty.name());
        clsKELReader moved;
        std::atomic<clsKELReader*> made = &moved;
        moved.LoadDefaults(kelReaderTypeAppersonAdvantageLink);
        moved.Port(1);
        moved.Timeout(600);
        std::thread stopper([&] {
            awaitCommand();
            made.load()->CancelScan(True);
        });
        EXPECT_EQ(moved.StartReader(), False);
        stopper.join();
    });
    host.join();
}

} // namespace
} // namespace kel
