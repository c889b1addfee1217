// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <windows.h>

namespace kel {

/// A question of the component's own, with two answers in its own words. The second one is what Enter and Escape say.
struct Question {
    std::wstring title;
    std::wstring text;
    std::wstring yes;
    std::wstring no;
};

/// Asks it in a box of the system's. True for the first answer.
[[nodiscard]] bool ask(HWND owner, const Question& question);

} // namespace kel
