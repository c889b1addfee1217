// SPDX-License-Identifier: MIT
#include "strings/LetterCase.h"

#include "CaseFolding.h"

#include <algorithm>

namespace kel {

namespace {

char16_t foldedLetter(char16_t letter)
{
    const FoldedLetter* const found = std::ranges::lower_bound(kFoldedLetters, letter, {}, &FoldedLetter::letter);
    return found != std::end(kFoldedLetters) && found->letter == letter ? found->folded : letter;
}

/// Takes the letter at the start of a text that is not empty. A byte that is no UTF-8 is the letter of its Latin-1
/// code, and so are those of characters beyond the basic plane, which stay apart all the same.
char16_t takeLetter(std::string_view& text)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const std::size_t length = byte(0) >= 0xF0 ? 1 : byte(0) >= 0xE0 ? 3 : byte(0) >= 0xC0 ? 2 : 1;
    char16_t letter = byte(0);
    std::size_t taken = 1;
    if (length > 1 && text.size() >= length) {
        auto code = static_cast<char16_t>(byte(0) & (0xFFU >> (length + 1)));
        while (taken < length && (byte(taken) & 0xC0U) == 0x80U)
            code = static_cast<char16_t>((code << 6U) | (byte(taken++) & 0x3FU));
        if (taken == length)
            letter = code;
        else
            taken = 1;
    }
    text.remove_prefix(taken);
    return letter;
}

} // namespace

std::u16string folded(std::string_view utf8)
{
    std::u16string letters;
    while (!utf8.empty())
        letters += foldedLetter(takeLetter(utf8));
    return letters;
}

} // namespace kel
