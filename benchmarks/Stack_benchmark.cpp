// SPDX-License-Identifier: MIT
// The component's own cost: a session on a line in memory, a text, the command.

#include "benchmarks/ProcessCosts.h"
#include "reader/clsKELReader.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "strings/VBLMRTSModule.h"

#include <benchmark/benchmark.h>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

namespace kel {
namespace {

/// Whole sheets of 15,000 bytes through reader object, dispatch, driver and line.
void Stack_BytesOnALineInMemory(benchmark::State& state)
{
    SimulatedPlatform machine;
    machine.hostPace(HostPace::Instant);
    const PlatformScope scope(machine);
    constexpr int kRows = 149;
    constexpr int kSheets = 400;
    SimulatorOptions options;
    options.rate = Rate::Unlimited;
    for (int i = 0; i < kSheets; ++i)
        options.sheets.put(
            {.side1 = MarkRows(kRows, std::vector<Int16>(48, 3)), .side2 = {}, .barcodes = {}, .fields = {}});
    options.settings["compress"] = "false";
    std::int64_t bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const auto device = makeSimulator(kelReaderTypeNCSOpScan5, options);
        machine.attach(1, *device);
        clsKELReader reader;
        reader.LoadDefaults(kelReaderTypeNCSOpScan5);
        reader.Port(1);
        reader.SleepTime(1);
        reader.StartReader();
        state.ResumeTiming();
        for (int i = 0; i < kSheets && reader.ReadPage(False); ++i)
            bytes += kRows * 49 + 2;
        state.PauseTiming();
        reader.EndReader();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(bytes);
    state.counters["ns/byte"] =
        benchmark::Counter(static_cast<double>(bytes) / 1e9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(Stack_BytesOnALineInMemory)->Unit(benchmark::kMillisecond);

void Stack_TextLookUp(benchmark::State& state)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    for (auto _ : state)
        benchmark::DoNotOptimize(VBLM_RTString(text::kOkButton));
}
BENCHMARK(Stack_TextLookUp);

/// Starts `kelreader models`, which lies beside this program.
pid_t startModels(bool traced)
{
    const pid_t child = fork();
    if (child == 0) {
        std::string program(4096, '\0');
        const ssize_t length = readlink("/proc/self/exe", program.data(), program.size());
        program.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        program = program.substr(0, program.rfind('/')) + "/kelreader";
        if (!freopen("/dev/null", "w", stdout))
            _exit(1);
        if (traced)
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        execl(program.c_str(), program.c_str(), "models", static_cast<char*>(nullptr));
        _exit(1);
    }
    return child;
}

void Command_Models(benchmark::State& state)
{
    for (auto _ : state) {
        int status = 0;
        waitpid(startModels(false), &status, 0);
        if (status != 0)
            state.SkipWithError("kelreader models failed");
    }
    state.counters["MB"] = peakMegabytesAtEnd(startModels(true));
}
BENCHMARK(Command_Models)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace kel
