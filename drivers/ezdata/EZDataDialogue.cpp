// SPDX-License-Identifier: MIT
#include "drivers/ezdata/EZDataDialogue.h"

#include "failure/basError.h"

namespace kel {

bool failNCSEZ(const char* source, TextNumber message)
{
    reportNumberedFault(source, message, text::kEzTitle);
    return false;
}

bool letterTakenNCSEZ(ReaderContract& oReader, const char* source, const LetterTextsNCSEZ& texts, std::string& sData)
{
    sData = oReader.fComm().mscComm().Input();
    if (sData == "G")
        return true;
    return failNCSEZ(source, sData == "?" ? texts.refused : texts.unknown);
}

bool commandTakenNCSEZ(ReaderContract& oReader, const char* source, const LetterTextsNCSEZ& texts, std::string& sData)
{
    if (!letterTakenNCSEZ(oReader, source, texts, sData))
        return false;
    static_cast<void>(oReader.fComm().mscComm().Input());
    return true;
}

} // namespace kel
