// Faults of the processor: within the component they become reports, anywhere else they are the host's.

#include "failure/guarded.h"
#include "failure/modvbCodeShieldSupport.h"
#include "platform/posix/PosixFaultCapture.h"
#include "reader/AnswerKeyObject.h"
#include "simulators/SimulatorTable.h"
#include "tests/failure/Faults.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace kel::test {
namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

constexpr const char* kSource = "KELReader81 - m.p";

#if defined(__clang__)
constexpr bool kFaultsAreCaptured = false;
#else
constexpr bool kFaultsAreCaptured = true;
#endif

/// An object of the component's, whose procedures a host calls.
struct Object {
    std::string dumpMembers() const { return {}; }
};

template <class Body>
void procedureOfAnObject(Body&& body)
{
    const Object object;
    guarded(kSource, moduleOf(object), std::forward<Body>(body));
}

void installCapture()
{
    PosixFaultCapture::instance().install(&vbcsExceptionFilter);
}

/// Faults in procedures: what is reported of them, with the host's error object as the witness.
class ProcessorFault : public testing::Test {
protected:
    ProcessorFault()
    {
        setErrorObject(witness);
        installCapture();
    }
    ~ProcessorFault() override { setErrorObject(nullptr); }

    void SetUp() override
    {
        if (!kFaultsAreCaptured)
            GTEST_SKIP() << "this compiler's code cannot be left at any statement";
    }

    /// Number and text of the one report that a body brings about.
    template <class Body>
    std::string reportOf(Body&& body)
    {
        witness->reports.clear();
        procedureOfAnObject(body);
        EXPECT_EQ(componentRuns(), false);
        if (witness->reports.size() != 1)
            return std::to_string(witness->reports.size()) + " reports";
        const ErrorReport& report = witness->reports[0];
        EXPECT_EQ(report.ErrorSource, "m.p");
        EXPECT_EQ(report.LineNumber, 0);
        EXPECT_EQ(report.ErrorType, kErrorTypeRunTime);
        return std::to_string(report.ErrorNumber) + " " + report.ErrorDescription;
    }

    SimulatedPlatform machine;
    PlatformScope scope{machine};
    std::shared_ptr<RecordingHost> witness = std::make_shared<RecordingHost>();
};

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
    EXPECT_EQ(witness->reports[0].ErrorSource, "bas.inner");
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

/// A machine whose serial controls meet a fault at each output while they are told to.
class FaultyMachine final : public Platform {
public:
    class Control final : public SerialControl {
    public:
        Control(std::unique_ptr<SerialControl> line, const bool& faulty) : line_(std::move(line)), faulty_(faulty) {}
        Int16 CommPort() const override { return line_->CommPort(); }
        void CommPort(Int16 value) override { line_->CommPort(value); }
        std::string Settings() const override { return line_->Settings(); }
        void Settings(const std::string& value) override { line_->Settings(value); }
        Int32 Handshaking() const override { return line_->Handshaking(); }
        void Handshaking(Int32 value) override { line_->Handshaking(value); }
        Boolean PortOpen() const override { return line_->PortOpen(); }
        void PortOpen(Boolean value) override { line_->PortOpen(value); }
        Int32 InputLen() const override { return line_->InputLen(); }
        void InputLen(Int32 value) override { line_->InputLen(value); }
        Int32 InBufferCount() override { return line_->InBufferCount(); }
        std::string Input() override { return line_->Input(); }
        void Output(std::string_view bytes) override
        {
            if (faulty_)
                writeNullAddress();
            line_->Output(bytes);
        }

    private:
        std::unique_ptr<SerialControl> line_;
        const bool& faulty_;
    };

    std::unique_ptr<SerialControl> newSerialControl() override
    {
        return std::make_unique<Control>(machine.newSerialControl(), faulty);
    }
    std::unique_ptr<ScanTimer> newScanTimer() override { return machine.newScanTimer(); }
    MessagePump& pump() override { return machine.pump(); }
    Registry& registry() override { return machine.registry(); }
    Screen& screen() override { return machine.screen(); }
    Process& process() override { return machine.process(); }
    OmrApiLoader& omrApiLoader() override { return machine.omrApiLoader(); }

    SimulatedPlatform machine;
    bool faulty = false;
};

/// A reader object on a machine, with a reader of Peripheral Dynamics at port 1.
struct Session {
    explicit Session(SimulatedPlatform& machine, int sheets = 1)
    {
        SimulatorOptions options;
        for (int i = 0; i < sheets; ++i)
            options.sheets.put(
                {.side1 = MarkRows(10, std::vector<Int16>(12, 1)), .side2 = {}, .barcodes = {}, .fields = {}});
        device = makeSimulator(kelReaderTypePDIVMR138, options);
        machine.attach(1, *device);
        reader.Advise(host);
        reader.LoadDefaults(kelReaderTypePDIVMR138);
        reader.Port(1);
    }

    std::unique_ptr<Simulator> device;
    clsKELReader reader;
    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
};

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
        EXPECT_EQ(witness->reports[0].ErrorSource, "basPeripheralDynamics.InitReaderPD");
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

// --- Faults of the host, each in a process of its own

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
