// SPDX-License-Identifier: MIT
#include "cli/Progress.h"

#include "cli/Console.h"
#include "types/Text.h"

#include <iostream>

namespace kel {

std::string progressText(Int32 sheets, std::chrono::duration<double> time)
{
    std::string text = CStr(sheets) + (sheets == 1 ? " sheet" : " sheets");
    if (time.count() > 0)
        text += ", " + CStr(CLng(sheets * 60.0 / time.count())) + " a minute";
    return text;
}

Progress::Progress() : shown_(errorsAreSeen()), begin_(std::chrono::steady_clock::now()) {}

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
        clearErrorLine();
    onScreen_ = false;
}

} // namespace kel
