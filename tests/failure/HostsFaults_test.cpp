// SPDX-License-Identifier: MIT
// Faults of the processor in the host's own code: they are the host's, and each is looked at in a process of its own.

#include "contract/AnswerKeyObject.h"
#include "tests/failure/FaultTest.h"

#include <csignal>
#include <thread>
#include <unistd.h>

namespace kel::test {
namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

constexpr int kHostGotIt = 42;

extern "C" void hostHandler(int, siginfo_t* info, void* context)
{
    ::_exit(info->si_addr == nullptr && context != nullptr ? kHostGotIt : 1);
}

/// A host that had a handler before the component came.
void hostWithHandler()
{
    struct sigaction action {};
    action.sa_sigaction = &hostHandler;
    action.sa_flags = SA_SIGINFO;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGSEGV, &action, nullptr);
    installCapture();
}

void hostWithDefault(int signalNumber)
{
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    ::sigaction(signalNumber, &action, nullptr);
    installCapture();
}

class HostsFault : public ProcessorFault {
protected:
    HostsFault() { GTEST_FLAG_SET(death_test_style, "fast"); }
};

TEST_F(HostsFault, OutsideTheComponentReachesItsHandler)
{
    EXPECT_EXIT(
        {
            hostWithHandler();
            readNullAddress();
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, OutsideAnObjectsProcedureReachesItsHandler)
{
    EXPECT_EXIT(
        {
            hostWithHandler();
            guarded(kSource, [] { readNullAddress(); });
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, BehindACallOfTheComponentReachesItsHandler)
{
    EXPECT_EXIT(
        {
            hostWithHandler();
            procedureOfAnObject([] { divideByZero(); });
            procedureOfAnObject([] { readNullAddress(); });
            if (witness->reports.size() != 2)
                ::_exit(2);
            readNullAddress();
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithinAnEventReachesItsHandler)
{
    EXPECT_EXIT(
        {
            hostWithHandler();
            Session session(machine);
            session.host->onBeforeSheet = [](Boolean&) { readNullAddress(); };
            session.reader.ReadPage(False);
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithinTheErrorObjectReachesItsHandler)
{
    class FaultyObject : public ErrorObject {
        Int32 RaiseError(const ErrorReport&) override { return readNullAddress(); }
    };
    EXPECT_EXIT(
        {
            hostWithHandler();
            setErrorObject(std::make_shared<FaultyObject>());
            procedureOfAnObject([] { throw RuntimeFailure(FailureCode::Overflow); });
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithinItsPumpReachesItsHandler)
{
    EXPECT_EXIT(
        {
            hostWithHandler();
            machine.pump().hostPump([] { readNullAddress(); });
            procedureOfAnObject([] { DoEvents(); });
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithinItsCarrierReachesItsHandler)
{
    class FaultyCarrier : public Carrier {
    public:
        SerialControl& mscComm() override
        {
            readNullAddress();
            return *control;
        }
        ScanTimer& tmrScan() override { return *timer; }
        std::unique_ptr<SerialControl> control = platform().newSerialControl();
        std::unique_ptr<ScanTimer> timer = platform().newScanTimer();
    };
    EXPECT_EXIT(
        {
            hostWithHandler();
            Session session(machine);
            session.reader.fComm(makeReference<FaultyCarrier>());
            session.reader.StartReader();
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithinItsSerialControlReachesItsHandler)
{
    class CarrierOfFaults : public Carrier {
    public:
        SerialControl& mscComm() override { return control; }
        ScanTimer& tmrScan() override { return *timer; }
        bool faulty = true;
        FaultyMachine::Control control{platform().newSerialControl(), faulty};
        std::unique_ptr<ScanTimer> timer = platform().newScanTimer();
    };
    EXPECT_EXIT(
        {
            hostWithHandler();
            Session session(machine);
            session.reader.fComm(makeReference<CarrierOfFaults>());
            session.reader.StartReader();
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithinItsAnswerKeyReachesItsHandler)
{
    class FaultyKey : public AnswerKeyObject {
    public:
        std::string FormIDs() const override { return std::to_string(readNullAddress()); }
        Int32 NumberOfPages() const override { return readNullAddress(); }
        Int32 QuestionsCount() const override { return readNullAddress(); }
        Reference<AnswerKeyQuestion> Questions(Int32) const override { return nullptr; }
    };
    EXPECT_EXIT(
        {
            hostWithHandler();
            const auto device = makeSimulator(kelReaderTypeAppersonBenchMark3000, {});
            machine.attach(1, *device);
            clsKELReader reader;
            reader.LoadDefaults(kelReaderTypeAppersonBenchMark3000);
            reader.Port(1);
            reader.AnswerKey(makeReference<FaultyKey>());
            reader.StartReader();
            reader.ReadPage(False);
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, WithoutAHandlerEndsTheProcessAsEver)
{
    const auto die = [](int signalNumber, auto fault) {
        hostWithDefault(signalNumber);
        fault();
    };
    EXPECT_EXIT(die(SIGSEGV, [] { readNullAddress(); }), KilledBySignal(SIGSEGV), "");
    EXPECT_EXIT(die(SIGFPE, [] { divideByZero(); }), KilledBySignal(SIGFPE), "");
    EXPECT_EXIT(die(SIGILL, [] { illegalInstruction(); }), KilledBySignal(SIGILL), "");
#if defined(__x86_64__)
    EXPECT_EXIT(die(SIGTRAP, [] { breakpoint(); }), KilledBySignal(SIGTRAP), "");
#endif
}

TEST_F(HostsFault, ASignalThatSomebodySendsIsNoFault)
{
    EXPECT_EXIT(
        {
            hostWithDefault(SIGSEGV);
            procedureOfAnObject([] { ::raise(SIGSEGV); });
        },
        KilledBySignal(SIGSEGV), "");
    EXPECT_EXIT(
        {
            ::signal(SIGFPE, SIG_IGN);
            installCapture();
            procedureOfAnObject([] { ::raise(SIGFPE); });
            ::_exit(witness->reports.empty() ? kHostGotIt : 1);
        },
        ExitedWithCode(kHostGotIt), "");
}

TEST_F(HostsFault, CannotBeIgnored)
{
    EXPECT_EXIT(
        {
            ::signal(SIGSEGV, SIG_IGN);
            installCapture();
            readNullAddress();
        },
        KilledBySignal(SIGSEGV), "");
}

extern "C" void handlerOfTheOldKind(int signalNumber)
{
    sigset_t blocked;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    // As the system calls it: the signal itself and its mask are blocked, nothing else is.
    const bool asTheSystem = ::sigismember(&blocked, signalNumber) == 1 && ::sigismember(&blocked, SIGUSR1) == 1 &&
                             ::sigismember(&blocked, SIGUSR2) == 0;
    if (signalNumber != SIGSEGV || !asTheSystem)
        ::_exit(1);
    static volatile sig_atomic_t calls = 0;
    calls = calls + 1;
    if (calls == 2)
        ::_exit(3);
    static const char told[] = "told once\n";
    static_cast<void>(!::write(STDERR_FILENO, told, sizeof told - 1));
}

TEST_F(HostsFault, ReachesAHandlerThatIsToBeCalledOnce)
{
    EXPECT_EXIT(
        {
            struct sigaction action {};
            action.sa_handler = &handlerOfTheOldKind;
            action.sa_flags = static_cast<int>(SA_RESETHAND);
            ::sigemptyset(&action.sa_mask);
            ::sigaddset(&action.sa_mask, SIGUSR1);
            ::sigaction(SIGSEGV, &action, nullptr);
            installCapture();
            readNullAddress();
        },
        KilledBySignal(SIGSEGV), "told once");
}

TEST_F(HostsFault, OnAnOverflownStackReachesAHandlerOnItsOwnStack)
{
    EXPECT_EXIT(
        {
            std::thread([] {
                static std::vector<char> memory(1 << 16);
                stack_t stack{};
                stack.ss_sp = memory.data();
                stack.ss_size = memory.size();
                ::sigaltstack(&stack, nullptr);
                struct sigaction action {};
                action.sa_handler = [](int) { ::_exit(kHostGotIt); };
                action.sa_flags = SA_ONSTACK;
                ::sigaction(SIGSEGV, &action, nullptr);
                installCapture();
                struct Deeper {
                    static int go(int depth)
                    {
                        volatile char here[4096];
                        here[0] = '\0';
                        return depth == 0 ? 0 : go(depth - 1) + here[0];
                    }
                };
                Deeper::go(1 << 20);
            }).join();
        },
        ExitedWithCode(kHostGotIt), "");
}

} // namespace
} // namespace kel::test
