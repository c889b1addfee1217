// SPDX-License-Identifier: MIT
#include "contract/DictionaryObject.h"
#include "contract/DictionaryVariant.h"
#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/DataLines.h"
#include "drivers/apperson/basApperson.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"

namespace kel {

namespace {

constexpr const char* kReadPageAPBenchMarkAdvantage = "KELReader81 - basApperson.ReadPageAPBenchMarkAdvantage";

/// Sends the command to send the sheets. Its reply is not read here: it comes as a short line before the first sheet.
bool startSheets(ReaderContract& oReader)
{
    oReader.fComm().mscComm().Output("B1");
    switch (waitForReply(oReader)) {
    case Wait::Cancelled:
        reportNumberedFault(kReadPageAPBenchMarkAdvantage, text::kApReadCancelled, text::kSheetNotReadTitle);
        return false;
    case Wait::TimedOut:
        reportNumberedFault(kReadPageAPBenchMarkAdvantage, text::kApReadUnanswered, text::kSheetNotReadTitle);
        return false;
    case Wait::Reply: break;
    }
    oReader.fComm().mscComm().InputLen(1);
    bAPReaderStarted = True;
    return true;
}

/// Takes lines until one ends the read. Without a byte for as long as the timer runs there is no sheet either.
LineEndAP collectLine(ReaderContract& oReader, BenchMarkLineAP& line)
{
    for (;;) {
        DoEvents();
        if (oReader.fComm().mscComm().InBufferCount() == 0) {
            if (waitForReply(oReader) != Wait::Reply)
                return LineEndAP::NoMoreSheets;
        } else if (const LineEndAP end = line.take(takeByte(oReader)); end != LineEndAP::None) {
            return end;
        }
    }
}

} // namespace

Boolean ReadPageAPBenchMarkAdvantage(ReaderContract& oReader)
{
    Boolean bResult = False;
    Dictionary oDataDict;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    TextArray sBarcodeArr;
    Boolean bNeedsMoreData = False;
    BenchMarkLineAP line(oDataDict);
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(oDataDict, line, iSide1Arr, iSide2Arr, sBarcodeArr, bNeedsMoreData);
    guarded(kReadPageAPBenchMarkAdvantage, variables, [&] {
        oDataDict = newDictionary();
        oDataDict.CompareMode(kTextCompare);
        if (!bAPReaderStarted && !startSheets(oReader))
            return;
        if (collectLine(oReader, line) == LineEndAP::NoMoreSheets) {
            bAPReaderStarted = False;
            return;
        }

        // The sheet is through the reader now: it counts as read even when the host fails in what follows.
        bResult = True;
        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        oReader.TranslateDataEvent(oDataDict, iSide1Arr, iSide2Arr, sBarcodeArr, bNeedsMoreData);
        oReader.Side1Array(iSide1Arr);
        oReader.BarcodeArray(sBarcodeArr);
    });
    return bResult;
}

} // namespace kel
