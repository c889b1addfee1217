// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <chrono>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

/// The dialog as another program sees it: windows with numbers, worked by messages. It runs on a thread of its own
/// while the dialog runs on the test's.
class OtherProgram {
public:
    /// The dialog, as soon as it is visible. The mouse is out of the way: a list selects the row beneath it.
    OtherProgram()
    {
        ::SetCursorPos(0, 0);
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        while (std::chrono::steady_clock::now() < end) {
            ::EnumWindows(&look, reinterpret_cast<LPARAM>(this));
            if (dialog)
                return;
            ::Sleep(10);
        }
    }

    static BOOL CALLBACK look(HWND window, LPARAM self)
    {
        DWORD process = 0;
        ::GetWindowThreadProcessId(window, &process);
        wchar_t kind[32] = {};
        ::GetClassNameW(window, kind, 32);
        if (process == ::GetCurrentProcessId() && ::IsWindowVisible(window) && std::wstring_view(kind) == L"#32770")
            reinterpret_cast<OtherProgram*>(self)->dialog = window;
        return TRUE;
    }

    [[nodiscard]] HWND control(int number) const { return ::GetDlgItem(dialog, number); }

    void click(int number) const { ::SendMessageW(control(number), BM_CLICK, 0, 0); }

    void select(int number, const wchar_t* text) const
    {
        const HWND list = control(number);
        const LRESULT row =
            ::SendMessageW(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text));
        ASSERT_GE(row, 0);
        ::SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
        ::SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(number, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    }

    void enter(int number) const
    {
        ::SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(number)), TRUE);
        settle();
    }

    void type(int number, const wchar_t* text) const
    {
        for (; *text != L'\0'; ++text)
            ::SendMessageW(control(number), WM_CHAR, *text, 0);
    }

    void press(int number, WPARAM key) const
    {
        ::PostMessageW(control(number), WM_KEYDOWN, key, 0);
        settle();
    }

    /// The control of the dialog that has the focus; nothing while another window has it.
    [[nodiscard]] HWND focus() const
    {
        GUITHREADINFO state{};
        state.cbSize = sizeof state;
        ::GetGUIThreadInfo(::GetWindowThreadProcessId(dialog, nullptr), &state);
        return state.hwndFocus;
    }

    /// Brings a window to the front, and waits until a control of the dialog, or none, has the focus: a busy display
    /// takes its time.
    void bringToFront(HWND window, HWND focused) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        do {
            ::SetForegroundWindow(window);
            settle();
        } while (focus() != focused && std::chrono::steady_clock::now() < end);
    }

    [[nodiscard]] std::wstring text(int number) const { return textOf(control(number)); }

    [[nodiscard]] static std::wstring textOf(HWND window)
    {
        std::wstring result(256, L'\0');
        result.resize(
            static_cast<std::size_t>(::SendMessageW(window, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(result.data()))));
        return result;
    }

    /// What was posted has been done when this has come back.
    void settle() const
    {
        for (int i = 0; i < 3; ++i) {
            ::Sleep(20);
            ::SendMessageW(dialog, WM_NULL, 0, 0);
        }
    }

    /// Until nothing is left to paint: of the dialog, which then has the focus, or of another window. A busy display
    /// may have given the focus to a window that was there before.
    void waitUntilPainted() const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        while (!focus() && std::chrono::steady_clock::now() < end) {
            ::SetForegroundWindow(dialog);
            settle();
        }
        waitUntilPainted(dialog);
    }
    void waitUntilPainted(HWND window) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        do
            settle();
        while (hasToPaint(window) && std::chrono::steady_clock::now() < end);
    }

    HWND dialog = nullptr;

private:
    [[nodiscard]] static bool hasToPaint(HWND window)
    {
        if (::GetUpdateRect(window, nullptr, FALSE))
            return true;
        for (HWND each = ::GetWindow(window, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT)) {
            if (hasToPaint(each))
                return true;
        }
        return false;
    }
};
