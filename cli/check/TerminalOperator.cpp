// SPDX-License-Identifier: MIT
#include "cli/check/TerminalOperator.h"

#include "cli/Console.h"
#include "cli/Interrupt.h"
#include "cli/UsageError.h"

#include <iostream>

namespace kel {

namespace {

// How often a wait for the keyboard looks whether the check was stopped.
constexpr std::chrono::milliseconds kKeyLook{100};

} // namespace

TerminalOperator::TerminalOperator() : shown_(errorsAreSeen()) {}

void TerminalOperator::tell(const std::string& what)
{
    if (!shown_)
        return;
    clear();
    std::cerr << what << " ..." << std::flush;
    onScreen_ = true;
}

void TerminalOperator::clear()
{
    if (onScreen_)
        clearErrorLine();
    onScreen_ = false;
}

/// A line from the keyboard. CheckStopped when the check is stopped meanwhile.
std::string TerminalOperator::readLine()
{
    for (;;) {
        if (InterruptNote::came())
            throw CheckStopped();
        if (const std::size_t end = typed_.find('\n'); end != std::string::npos) {
            std::string line = typed_.substr(0, end);
            typed_.erase(0, end + 1);
            return line;
        }
        const std::optional<std::string> typed = typedText(kKeyLook);
        if (typed && typed->empty())
            throw host::UsageError(
                "There is nobody to answer: standard input has ended. Put the sheets in the feeder and use "
                "--yes instead of --interactive.");
        typed_ += typed.value_or("");
    }
}

bool TerminalOperator::doThis(const std::string& what)
{
    clear();
    std::cerr << what << " Then press Enter." << std::endl;
    static_cast<void>(readLine());
    return true;
}

bool TerminalOperator::confirms(const std::string& question)
{
    for (;;) {
        clear();
        std::cerr << question << " [y/n] " << std::flush;
        const std::string answer = readLine();
        if (answer.starts_with('y') || answer.starts_with('Y'))
            return true;
        if (answer.starts_with('n') || answer.starts_with('N'))
            return false;
    }
}

} // namespace kel
