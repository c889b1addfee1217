// SPDX-License-Identifier: MIT
// What a host would otherwise write by hand, on the same line: blocking reads of one byte through termios, and a loop
// that asks without a pause how much has come.

#include "benchmarks/PacedReader.h"
#include "benchmarks/ProcessCosts.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace kel {
namespace {

/// A line opened for blocking reads.
class RawLine {
public:
    explicit RawLine(const std::string& device) : handle_(::open(device.c_str(), O_RDWR | O_NOCTTY))
    {
        termios settings{};
        tcgetattr(handle_, &settings);
        cfmakeraw(&settings);
        tcsetattr(handle_, TCSANOW, &settings);
    }
    ~RawLine() { ::close(handle_); }
    RawLine(const RawLine&) = delete;
    RawLine& operator=(const RawLine&) = delete;

    void put(char byte) const
    {
        if (::write(handle_, &byte, 1) != 1)
            std::abort();
    }
    [[nodiscard]] char take() const
    {
        char byte = 0;
        if (::read(handle_, &byte, 1) != 1)
            std::abort();
        return byte;
    }
    [[nodiscard]] int waiting() const
    {
        int count = 0;
        ::ioctl(handle_, FIONREAD, &count);
        return count;
    }

private:
    int handle_;
};

void Alternative_BlockingReads(benchmark::State& state)
{
    Reader device(1, microseconds(260)); // 38,400 baud
    const RawLine line(device.device());
    double ratio = 0;
    double cpu = 0;
    std::vector<double> late;
    for (auto _ : state) {
        line.put('8');
        const Clock::time_point begin = Clock::now();
        const double before = cpuSeconds();
        for (int taken = 0; taken < kPageBytes; ++taken)
            benchmark::DoNotOptimize(line.take());
        cpu += cpuSeconds() - before;
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
BENCHMARK(Alternative_BlockingReads)->Iterations(100)->Unit(benchmark::kMillisecond);

void Alternative_BusyLoop(benchmark::State& state)
{
    Reader device(1, microseconds(0));
    const RawLine line(device.device());
    double share = 0;
    for (auto _ : state) {
        const double before = cpuSeconds();
        const Clock::time_point end = Clock::now() + std::chrono::seconds(1);
        while (Clock::now() < end)
            benchmark::DoNotOptimize(line.waiting());
        share = 100 * (cpuSeconds() - before);
    }
    state.counters["percent_of_a_core"] = share;
}
BENCHMARK(Alternative_BusyLoop)->Iterations(1)->Unit(benchmark::kMillisecond);

constexpr int kBytes = 600;

void readSingly()
{
    Pty pty;
    const RawLine line(pty.name());
    if (pty.write(std::string(kBytes, 'x')) != kBytes)
        std::abort();
    getppid();
    for (int taken = 0; taken < kBytes; ++taken)
        benchmark::DoNotOptimize(line.take());
    getppid();
}

void Alternative_SystemCallsAByte(benchmark::State& state)
{
    double calls = 0;
    for (auto _ : state)
        calls = countSystemCalls(readSingly);
    state.counters["calls/byte"] = calls / kBytes;
}
BENCHMARK(Alternative_SystemCallsAByte)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kel
