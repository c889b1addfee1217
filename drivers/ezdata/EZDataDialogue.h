// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"
#include "strings/TextNumber.h"

#include <string>

namespace kel {

/// What is reported when a reply's letter is not "G": a refusal ("?") and anything else.
struct LetterTextsNCSEZ {
    TextNumber refused;
    TextNumber unknown;
};

/// Reports a failure under the family's title; always false, so that a procedure can end with it.
bool failNCSEZ(const char* source, TextNumber message);

/// Takes the letter of a reply. True for "G", the command was taken; anything else is reported, and what follows
/// the letter, which comes into `sData`, stays in the buffer.
bool letterTakenNCSEZ(ReaderContract& oReader, const char* source, const LetterTextsNCSEZ& texts, std::string& sData);

/// Takes the letter of a reply, and the byte that ends the reply when the letter is "G".
bool commandTakenNCSEZ(ReaderContract& oReader, const char* source, const LetterTextsNCSEZ& texts, std::string& sData);

} // namespace kel
