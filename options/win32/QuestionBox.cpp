// SPDX-License-Identifier: MIT
#include "options/win32/QuestionBox.h"

namespace kel {

namespace {

thread_local const Question* asked = nullptr;
thread_local HHOOK hook = nullptr;

/// The first window that becomes active is the box: its buttons get their words before it is seen.
LRESULT CALLBACK nameButtons(int code, WPARAM window, LPARAM about)
{
    if (code == HCBT_ACTIVATE && asked) {
        const HWND box = reinterpret_cast<HWND>(window);
        ::SetDlgItemTextW(box, IDOK, asked->yes.c_str());
        ::SetDlgItemTextW(box, IDCANCEL, asked->no.c_str());
        asked = nullptr;
    }
    return ::CallNextHookEx(hook, code, window, about);
}

} // namespace

bool ask(HWND owner, const Question& question)
{
    asked = &question;
    hook = ::SetWindowsHookExW(WH_CBT, &nameButtons, nullptr, ::GetCurrentThreadId());
    const int answer = ::MessageBoxW(owner, question.text.c_str(), question.title.c_str(),
                                     MB_OKCANCEL | MB_ICONQUESTION | MB_DEFBUTTON2);
    if (hook)
        ::UnhookWindowsHookEx(hook);
    hook = nullptr;
    asked = nullptr;
    return answer == IDOK;
}

} // namespace kel
