// SPDX-License-Identifier: MIT
#include "cli/Progress.h"

#include "types/Text.h"

#include <iostream>
#include <unistd.h>

namespace kel {

std::string progressText(Int32 sheets, std::chrono::duration<double> time)
{
    std::string text = CStr(sheets) + (sheets == 1 ? " sheet" : " sheets");
    if (time.count() > 0)
        text += ", " + CStr(CLng(sheets * 60.0 / time.count())) + " a minute";
    return text;
}

Progress::Progress() : shown_(::isatty(STDERR_FILENO) == 1), begin_(std::chrono::steady_clock::now()) {}

Progress::~Progress()
{
    clear();
}

void Progress::sheet()
{
    ++sheets_;
    if (!shown_)
        return;
    clear();
    std::cerr << progressText(sheets_, std::chrono::steady_clock::now() - begin_) << std::flush;
    onScreen_ = true;
}

void Progress::clear()
{
    if (onScreen_)
        std::cerr << "\r\x1B[K" << std::flush;
    onScreen_ = false;
}

} // namespace kel
