// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/CheckRun.h"

#include <string>

namespace kel {

/// The person at a terminal: asked on standard error, answering on standard input. A line that shows the progress
/// appears only if standard error is a terminal, and disappears when something else is written.
class TerminalOperator final : public Operator {
public:
    TerminalOperator();
    ~TerminalOperator() override { clear(); }
    TerminalOperator(const TerminalOperator&) = delete;
    TerminalOperator& operator=(const TerminalOperator&) = delete;

    /// UsageError if nobody is there to answer.
    [[nodiscard]] bool doThis(const std::string& what) override;
    [[nodiscard]] bool confirms(const std::string& question) override;
    void tell(const std::string& what) override;

    /// Removes the line.
    void clear();

private:
    [[nodiscard]] std::string readLine();

    bool shown_;
    bool onScreen_ = false;
    std::string typed_;
};

} // namespace kel
