// SPDX-License-Identifier: MIT
// Many simulated readers in one process, and the component alone that reads with them: what a station is measured by.
//
//     kel_many_readers feed FOLDER READERS BURST_MS     makes the lines FOLDER/0, FOLDER/1 ...; "ready", until its end
//     kel_many_readers read FOLDER READERS SHEETS       reads, a thread a reader; the page times in milliseconds

#include "benchmarks/many_readers/Bursts.h"
#include "host/Reader.h"
#include "simulators/SimulatorTable.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace kel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr kelReaderType kModel = kelReaderTypeScantronScanMark2500;
constexpr Int16 kRows = 63;
constexpr Int16 kColumns = 48;

/// A reader with sheets for three minutes.
struct Line {
    Line(const std::string& folder, int number, Moment burst)
        : simulator(makeSimulator(kModel, optionsOf(number))), bursts(*simulator, burst),
          host(bursts, {.link = folder + "/" + std::to_string(number), .paceHost = true})
    {
        host.start();
    }

    static SimulatorOptions optionsOf(int number)
    {
        SimulatorOptions options;
        options.model = kModel;
        options.seeded = {.seed = static_cast<std::uint64_t>(number) + 1, .count = 200, .copies = true};
        options.form.side1Rows = {kRows};
        options.form.side1Cols = {kColumns};
        options.wireShows = false;
        options.settings["line"] = "38400,N,8,2";
        return options;
    }

    std::unique_ptr<Simulator> simulator;
    Bursts bursts;
    PtyDeviceHost host;
};

int feed(const std::string& folder, int readers, int milliseconds)
{
    std::vector<std::unique_ptr<Line>> lines;
    for (int number = 0; number < readers; ++number)
        lines.push_back(std::make_unique<Line>(folder, number, std::chrono::milliseconds(milliseconds)));
    std::cout << "ready" << std::endl;
    for (char end = 0; ::read(STDIN_FILENO, &end, 1) > 0;) {
    }
    return 0;
}

/// Notes when the first and the last sheet were there.
class Times final : public host::Events {
public:
    void sheet(const host::Sheet& sheet) override
    {
        last = Clock::now();
        if (sheet.number == 1)
            first = last;
        sheets = sheet.number;
    }

    [[nodiscard]] double pageMilliseconds() const
    {
        return std::chrono::duration<double, std::milli>(last - first).count() / (sheets - 1);
    }

    Clock::time_point first;
    Clock::time_point last;
    Int32 sheets = 0;
};

int read(const std::string& folder, int readers, int sheets)
{
    std::vector<Times> times(static_cast<std::size_t>(readers));
    std::vector<std::thread> threads;
    for (int number = 0; number < readers; ++number)
        threads.emplace_back([&, number] {
            host::Reader reader({.model = kModel,
                                 .form = {.side1Rows = std::vector{kRows}, .side1Cols = std::vector{kColumns}},
                                 .assignments = {"BaudRate=38400", "SleepTime=10"},
                                 .device = folder + "/" + std::to_string(number),
                                 .maxSheets = sheets});
            reader.read(times[static_cast<std::size_t>(number)], {}, host::StopAsked::AtEachSheet);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const Times& each : times) {
        if (each.sheets != sheets) {
            std::cerr << "a reader ended after " << each.sheets << " sheets\n";
            return 1;
        }
        std::cout << each.pageMilliseconds() << "\n";
    }
    return 0;
}

int run(const std::vector<std::string>& words)
{
    if (words.size() == 5 && words[1] == "feed")
        return feed(words[2], std::stoi(words[3]), std::stoi(words[4]));
    if (words.size() == 5 && words[1] == "read")
        return read(words[2], std::stoi(words[3]), std::stoi(words[4]));
    std::cerr << "kel_many_readers feed FOLDER READERS BURST_MS | read FOLDER READERS SHEETS\n";
    return 2;
}

} // namespace
} // namespace kel

int main(int count, char** words)
{
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max; // each reader has two descriptors
    ::setrlimit(RLIMIT_NOFILE, &files);
    return kel::run({words, words + count});
}
