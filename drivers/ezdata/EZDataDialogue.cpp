#include "drivers/ezdata/EZDataDialogue.h"

#include "failure/basError.h"

namespace kel {

bool failNCSEZ(const char* source, TextNumber message)
{
    reportReaderFault(source, message, 292);
    return false;
}

bool letterTakenNCSEZ(ReaderContract& oReader, const char* source, const LetterTextsNCSEZ& texts)
{
    const std::string sLetter = oReader.fComm().mscComm().Input();
    if (sLetter == "G")
        return true;
    return failNCSEZ(source, sLetter == "?" ? texts.refused : texts.unknown);
}

bool commandTakenNCSEZ(ReaderContract& oReader, const char* source, const LetterTextsNCSEZ& texts)
{
    if (!letterTakenNCSEZ(oReader, source, texts))
        return false;
    static_cast<void>(oReader.fComm().mscComm().Input());
    return true;
}

} // namespace kel
