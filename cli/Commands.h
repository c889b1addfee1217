// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace kel {

inline constexpr int kDoneStatus = 0;
inline constexpr int kFailedStatus = 1;
inline constexpr int kUsageStatus = 2;

/// The commands of the program, while the arguments are read: each adds itself with its options, and the one that was
/// called runs afterwards.
class Commands {
public:
    /// Does the work once all arguments are read, and returns the exit status.
    using Run = std::function<int()>;

    explicit Commands(CLI::App& app) : app_(app) { addLanguage(app); }

    /// Adds a command; the caller adds its options to the result.
    CLI::App& add(const std::string& name, const std::string& description, Run run)
    {
        return add(app_, name, description, std::move(run));
    }

    /// Adds a command below another: `ports set`.
    CLI::App& add(CLI::App& parent, const std::string& name, const std::string& description, Run run);

    /// The program itself, with all its commands.
    [[nodiscard]] CLI::App& program() const { return app_; }

    /// The language that the arguments ask for; empty if none.
    [[nodiscard]] const std::string& language() const { return language_; }

    /// Runs the command that the arguments have called.
    [[nodiscard]] int runChosen() const { return chosen_(); }

private:
    /// Every command accepts it.
    void addLanguage(CLI::App& command);

    CLI::App& app_;
    Run chosen_;
    std::string language_;
};

/// The forms in which lists come: adds `--format`, one of the names in `formats`, the first of which is the usual one.
void addFormat(CLI::App& command, std::string& format, const std::vector<std::string>& formats);

} // namespace kel
