// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsText.h"

#include <windows.h>

namespace kel {

namespace {

std::wstring decoded(UINT codePage, std::string_view text)
{
    const int size = static_cast<int>(text.size());
    std::wstring wide;
    wide.resize(static_cast<std::size_t>(::MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0)));
    ::MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string encoded(UINT codePage, std::wstring_view text)
{
    const int size = static_cast<int>(text.size());
    std::string bytes;
    bytes.resize(
        static_cast<std::size_t>(::WideCharToMultiByte(codePage, 0, text.data(), size, nullptr, 0, nullptr, nullptr)));
    ::WideCharToMultiByte(codePage, 0, text.data(), size, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                          nullptr);
    return bytes;
}

} // namespace

std::wstring wideText(std::string_view utf8)
{
    return decoded(CP_UTF8, utf8);
}

std::string utf8Text(std::wstring_view wide)
{
    return encoded(CP_UTF8, wide);
}

std::string ansiText(std::string_view utf8)
{
    return ansiFromWide(wideText(utf8));
}

std::string utf8FromAnsi(std::string_view ansi)
{
    return utf8Text(wideFromAnsi(ansi));
}

std::wstring wideFromAnsi(std::string_view ansi)
{
    return decoded(CP_ACP, ansi);
}

std::string ansiFromWide(std::wstring_view wide)
{
    return encoded(CP_ACP, wide);
}

std::string systemErrorText(unsigned long error)
{
    wchar_t text[512] = {};
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                          text, static_cast<DWORD>(std::size(text)), nullptr);
    std::wstring_view words(text, length);
    while (words.ends_with(L'\n') || words.ends_with(L'\r') || words.ends_with(L' '))
        words.remove_suffix(1);
    return words.empty() ? "system error " + std::to_string(error) : utf8Text(words);
}

} // namespace kel
