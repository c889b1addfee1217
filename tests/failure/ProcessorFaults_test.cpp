// SPDX-License-Identifier: MIT
// Faults of the processor within the component: they become reports.

#include "tests/failure/FaultTest.h"

#include <csignal>
#include <fcntl.h>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>

namespace kel::test {
namespace {

TEST_F(ProcessorFault, ReadingANullAddressIsAnAccessViolation)
{
    bool wentOn = false;
    EXPECT_EQ(reportOf([&] {
                  readNullAddress();
                  wentOn = true;
              }),
              "10005 Access Violation");
    EXPECT_FALSE(wentOn);
}

TEST_F(ProcessorFault, EachKindHasItsNumberAndText)
{
    EXPECT_EQ(reportOf([] { writeNullAddress(); }), "10005 Access Violation");
    EXPECT_EQ(reportOf([] { divideByZero(); }), "10132 Integer Divide By Zero");
    EXPECT_EQ(reportOf([] { illegalInstruction(); }), "10013 Illegal Instruction");
#if defined(__x86_64__)
    EXPECT_EQ(reportOf([] { breakpoint(); }), "10003 Breakpoint");
    EXPECT_EQ(reportOf([] { callNullFunction(); }), "10005 Access Violation");
#endif
}

TEST_F(ProcessorFault, AFileThatIsTooShortIsAnInPageError)
{
    const int file = ::memfd_create("empty", 0);
    ASSERT_GE(file, 0);
    void* const page = ::mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0);
    ASSERT_NE(page, MAP_FAILED);
    EXPECT_EQ(reportOf([&] { static_cast<void>(*static_cast<volatile char*>(page)); }), "10006 In Page Error");
    ::munmap(page, 4096);
    ::close(file);
}

TEST_F(ProcessorFault, IsReportedByTheProcedureOfAModuleInWhichItHappens)
{
    procedureOfAnObject([&] {
        guarded("KELReader81 - bas.inner", [] { readNullAddress(); });
        EXPECT_TRUE(componentRuns());
        EXPECT_EQ(witness->reports.size(), 1U);
    });
    EXPECT_EQ(witness->reports.size(), 1U);
    EXPECT_TRUE(witness->reports[0].ErrorSource.starts_with("bas.inner"));
}

TEST_F(ProcessorFault, MayHappenInTheSystemsOwnFunctions)
{
    volatile std::size_t length = 0;
    EXPECT_EQ(reportOf([&] { length = lengthOfNothing(); }), "10005 Access Violation");
}

TEST_F(ProcessorFault, ReleasesWhatTheProcedureHeld)
{
    struct Held {
        explicit Held(int& count) : count_(++count) {}
        ~Held() { --count_; }
        int& count_;
    };
    int held = 0;
    reportOf([&] {
        const Held outer(held);
        const std::string text(100, 'x');
        const Held inner(held);
        EXPECT_EQ(held, 2);
        readNullAddress();
    });
    EXPECT_EQ(held, 0);
}

TEST_F(ProcessorFault, MayHappenAgainAndAgain)
{
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(reportOf([] { readNullAddress(); }), "10005 Access Violation");
        ASSERT_EQ(reportOf([] { divideByZero(); }), "10132 Integer Divide By Zero");
    }
}

TEST_F(ProcessorFault, ComesBackFromALibraryWithoutTablesOfItsFrames)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(reportOf([] { faultWithoutTables(); }), "10005 Access Violation");
}

TEST_F(ProcessorFault, ComesBackFromAFunctionThatThrowsNothing)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(reportOf([] { faultThatThrowsNothing(); }), "10005 Access Violation");
}

TEST_F(ProcessorFault, ComesBackNoFurtherThanItsOwnProcedure)
{
    bool wentOn = false;
    EXPECT_EQ(reportOf([&] {
                  EXPECT_FALSE(ignoringFailures([] { faultWithoutTables(); }));
                  EXPECT_TRUE(componentRuns());
                  wentOn = true;
                  divideByZero();
              }),
              "10132 Integer Divide By Zero");
    EXPECT_TRUE(wentOn);
}

