// SPDX-License-Identifier: MIT
// Settings from the store, and a search over ports.

#include "platform/PortMap.h"
#include "reader/clsKELReader.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "startup/Main.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

namespace kel {
namespace {

/// A store of its own, for as long as the object lives.
class OwnStore {
public:
    OwnStore()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kel-benchmark-XXXXXX").string();
        if (!mkdtemp(name.data()))
            std::abort();
        folder_ = name;
        setenv("KELREADER_REGISTRY_DIR", name.c_str(), 1);
    }
    ~OwnStore()
    {
        unsetenv("KELREADER_REGISTRY_DIR");
        std::filesystem::remove_all(folder_);
    }
    OwnStore(const OwnStore&) = delete;
    OwnStore& operator=(const OwnStore&) = delete;

private:
    std::filesystem::path folder_;
};

void Settings_Load(benchmark::State& state)
{
    const OwnStore store;
    Main();
    clsKELReader reader;
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.SaveSettings(kelReaderRegistryKeyCurrentUser, "Software\\Benchmark");
    for (auto _ : state)
        reader.LoadSettings(kelReaderRegistryKeyCurrentUser, "Software\\Benchmark");
}
BENCHMARK(Settings_Load)->Unit(benchmark::kMillisecond);

/// Sixteen ports, one of which is there, with a device on it that does not answer.
void Search_SixteenPorts(benchmark::State& state)
{
    const OwnStore store;
    Main();
    const Pty silent;
    const PortOverride only(7, silent.name());
    clsKELReader reader;
    reader.LoadDefaults(kelReaderTypeNCSEZData);
    reader.SleepTime(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.Locate(1));
    }
}
BENCHMARK(Search_SixteenPorts)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace kel
