// SPDX-License-Identifier: MIT
#include "tests/cli/CommandRun.h"

#include "cli/Commands.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace kel::test {

namespace {

// A run that gives no sign of life for so long is stuck.
constexpr int kPatienceMilliseconds = std::chrono::milliseconds(kPatience).count();

std::filesystem::path newName(const std::string& kind)
{
    static int count = 0;
    return std::filesystem::temp_directory_path() /
           ("kelreader-test-" + std::to_string(::getpid()) + "-" + kind + std::to_string(++count));
}

/// One settings store for all runs of this test program's process: a test that writes to it clears up.
const std::string& storeFolder()
{
    struct Folder {
        std::filesystem::path path = newName("store");
        std::string text = path.string();
        ~Folder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };
    static const Folder folder;
    return folder.text;
}

std::vector<std::string> environmentOfRun()
{
    const std::string store = "KELREADER_REGISTRY_DIR=";
    std::vector<std::string> variables = {store + storeFolder()};
    for (char** variable = environ; *variable; ++variable)
        if (!std::string_view(*variable).starts_with(store))
            variables.emplace_back(*variable);
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Reads what is there; false at the end.
bool readSome(int& handle, std::string& text)
{
    std::array<char, 65536> bytes{};
    const ssize_t count = ::read(handle, bytes.data(), bytes.size());
    if (count > 0) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
        return true;
    }
    ::close(handle);
    handle = -1;
    return false;
}

} // namespace

std::vector<std::string> CommandOutcome::lines() const
{
    std::vector<std::string> result;
    std::size_t start = 0;
    while (start < output.size()) {
        const std::size_t end = std::min(output.find('\n', start), output.size());
        result.push_back(output.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

RunningCommand::RunningCommand(const std::vector<std::string>& arguments, const std::string& program)
{
    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = environmentOfRun();

    int output[2] = {};
    int errors[2] = {};
    if (::pipe2(output, O_CLOEXEC) != 0 || ::pipe2(errors, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
    // Whoever runs the tests may ignore a hang-up (nohup); the command is not to.
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t usual;
    ::sigemptyset(&usual);
    for (const int number : {SIGHUP, SIGINT, SIGTERM, SIGQUIT})
        ::sigaddset(&usual, number);
    ::posix_spawnattr_setsigdefault(&attributes, &usual);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    const int failure = ::posix_spawn(&process_, program.c_str(), &actions, &attributes, pointersTo(words).data(),
                                      pointersTo(variables).data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    ::close(errors[1]);
    output_ = output[0];
    errors_ = errors[0];
    if (failure != 0)
        throw std::runtime_error("cannot run " + program);
}

RunningCommand::~RunningCommand()
{
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    for (const int handle : {output_, errors_}) {
        if (handle >= 0)
            ::close(handle);
    }
}

/// Waits for more of either stream; false when both have ended.
bool RunningCommand::fetch()
{
    if (output_ < 0 && errors_ < 0)
        return false;
    pollfd handles[] = {{output_, POLLIN, 0}, {errors_, POLLIN, 0}};
    if (::poll(handles, std::size(handles), kPatienceMilliseconds) <= 0)
        throw std::runtime_error("the command is stuck; it has written so far:\n" + outcome_.output + outcome_.errors);
    if (handles[0].revents != 0)
        readSome(output_, outcome_.output);
    if (handles[1].revents != 0)
        readSome(errors_, outcome_.errors);
    return true;
}

std::string RunningCommand::readLine()
{
    for (;;) {
        const std::size_t end = outcome_.output.find('\n');
        if (end != std::string::npos) {
            std::string line = outcome_.output.substr(0, end);
            outcome_.output.erase(0, end + 1);
            return line;
        }
        if (!fetch())
            return {};
    }
}

bool RunningCommand::waitForError(const std::string& text)
{
    while (outcome_.errors.find(text) == std::string::npos) {
        if (!fetch())
            return false;
    }
    return true;
}

void RunningCommand::signal(int number) const
{
    ::kill(process_, number);
    const std::string status = "/proc/" + std::to_string(process_) + "/status";
    const auto isTaken = [&] {
        std::ifstream file(status);
        for (std::string line; std::getline(file, line);) {
            // A set of signals, the first one its last bit.
            if (line.starts_with("ShdPnd:"))
                return (std::stoull(line.substr(7), nullptr, 16) >> (number - 1) & 1) == 0;
        }
        return true; // it has ended
    };
    if (!waitUntil(isTaken))
        throw std::runtime_error("the command takes no signals");
}

CommandOutcome RunningCommand::finish()
{
    while (fetch()) {
    }
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    outcome_.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome_;
}

std::string withoutStatements(std::string text)
{
    for (const std::string_view before : {"\"line\":", "line ", "Line "}) {
        for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at)) {
            at += before.size();
            const std::size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
            if (end > at)
                text.replace(at, end - at, "N");
        }
    }
    return text;
}

CommandOutcome runCommand(const std::vector<std::string>& arguments)
{
    return RunningCommand(arguments).finish();
}

CommandOutcome runWithin(void (*addCommand)(Commands& commands), const std::vector<std::string>& arguments)
{
    CLI::App app;
    Commands commands(app);
    addCommand(commands);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    CommandOutcome outcome{.status = commands.runChosen(), .output = {}, .errors = {}};
    outcome.output = testing::internal::GetCapturedStdout();
    outcome.errors = testing::internal::GetCapturedStderr();
    return outcome;
}

std::vector<std::string> simulatedScan(const std::vector<std::string>& more, const std::string& model)
{
    std::vector<std::string> words = {"scan",      "--simulate", "--rate", "unlimited",
                                      "--setting", "feed-ms=0",  "--set",  "Timeout=600"};
    if (!model.empty())
        words.insert(words.end(), {"--model", model});
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

TextFile::TextFile(const std::string& text) : path_(newName("file"))
{
    std::ofstream(path_, std::ios::binary) << text;
}

TextFile::~TextFile()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TextFile::text() const
{
    return fileText(path_);
}

} // namespace kel::test
