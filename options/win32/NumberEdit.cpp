// SPDX-License-Identifier: MIT
#include "options/win32/NumberEdit.h"

#include "platform/windows/WindowsText.h"
#include "types/Text.h"

#include <utility>

namespace kel {

namespace {

std::string shownText(HWND window)
{
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return utf8Text(text);
}

} // namespace

NumberEdit::NumberEdit(PowerEdit& edit, HWND field, HWND spinner, Action after,
                       std::function<void(const Action&)> contain)
    : edit_(edit), field_(field), spinner_(spinner), after_(std::move(after)), contain_(std::move(contain))
{
    ::SetWindowLongPtrW(field_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    inner_ =
        reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(field_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure)));
}

NumberEdit::~NumberEdit()
{
    ::SetWindowLongPtrW(field_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(inner_));
}

void NumberEdit::refresh()
{
    if (shownText(field_) == edit_.Text())
        return;
    refreshing_ = true;
    ::SetWindowTextW(field_, wideText(edit_.Text()).c_str());
    refreshing_ = false;
}

void NumberEdit::changed()
{
    if (!refreshing_)
        edit_.Text(shownText(field_));
}

/// A click places the cursor after this; the selection comes last.
void NumberEdit::enter()
{
    // A window that was away gives back the focus in the midst of typing; the text from before still counts.
    if (std::exchange(inside_, true))
        return;
    if (edit_.Number())
        textOnEntry_ = edit_.Text();
    edit_.GotFocus();
    const Int32 start = edit_.SelectionStart();
    const Int32 length = edit_.SelectionLength();
    ::PostMessageW(field_, EM_SETSEL, static_cast<WPARAM>(start), length < 0 ? -1 : start + length);
}

bool NumberEdit::canBeLeft() const
{
    return edit_.Number().has_value() || Trim(edit_.Text()).empty();
}

bool NumberEdit::leave()
{
    // An empty field is no wish for a number.
    if (Trim(edit_.Text()).empty())
        edit_.Text(textOnEntry_);
    edit_.Validate();
    const bool isNumber = edit_.Number().has_value();
    if (isNumber)
        textOnEntry_ = edit_.Text();
    // A default button works while the field keeps the focus.
    inside_ = ::GetFocus() == field_;
    after_();
    return isNumber;
}

/// Buttons that are held down would make more and more steps of one.
void NumberEdit::step(int by)
{
    if (by > 0)
        edit_.StepUp();
    else
        edit_.StepDown();
    after_();
    ::SendMessageW(field_, EM_SETSEL, 0, -1);
}

bool NumberEdit::takes(WPARAM character)
{
    // Backspace and what the control key makes of letters are for the field.
    if (character < L' ' || character == 0x7F)
        return true;
    // A character beyond the narrow ones is a letter of some kind.
    return edit_.KeyPress(character < 0x100 ? static_cast<Int16>(character) : Int16{0xFF}) != 0;
}

LRESULT CALLBACK NumberEdit::procedure(HWND field, UINT message, WPARAM first, LPARAM second)
{
    auto& number = *reinterpret_cast<NumberEdit*>(::GetWindowLongPtrW(field, GWLP_USERDATA));
    bool done = false;
    number.contain_([&] {
        if (message == WM_CHAR) {
            done = !number.takes(first);
        } else if (message == WM_KEYDOWN && (first == VK_UP || first == VK_PRIOR)) {
            number.step(1);
            done = true;
        } else if (message == WM_KEYDOWN && (first == VK_DOWN || first == VK_NEXT)) {
            number.step(-1);
            done = true;
        }
    });
    return done ? 0 : ::CallWindowProcW(number.inner_, field, message, first, second);
}

} // namespace kel
