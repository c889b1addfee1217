// What a reader on a real line costs: time of a page against its time on the wire, the way from the last byte to the
// event, processor time while nothing comes, system calls a byte. The line is a pseudo-terminal, its far end a thread.

#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "platform/posix/Pty.h"
#include "reader/clsKELReader.h"
#include "startup/Main.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace kel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::duration;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr int kRows = 60;
constexpr int kPageBytes = 2 * kRows + 2;

std::string page()
{
    return "\n" + std::string(2 * kRows, '\x41') + "\r";
}

/// The far end of a VMR138's line as far as these figures need it.
class Reader {
public:
    /// A page comes in pieces of so many bytes, each after its time on the wire; without a wait for 0 microseconds.
    Reader(int piece, microseconds byteTime) : piece_(piece), byteTime_(byteTime), thread_([this] { run(); }) {}
    ~Reader()
    {
        stop_ = true;
        thread_.join();
    }

    [[nodiscard]] const std::string& device() const { return pty_.name(); }
    [[nodiscard]] Clock::time_point lastByte() const { return lastByte_.load(); }
    [[nodiscard]] duration<double> wireTime() const { return wireTime_.load(); }

private:
    void run()
    {
        while (!stop_) {
            pollfd master{pty_.handle(), POLLIN, 0};
            if (::poll(&master, 1, 20) < 1)
                continue;
            for (const char byte : pty_.read())
                answer(byte);
        }
    }

    void answer(char byte)
    {
        if (byte == 'Q')
            put(std::string("X\0\0", 3));
        else if (byte == '+')
            put("F0");
        else if (byte == '8')
            sendPage();
    }

    void sendPage()
    {
        const std::string bytes = page();
        const Clock::time_point begin = Clock::now();
        for (std::size_t at = 0; at < bytes.size(); at += static_cast<std::size_t>(piece_)) {
            const std::string piece = bytes.substr(at, static_cast<std::size_t>(piece_));
            std::this_thread::sleep_until(begin + (static_cast<int>(at + piece.size())) * byteTime_);
            lastByte_ = Clock::now();
            put(piece);
        }
        wireTime_ = duration<double>(Clock::now() - begin);
    }

    void put(const std::string& bytes)
    {
        if (pty_.write(bytes) != bytes.size())
            stop_ = true;
    }

    Pty pty_;
    int piece_;
    microseconds byteTime_;
    std::atomic<bool> stop_{false};
    std::atomic<Clock::time_point> lastByte_{};
    std::atomic<duration<double>> wireTime_{};
    std::thread thread_;
};

/// A host that notes when a sheet was there.
class Host final : public ReaderEvents {
public:
    void ReadSheet(MarkArray&, MarkArray&, TextArray&, Boolean&) override { heard = Clock::now(); }
    Clock::time_point heard;
};

/// A reader object that is started on a line.
struct Session {
    explicit Session(const std::string& device) : line(1, device)
    {
        reader.LoadDefaults(kelReaderTypePDIVMR138);
        reader.Port(1);
        reader.SleepTime(0);
        reader.Advise(host);
        reader.StartReader();
    }
    ~Session() { reader.EndReader(); }

    PortOverride line;
    clsKELReader reader;
    std::shared_ptr<Host> host = std::make_shared<Host>();
};

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// The driver takes the number of rows from what has come after five times SleepTime: with none, the rows that come
/// later overrun. So these pages are read as the bytes come, by the loop that every driver has.
double readPageLoop(clsKELReader& reader, int bytes)
{
    const double before = cpuSeconds();
    for (int taken = 0; taken < bytes;) {
        platform().pump().DoEvents();
        if (reader.fComm()->mscComm().InBufferCount() == 0)
            continue;
        benchmark::DoNotOptimize(reader.fComm()->mscComm().Input());
        ++taken;
    }
    return cpuSeconds() - before;
}

void Line_PageTimeOverWireTime(benchmark::State& state)
{
    Main();
    Reader device(1, microseconds(260)); // 38,400 baud
    Session session(device.device());
    double ratio = 0;
    double cpu = 0;
    std::vector<double> late;
    for (auto _ : state) {
        session.reader.fComm()->mscComm().Output("8");
        const Clock::time_point begin = Clock::now();
        cpu += readPageLoop(session.reader, kPageBytes);
        const Clock::time_point end = Clock::now();
        ratio += duration<double>(end - begin).count() / (kPageBytes * 260e-6);
        late.push_back(duration<double, std::milli>(end - device.lastByte()).count());
    }
    std::sort(late.begin(), late.end());
    const auto pages = static_cast<double>(state.iterations());
    state.counters["page/wire"] = ratio / pages;
    state.counters["cpu_ms/page"] = 1e3 * cpu / pages;
    state.counters["last_byte_ms_p99"] = late[late.size() * 99 / 100];
}
BENCHMARK(Line_PageTimeOverWireTime)->Iterations(100)->Unit(benchmark::kMillisecond);

void Line_IdleProcessorShare(benchmark::State& state)
{
    Main();
    Reader device(1, microseconds(0));
    Session session(device.device());
    double share = 0;
    for (auto _ : state) {
        const double before = cpuSeconds();
        const Clock::time_point end = Clock::now() + std::chrono::seconds(3);
        while (Clock::now() < end) {
            platform().pump().DoEvents();
            benchmark::DoNotOptimize(session.reader.fComm()->mscComm().InBufferCount());
        }
        share = 100 * (cpuSeconds() - before) / 3;
    }
    state.counters["percent_of_a_core"] = share;
}
BENCHMARK(Line_IdleProcessorShare)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Counts the system calls that a child makes between two marks (calls of getppid).
int countSystemCalls(void (*session)())
{
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        session();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD);
    int calls = 0;
    bool counting = false;
    bool entering = true;
    while (true) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        if (waitpid(child, &status, 0) < 0 || WIFEXITED(status))
            return calls;
        if (!WIFSTOPPED(status) || WSTOPSIG(status) != (SIGTRAP | 0x80))
            continue;
        if (entering) {
            constexpr long kOriginalRax = 8 * 15;
            if (ptrace(PTRACE_PEEKUSER, child, kOriginalRax, nullptr) == 110) // getppid
                counting = !counting;
            else if (counting)
                ++calls;
        }
        entering = !entering;
    }
}

constexpr int kBursts = 40;

void readBursts()
{
    Main();
    Pty pty;
    PortOverride line(1, pty.name());
    clsKELReader reader;
    reader.BaudRate(kelReaderBaudRate38400);
    SerialControl& control = reader.fComm()->mscComm();
    control.CommPort(1);
    control.Settings("38400,N,8,1");
    control.PortOpen(True);
    control.InputLen(1);
    std::atomic<bool> begun{false};
    std::thread device([&] {
        while (!begun)
            std::this_thread::yield();
        for (int i = 0; i < kBursts; ++i) {
            std::this_thread::sleep_for(milliseconds(4));
            if (pty.write("123456789012345") != 15)
                return;
        }
    });
    getppid();
    begun = true;
    readPageLoop(reader, 15 * kBursts);
    getppid();
    device.join();
}

void Line_SystemCallsAByte(benchmark::State& state)
{
    double calls = 0;
    for (auto _ : state)
        calls = countSystemCalls(readBursts);
    // Two of them are the clocks that the measurement itself reads.
    state.counters["calls/byte"] = (calls - 2) / (15 * kBursts);
}
BENCHMARK(Line_SystemCallsAByte)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kel
