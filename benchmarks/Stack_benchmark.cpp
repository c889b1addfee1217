// The component's own cost: a session on a line in memory, a text, the command.

#include "platform/simulated/SimulatedPlatform.h"
#include "reader/clsKELReader.h"
#include "simulators/SimulatorTable.h"
#include "strings/VBLMRTSModule.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>
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
        benchmark::DoNotOptimize(VBLM_RTString(TextNumber(154)));
}
BENCHMARK(Stack_TextLookUp);

void Command_Models(benchmark::State& state)
{
    double megabytes = 0;
    for (auto _ : state) {
        const pid_t child = fork();
        if (child == 0) {
            std::string program(4096, '\0');
            const ssize_t length = readlink("/proc/self/exe", program.data(), program.size());
            program.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
            program = program.substr(0, program.rfind('/')) + "/kelreader";
            if (!freopen("/dev/null", "w", stdout))
                _exit(1);
            execl(program.c_str(), program.c_str(), "models", static_cast<char*>(nullptr));
            _exit(1);
        }
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        if (status != 0)
            state.SkipWithError("kelreader models failed");
        megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
    }
    state.counters["MB"] = megabytes;
}
BENCHMARK(Command_Models)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace kel
