// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/BuiltFiles.h"

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kel {
class Commands;
}

namespace kel::test {

/// What a registry file begins with.
inline constexpr const char* kRegistryHeading = "Windows Registry Editor Version 5.00\r\n\r\n";

/// How a run of the command came out.
struct CommandOutcome {
    int status = 0; ///< the exit status; 128 and the signal's number if a signal has ended it
    std::string output;
    std::string errors;

    /// The lines of the output.
    [[nodiscard]] std::vector<std::string> lines() const;
};

/// The built command, or another program, as a process of its own, with a settings store of its own that is empty at
/// first.
class RunningCommand {
public:
    explicit RunningCommand(const std::vector<std::string>& arguments, const std::string& program = readerProgram());
    /// Ends it the hard way if it still runs.
    ~RunningCommand();
    RunningCommand(const RunningCommand&) = delete;
    RunningCommand& operator=(const RunningCommand&) = delete;

    /// Waits until a line is there and takes it, without its end; empty when none comes any more.
    std::string readLine();

    /// Waits for a text on standard error; false when it never comes.
    bool waitForError(const std::string& text);

    [[nodiscard]] pid_t process() const noexcept { return process_; }

    /// Sends a signal, and waits until the command has taken it.
    void signal(int number) const;

    /// Waits for its end. `output` holds what was not read by lines.
    CommandOutcome finish();

private:
    bool fetch();

    pid_t process_ = -1;
    int output_ = -1;
    int errors_ = -1;
    CommandOutcome outcome_;
};

/// A text with N for the numbers of statements, which a change of the source moves: `"line":N`, "line N".
std::string withoutStatements(std::string text);

/// Runs the command to its end.
CommandOutcome runCommand(const std::vector<std::string>& arguments);

/// Runs one command to its end within this process, on its platform: under a virtual clock a pause of the dialogue
/// takes no time, and nothing is late.
CommandOutcome runWithin(void (*addCommand)(Commands& commands), const std::vector<std::string>& arguments);

/// The words of a scan of a simulated reader that loses no time, with more words at the end. The model is an ALS
/// AccelScan unless another one is given; with an empty one the words do not name it. Its driver waits for each reply
/// and for each sheet however late they come, as they do on a busy machine: a test about another model asks first what
/// fixed pauses that one's dialogue has.
std::vector<std::string> simulatedScan(const std::vector<std::string>& more, const std::string& model = "22");

/// A file with a text, for as long as the object lives.
class TextFile {
public:
    explicit TextFile(const std::string& text);
    ~TextFile();
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    [[nodiscard]] std::string path() const { return path_.string(); }
    [[nodiscard]] std::string text() const;

private:
    std::filesystem::path path_;
};

} // namespace kel::test
