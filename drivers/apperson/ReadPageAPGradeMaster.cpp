// SPDX-License-Identifier: MIT
#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/ErrorTexts.h"
#include "drivers/apperson/basApperson.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"

namespace kel {

namespace {

constexpr const char* kReadPageAPGradeMaster = "KELReader81 - basApperson.ReadPageAPGradeMaster";

} // namespace

Boolean ReadPageAPGradeMaster(ReaderContract& oReader)
{
    Boolean bResult = False;
    TextArray sBarcodeArr;
    MarkArray iSide1Arr;
    Int16 iErrCode = 0;
    RawBlockAP block = newBlockGradeMasterAP();
    Byte bValue = 0;
    Int16 iThreshold = 0;
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(block, sBarcodeArr, iSide1Arr, iErrCode, bValue, iThreshold);
    guarded(kReadPageAPGradeMaster, variables, [&] {
        sBarcodeArr.ReDim(1, 1);
        oReader.fComm().mscComm().Output("P\r");
        oReader.fComm().mscComm().InputLen(1);
        if (!collectBlockAP(oReader, block))
            return;
        if (block.status() != kStatusGradeMasterAP) {
            iErrCode = block.status();
            const ReportedText reported(errorTextAP(iErrCode));
            reportNumberedFault(kReadPageAPGradeMaster, iErrCode, ReturnErrorAP(iErrCode),
                                VBLM_RTString(text::kApReaderErrorTitle));
            drainInputWithPauses(oReader);
            return;
        }

        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        sBarcodeArr(1) = identifierGradeMasterAP(block);
        if (sBarcodeArr(1) == kErrorIdentifierGradeMasterAP) {
            iErrCode = errorNumberGradeMasterAP(block);
            const ReportedText reported(errorTextAP(iErrCode));
            if (iErrCode > 0)
                reportNumberedFault(kReadPageAPGradeMaster, iErrCode, ReturnErrorAP(iErrCode),
                                    VBLM_RTString(text::kSheetNotReadTitle));
            return;
        }
        if (sBarcodeArr(1) == kBlankIdentifierGradeMasterAP)
            sBarcodeArr(1) = "?";
        iThreshold = oReader.RecognitionThreshold();
        setMarksGradeMasterAP(iSide1Arr, block, iThreshold, bValue);
        oReader.Side1Array(iSide1Arr);
        oReader.BarcodeArray(sBarcodeArr);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
