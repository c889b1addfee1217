// SPDX-License-Identifier: MIT
#include "platform/TextScreen.h"

#include "types/Text.h"

#include <iostream>
#include <unistd.h>

namespace kel {

BoxAnswer TextScreen::MsgBox(const std::string& text, BoxIcon, BoxButtons buttons, const std::string& title)
{
    const std::string front = title.empty() ? "" : title + ": ";
    std::string lines;
    for (const std::string& line : split(replaceAll(text, kLineEnd, "\n"), '\n')) {
        if (!line.empty())
            lines += front + line + "\n";
    }
    // In one piece, lest other threads' lines come in between.
    std::cerr << lines << std::flush;
    return buttons == BoxButtons::AbortRetryIgnore ? BoxAnswer::Abort : BoxAnswer::Ok;
}

void TextScreen::Beep()
{
    if (::isatty(STDERR_FILENO))
        std::cerr << '\a' << std::flush;
}

} // namespace kel
