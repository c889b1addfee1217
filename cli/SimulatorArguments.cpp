// SPDX-License-Identifier: MIT
#include "cli/SimulatorArguments.h"

#include "types/Path.h"

#include <algorithm>

namespace kel {

namespace {

// So many sheets of random marks are more than anybody feeds.
constexpr std::uint64_t kMostSheets = 1'000'000;

} // namespace

void SimulatorArguments::addTo(CLI::App& command)
{
    CLI::Option* sheets = command.add_option("--sheets", sheetsFile_, "File with the sheets in the feeder")
                              ->type_name("FILE")
                              ->group("Simulated reader");
    CLI::Option* seed = command.add_option("--seed", simulation_.seed, "Seed for random sheets")
                            ->capture_default_str()
                            ->type_name("N")
                            ->group("Simulated reader")
                            ->excludes(sheets);
    CLI::Option* count = command.add_option("--count", simulation_.count, "Number of random sheets")
                             ->capture_default_str()
                             ->check(CLI::Range(std::uint64_t{0}, kMostSheets))
                             ->type_name("N")
                             ->group("Simulated reader")
                             ->excludes(sheets);
    CLI::Option* fault = command
                             .add_option("--fault", simulation_.faults,
                                         "Simulates a fault: jam@sheet=3, late=2500@sheet=1, drop@byte=120, "
                                         "unplug@byte=64 ..., or one that 'kelreader simulate --list-faults' lists")
                             ->type_name("FAULT")
                             ->allow_extra_args(false)
                             ->group("Simulated reader");
    CLI::Option* rate = command.add_option("--rate", rate_, "Transmission speed: that of the line, or unlimited")
                            ->check(CLI::IsMember({"wire", "unlimited"}))
                            ->default_str("wire")
                            ->group("Simulated reader");
    CLI::Option* setting = command.add_option("--setting", simulation_.settings, "Model-specific option: NAME=VALUE")
                               ->type_name("NAME=VALUE")
                               ->allow_extra_args(false)
                               ->group("Simulated reader");
    options_ = {sheets, seed, count, fault, rate, setting};
}

bool SimulatorArguments::given() const
{
    return std::any_of(options_.begin(), options_.end(), [](const CLI::Option* option) { return option->count() > 0; });
}

host::Simulation SimulatorArguments::simulation() const
{
    host::Simulation simulation = simulation_;
    simulation.sheets = pathOf(sheetsFile_);
    simulation.unlimited = rate_ == "unlimited";
    return simulation;
}

} // namespace kel
