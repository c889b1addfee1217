#include "com/Text.h"

#include "types/RuntimeFailure.h"

#include <oleauto.h>

#include <algorithm>
#include <array>

namespace kel::com {

namespace {

constexpr std::size_t kBytes = 256;

/// The character of each byte. A byte that is none by itself, as in a code page of two bytes a character, is the
/// character of its own number.
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

char byteOf(wchar_t character)
{
    const auto& characters = lineCharacters();
    // Most characters stand at their own place.
    if (character < kBytes && characters[character] == character)
        return static_cast<char>(character);
    const auto* const found = std::find(characters.begin(), characters.end(), character);
    if (found != characters.end())
        return static_cast<char>(found - characters.begin());
    return character < kBytes ? static_cast<char>(character) : '?';
}

BSTR newBstr(std::size_t length)
{
    const BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(length));
    if (!text)
        throw RuntimeFailure(FailureCode::OutOfMemory);
    return text;
}

int size(std::size_t length)
{
    return static_cast<int>(length);
}

std::string inCodePage(BSTR text, UINT codePage)
{
    const UINT length = SysStringLen(text);
    if (length == 0)
        return {};
    const int needed = WideCharToMultiByte(codePage, 0, text, size(length), nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(codePage, 0, text, size(length), result.data(), needed, nullptr, nullptr);
    return result;
}

} // namespace

BSTR newText(std::string_view utf8)
{
    if (utf8.empty())
        return newBstr(0);
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), size(utf8.size()), nullptr, 0);
    if (length == 0)
        return newLineText(utf8);
    const BSTR text = newBstr(static_cast<std::size_t>(length));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), size(utf8.size()), text, length);
    return text;
}

BSTR newLineText(std::string_view bytes)
{
    const BSTR text = newBstr(bytes.size());
    std::transform(bytes.begin(), bytes.end(), text,
                   [](char byte) { return lineCharacters()[static_cast<unsigned char>(byte)]; });
    return text;
}

std::string textOf(BSTR text)
{
    return inCodePage(text, CP_UTF8);
}

std::string ansiTextOf(BSTR text)
{
    return inCodePage(text, CP_ACP);
}

std::string lineTextOf(BSTR text)
{
    std::string bytes(SysStringLen(text), '\0');
    std::transform(text, text + bytes.size(), bytes.begin(), byteOf);
    return bytes;
}

OwnedText::~OwnedText()
{
    SysFreeString(text_);
}

std::wstring_view OwnedText::view() const noexcept
{
    return {text_, SysStringLen(text_)};
}

} // namespace kel::com
