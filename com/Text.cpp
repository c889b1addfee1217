// SPDX-License-Identifier: MIT
#include "com/Text.h"

#include "platform/windows/WindowsText.h"
#include "types/RuntimeFailure.h"

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <array>

namespace kel::com {

namespace {

constexpr std::size_t kBytes = 256;

/// The character of each byte by itself. A byte that is none, as the first of two, is the character of its own number.
std::array<wchar_t, kBytes> charactersOfBytes()
{
    std::array<wchar_t, kBytes> characters{};
    for (std::size_t byte = 0; byte < kBytes; ++byte) {
        const char one = static_cast<char>(byte);
        if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &one, 1, &characters[byte], 1) != 1)
            characters[byte] = static_cast<wchar_t>(byte);
    }
    return characters;
}

const std::array<wchar_t, kBytes>& lineCharacters()
{
    static const auto characters = charactersOfBytes();
    return characters;
}

/// The bytes of a character of a line: one, or the two that the code page has for it.
std::string bytesOf(wchar_t character)
{
    const auto& characters = lineCharacters();
    // Most characters stand at their own place.
    if (character < kBytes && characters[character] == character)
        return {static_cast<char>(character)};
    const auto* const found = std::find(characters.begin(), characters.end(), character);
    if (found != characters.end())
        return {static_cast<char>(found - characters.begin())};
    std::array<char, 2> both{};
    BOOL unknown = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &character, 1, both.data(),
                                         static_cast<int>(both.size()), nullptr, &unknown);
    return size > 0 && !unknown ? std::string(both.data(), static_cast<std::size_t>(size)) : "?";
}

bool startsWithTwo(std::string_view bytes)
{
    return bytes.size() > 1 && IsDBCSLeadByte(static_cast<BYTE>(bytes.front())) != FALSE;
}

/// The character that the first bytes encode; removes them.
wchar_t takeCharacter(std::string_view& bytes)
{
    if (startsWithTwo(bytes)) {
        const std::string_view both = bytes.substr(0, 2);
        wchar_t character = 0;
        // Some pairs are a second way of writing a character: as such they would not come back.
        if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, both.data(), 2, &character, 1) == 1 &&
            bytesOf(character) == both) {
            bytes.remove_prefix(2);
            return character;
        }
    }
    const wchar_t character = lineCharacters()[static_cast<unsigned char>(bytes.front())];
    bytes.remove_prefix(1);
    return character;
}

bool isUtf8(std::string_view text)
{
    return text.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), nullptr, 0) > 0;
}

/// The first character of a text in UTF-8; empty if the text begins with none.
std::string_view firstCharacter(std::string_view text)
{
    constexpr std::size_t kLongest = 4;
    for (std::size_t length = 1; length <= std::min(kLongest, text.size()); ++length) {
        if (isUtf8(text.substr(0, length)))
            return text.substr(0, length);
    }
    return {};
}

/// A text for people with what it quotes of sheets.
std::wstring mixedText(std::string_view text)
{
    if (isUtf8(text))
        return wideText(text);
    std::wstring wide;
    while (!text.empty()) {
        const std::string_view character = firstCharacter(text);
        const std::string_view quoted = text.substr(0, startsWithTwo(text) ? 2 : 1);
        wide += character.empty() ? wideFromAnsi(quoted) : wideText(character);
        text.remove_prefix(character.empty() ? quoted.size() : character.size());
    }
    return wide;
}

BSTR newBstr(std::wstring_view text)
{
    const BSTR made = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!made)
        throw RuntimeFailure(FailureCode::OutOfMemory);
    return made;
}

std::wstring_view viewOf(BSTR text)
{
    return {text, SysStringLen(text)};
}

} // namespace

BSTR newText(std::string_view utf8)
{
    return newBstr(mixedText(utf8));
}

BSTR newSheetText(std::string_view bytes)
{
    return newBstr(wideFromAnsi(bytes));
}

BSTR newLineText(std::string_view bytes)
{
    std::wstring text;
    while (!bytes.empty())
        text += takeCharacter(bytes);
    return newBstr(text);
}

std::string textOf(BSTR text)
{
    return utf8Text(viewOf(text));
}

std::string sheetTextOf(BSTR text)
{
    return ansiFromWide(viewOf(text));
}

std::string lineTextOf(BSTR text)
{
    std::string bytes;
    for (const wchar_t character : viewOf(text))
        bytes += bytesOf(character);
    return bytes;
}

OwnedText::~OwnedText()
{
    SysFreeString(text_);
}

std::wstring_view OwnedText::view() const noexcept
{
    return viewOf(text_);
}

} // namespace kel::com
