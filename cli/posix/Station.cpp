// SPDX-License-Identifier: MIT
#include "station/Station.h"
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "cli/UsageError.h"
#include "formats/JsonValue.h"
#include "host/ReaderAdvice.h"
#include "host/TextOutput.h"
#include "station/ServiceNotice.h"
#include "station/StateSocket.h"
#include "station/StateText.h"
#include "station/StationServers.h"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <poll.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <thread>

namespace kel {

namespace {

constexpr const char* kUsualFile = "/etc/kelreader/station.json";

struct StationArguments {
    std::string file = kUsualFile;
    bool check = false;
    bool state = false;
    std::string format;
};

std::string adviceText(const host::Failure& failure)
{
    const host::AdviceRow* const advice = host::adviceOn(failure);
    return advice ? advice->remedy : failure.remedy;
}

/// Whether a file has no mistakes; mistakes are reported.
bool isSound(const StationFile& file, const std::string& name)
{
    for (const std::string& fault : file.faults) {
        std::string sentence = name;
        notice(sentence.append(": ").append(fault));
    }
    return file.faults.empty();
}

int check(const StationArguments& arguments)
{
    const StationFile file = readStationFile(arguments.file);
    if (!isSound(file, arguments.file))
        return kUsageStatus;
    host::TextOutput().writeOrFail(arguments.file + ": station " + file.plan.station + ", " +
                                   std::to_string(file.plan.readers.size()) +
                                   (file.plan.readers.size() == 1 ? " reader" : " readers") + ", nothing is wrong.\n");
    return kDoneStatus;
}

int showState(const StationArguments& arguments)
{
    const StationFile file = readStationFile(arguments.file);
    if (file.plan.socket.empty()) {
        isSound(file, arguments.file);
        return kUsageStatus;
    }
    std::string answer = askStation(file.plan.socket);
    const auto text = [&] {
        if (arguments.format == "json")
            return answer;
        const Json state = parseJson(answer);
        return arguments.format == "metrics" ? stateMetrics(state) : stateTable(state);
    };
    host::TextOutput().writeOrFail(text());
    return kDoneStatus;
}

/// The signals that steer a station, as something to wait for. They are blocked in all threads that are made while it
/// lives.
class Signals {
public:
    Signals()
    {
        sigset_t wanted;
        sigemptyset(&wanted);
        for (const int number : {SIGTERM, SIGINT, SIGHUP})
            sigaddset(&wanted, number);
        ::pthread_sigmask(SIG_BLOCK, &wanted, &before_);
        handle_ = FileDescriptor(::signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK));
    }
    ~Signals() { letGo(); }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// From now on they do what they usually do.
    void letGo() const { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

    [[nodiscard]] int handle() const { return handle_.number(); }

    /// The next one that has come, or 0.
    [[nodiscard]] int next() const
    {
        signalfd_siginfo signal{};
        return ::read(handle_.number(), &signal, sizeof signal) == sizeof signal ? static_cast<int>(signal.ssi_signo)
                                                                                 : 0;
    }

private:
    sigset_t before_{};
    FileDescriptor handle_;
};

void readAgain(Station& station, const std::string& name)
{
    tellServiceManager("RELOADING=1");
    StationFile file = readStationFile(name);
    if (isSound(file, name))
        station.change(std::move(file.plan));
    else
        notice("The station goes on unchanged; correct " + name + " and send SIGHUP again.");
    tellServiceManager("READY=1");
}

/// Reads the station's file again, in a thread of its own: a reader may be slow to end, and the station has to answer
/// meanwhile. What is asked for during a reload is one more reload after it.
class Reloads {
public:
    Reloads(Station& station, const std::string& name)
        : thread_([this, &station, &name](const std::stop_token& end) {
              while (isAsked(end))
                  readAgain(station, name);
          })
    {
    }

    void ask()
    {
        const std::lock_guard lock(mutex_);
        asked_ = true;
        changed_.notify_one();
    }

private:
    /// Waits; false at the end.
    [[nodiscard]] bool isAsked(const std::stop_token& end)
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, end, [this] { return asked_; });
        return std::exchange(asked_, false) && !end.stop_requested();
    }

    std::mutex mutex_;
    std::condition_variable_any changed_;
    bool asked_ = false;
    std::jthread thread_; // the last: it uses the others
};

/// Serves whoever asks, until a signal ends the station.
void lookAfter(const StationServers& servers, const StateSocket& socket, const Signals& signals, Reloads& reloads)
{
    const std::optional<std::chrono::milliseconds> watchdog = watchdogPeriod();
    for (;;) {
        pollfd handles[] = {{signals.handle(), POLLIN, 0}, {socket.handle(), POLLIN, 0}};
        retrying(
            [&] { return ::poll(handles, std::size(handles), watchdog ? static_cast<int>(watchdog->count()) : -1); });
        // A station whose state cannot be had is stuck, and does not say that it lives.
        const std::string state = jsonText(jsonState(servers.state())) + "\n";
        feedWatchdog();
        if (handles[1].revents != 0)
            socket.answer(state);
        while (const int signal = signals.next()) {
            if (signal != SIGHUP)
                return;
            reloads.ask();
        }
    }
}

/// Each reader has two or three descriptors, and a process has 1,024 unless it asks for more.
void allowManyReaders()
{
    rlimit files{};
    if (::getrlimit(RLIMIT_NOFILE, &files) != 0)
        return;
    files.rlim_cur = files.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &files);
}

int runStation(const StationArguments& arguments)
{
    allowManyReaders();
    const Signals signals;
    StationFile file = readStationFile(arguments.file);
    if (!isSound(file, arguments.file))
        return kUsageStatus;
    {
        StationPorts ports = takePorts(file.plan);
        Station station(file.plan, &notice, &adviceText);
        const StateSocket socket(file.plan.socket);
        station.begin();
        const StationServers servers(std::move(ports), file.plan, station, &notice);
        Reloads reloads(station, arguments.file);
        tellServiceManager("READY=1");
        lookAfter(servers, socket, signals, reloads);
        tellServiceManager("STOPPING=1");
        signals.letGo(); // a second one does not wait for the sheets that come out
    }
    return kDoneStatus;
}

int run(const StationArguments& arguments)
{
    if (arguments.check)
        return check(arguments);
    return arguments.state ? showState(arguments) : runStation(arguments);
}

} // namespace

void addStationCommand(Commands& commands)
{
    const auto arguments = std::make_shared<StationArguments>();
    CLI::App& command = commands.add("station", "Reads with many readers at once and saves the sheets in a store",
                                     [arguments] { return run(*arguments); });
    command.add_option("file", arguments->file, "Station file (JSON): its store and its readers")
        ->type_name("FILE")
        ->capture_default_str();
    CLI::Option* check =
        command.add_flag("--check", arguments->check, "Lists every mistake in the file, and reads nothing");
    CLI::Option* state = command.add_flag("--state", arguments->state, "Shows the state of the running station");
    state->excludes(check);
    arguments->format = "table";
    command.add_option("--format", arguments->format, "Format of the state")
        ->check(CLI::IsMember({"table", "json", "metrics"}))
        ->capture_default_str()
        ->needs(state);
    command.footer(
        "Ctrl-C and SIGTERM end every session in order: the sheet in a reader comes out and is stored. SIGHUP "
        "reads the file again and touches only the readers that have changed.\n"
        "Exit status: 0 ended, or nothing is wrong, 1 the store or the socket cannot be used, or no station is at "
        "work, 2 something is wrong with the file.");
}

} // namespace kel