TEST_F(ProcessorFault, LeavesNoSignalBlocked)
{
    sigset_t before;
    sigset_t after;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
    reportOf([] { readNullAddress(); });
    ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int signalNumber : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGINT})
        EXPECT_EQ(::sigismember(&before, signalNumber), ::sigismember(&after, signalNumber)) << signalNumber;
}

TEST_F(ProcessorFault, IsCaughtAgainBehindOneThatWasIgnored)
{
    EXPECT_EQ(reportOf([] {
                  EXPECT_FALSE(ignoringFailures([] { readNullAddress(); }));
                  divideByZero();
              }),
              "10132 Integer Divide By Zero");
}

TEST_F(ProcessorFault, IsCaughtOnAnAlternateStackToo)
{
    std::vector<char> memory(1 << 16);
    stack_t old{};
    stack_t stack{};
    stack.ss_sp = memory.data();
    stack.ss_size = memory.size();
    ASSERT_EQ(::sigaltstack(&stack, &old), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(reportOf([] { readNullAddress(); }), "10005 Access Violation");
    ::sigaltstack(&old, nullptr);
}

TEST_F(ProcessorFault, OfOneThreadLeavesTheOthersAlone)
{
    constexpr int kTimes = 200;
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    std::atomic<int> good{0};
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&, faulty = i == 0] {
            SimulatedPlatform own;
            const PlatformScope ownScope(own);
            for (int n = 0; n < kTimes; ++n) {
                if (faulty)
                    failures += ignoringFailures([] { readNullAddress(); }) ? 0 : 1;
                else
                    good += ignoringFailures([] {}) ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, kTimes);
    EXPECT_EQ(good, kTimes);
    EXPECT_TRUE(witness->reports.empty());
}

TEST_F(ProcessorFault, InADriverIsReportedAndTheHostGoesOnWithAnotherReader)
{
    FaultyMachine faultyMachine;
    const PlatformScope faultyScope(faultyMachine);
    {
        Session failing(faultyMachine.machine);
        faultyMachine.faulty = true;
        EXPECT_EQ(failing.reader.StartReader(), False);
        EXPECT_EQ(failing.reader.CancelScan(), True);
        ASSERT_EQ(witness->reports.size(), 1U);
        EXPECT_EQ(witness->reports[0].ErrorNumber, 10005);
        EXPECT_EQ(witness->reports[0].ErrorDescription, "Access Violation");
        EXPECT_TRUE(witness->reports[0].ErrorSource.starts_with("basPeripheralDynamics.InitReaderPD"));
        faultyMachine.faulty = false;
        failing.reader.EndReader();
    }
    witness->reports.clear();
    Session working(faultyMachine.machine);
    EXPECT_EQ(working.reader.StartReader(), True);
    EXPECT_EQ(working.reader.ReadPage(False), True);
    working.reader.EndReader();
    EXPECT_EQ(working.host->sheets.size(), 1U);
    EXPECT_TRUE(witness->reports.empty());
}

TEST_F(ProcessorFault, OfOneReaderDoesNotReachAReaderOnAnotherThread)
{
    std::atomic<int> pages{0};
    std::atomic<int> refused{0};
    constexpr int kRounds = 20;
    std::thread good([&] {
        for (int i = 0; i < kRounds; ++i) {
            SimulatedPlatform own;
            const PlatformScope ownScope(own);
            Session session(own);
            session.reader.StartReader();
            pages += session.reader.ReadPage(False) ? 1 : 0;
            session.reader.EndReader();
        }
    });
    std::thread bad([&] {
        for (int i = 0; i < kRounds; ++i) {
            FaultyMachine own;
            const PlatformScope ownScope(own);
            Session session(own.machine);
            own.faulty = true;
            refused += session.reader.StartReader() ? 0 : 1;
        }
    });
    good.join();
    bad.join();
    EXPECT_EQ(pages, kRounds);
    EXPECT_EQ(refused, kRounds);
    EXPECT_EQ(witness->reports.size(), static_cast<std::size_t>(kRounds));
}

} // namespace
} // namespace kel::test
