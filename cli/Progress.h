// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <chrono>
#include <string>

namespace kel {

/// The line at the bottom of a terminal that shows the progress of a scan: "12 sheets, 43 a minute". It goes to
/// standard error, and only where that is a terminal.
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One more sheet.
    void sheet();

    /// Removes the line, before other output; the next sheet shows it again.
    void clear();

private:
    bool shown_;
    bool onScreen_ = false;
    Int32 sheets_ = 0;
    std::chrono::steady_clock::time_point begin_;
};

/// The text of the line.
[[nodiscard]] std::string progressText(Int32 sheets, std::chrono::duration<double> time);

} // namespace kel
