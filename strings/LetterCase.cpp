#include "strings/LetterCase.h"

#include "CaseFolding.h"
#include "platform/Utf16.h"

#include <algorithm>

namespace kel {

namespace {

char16_t foldedLetter(char16_t letter)
{
    const FoldedLetter* const found = std::ranges::lower_bound(kFoldedLetters, letter, {}, &FoldedLetter::letter);
    return found != std::end(kFoldedLetters) && found->letter == letter ? found->folded : letter;
}

} // namespace

std::u16string folded(std::string_view utf8)
{
    std::u16string text = utf16Of(utf8);
    std::ranges::transform(text, text.begin(), foldedLetter);
    return text;
}

} // namespace kel
