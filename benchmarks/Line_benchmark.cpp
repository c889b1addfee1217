// SPDX-License-Identifier: MIT
// What a reader on a real line costs: time of a page against its time on the wire, the way from the last byte to the
// event, processor time while nothing comes, system calls a byte. The line is a pseudo-terminal, its far end a thread.

#include "benchmarks/PacedReader.h"
#include "benchmarks/ProcessCosts.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "reader/clsKELReader.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "startup/Main.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace kel {
namespace {

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
    constexpr int kSeconds = 10;
    double share = 0;
    double turns = 0;
    for (auto _ : state) {
        ScanTimer& timer = session.reader.fComm()->tmrScan();
        timer.Interval(1000 * kSeconds);
        const double before = cpuSeconds();
        timer.Enabled(True);
        while (timer.Enabled()) {
            platform().pump().DoEvents();
            benchmark::DoNotOptimize(session.reader.fComm()->mscComm().InBufferCount());
            ++turns;
        }
        share = 100 * (cpuSeconds() - before) / kSeconds;
    }
    state.counters["percent_of_a_core"] = share;
    state.counters["wakeups_per_second"] = turns / kSeconds;
}
BENCHMARK(Line_IdleProcessorShare)->Iterations(1)->Unit(benchmark::kMillisecond);

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
            std::this_thread::sleep_for(std::chrono::milliseconds(4));
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
