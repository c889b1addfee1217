// SPDX-License-Identifier: MIT
#include "contract/DictionaryObject.h"
#include "contract/DictionaryVariant.h"
#include "drivers/apperson/DataLines.h"
#include "drivers/apperson/basApperson.h"
#include "drivers/common/Dialogue.h"
#include "failure/guarded.h"
#include "platform/Platform.h"

namespace kel {

namespace {

constexpr const char* kReadPageAPAdvantage1200 = "KELReader81 - basApperson.ReadPageAPAdvantage1200";

/// Takes the bytes of one line; the reader may wait for its sheet as long as it likes. False when the stop flag was
/// set.
bool collectLine(ReaderContract& oReader, Advantage1200LineAP& line)
{
    for (;;) {
        DoEvents();
        if (oReader.CancelScan())
            return false;
        if (oReader.fComm().mscComm().InBufferCount() > 0) {
            const Byte bData = takeByte(oReader);
            if (line.take(bData, oReader.ReaderGrade()))
                return true;
        }
    }
}

} // namespace

Boolean ReadPageAPAdvantage1200(ReaderContract& oReader)
{
    Boolean bResult = False;
    Dictionary oDataDict;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    TextArray sBarcodeArr;
    Boolean bNeedsMoreData = False;
    Advantage1200LineAP line(oDataDict);
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(oDataDict, line, iSide1Arr, iSide2Arr, sBarcodeArr, bNeedsMoreData);
    guarded(kReadPageAPAdvantage1200, variables, [&] {
        oDataDict = newDictionary();
        oDataDict.CompareMode(kTextCompare);

        // No command: the reader sends by itself once it has been started.
        oReader.fComm().mscComm().InputLen(1);
        for (;;) {
            if (!collectLine(oReader, line))
                return;
            iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
            if (oReader.DuplexForm())
                iSide2Arr.ReDim(oReader.LargestSide2Rows(), oReader.LargestSide2Cols());
            oReader.TranslateDataEvent(oDataDict, iSide1Arr, iSide2Arr, sBarcodeArr, bNeedsMoreData);
            if (!bNeedsMoreData)
                break;
            line.next();
        }
        oReader.Side1Array(iSide1Arr);
        oReader.BarcodeArray(sBarcodeArr);
        oReader.Side2Array(iSide2Arr);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
