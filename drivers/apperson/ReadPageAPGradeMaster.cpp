#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/basApperson.h"
#include "failure/basError.h"
#include "failure/guarded.h"

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basApperson.ReadPageAPGradeMaster";
constexpr TextNumber kReaderErrorTitle = 194;
constexpr TextNumber kSheetErrorTitle = 196;

} // namespace

Boolean ReadPageAPGradeMaster(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded(kReadPage, [&] {
        TextArray sBarcodeArr(1, 1);
        oReader.fComm().mscComm().Output("P\r");
        oReader.fComm().mscComm().InputLen(1);
        RawBlockAP block = newBlockGradeMasterAP();
        if (!collectBlockAP(oReader, block))
            return;
        if (block.status() != kStatusGradeMasterAP) {
            reportReaderFault(kReadPage, ReturnErrorAP(block.status()), VBLM_RTString(kReaderErrorTitle));
            drainInputWithPauses(oReader);
            return;
        }

        MarkArray iSide1Arr(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        sBarcodeArr(1) = identifierGradeMasterAP(block);
        if (sBarcodeArr(1) == kErrorIdentifierGradeMasterAP) {
            const Int16 iErrCode = errorNumberGradeMasterAP(block);
            if (iErrCode > 0)
                reportReaderFault(kReadPage, ReturnErrorAP(iErrCode), VBLM_RTString(kSheetErrorTitle));
            return;
        }
        if (sBarcodeArr(1) == kBlankIdentifierGradeMasterAP)
            sBarcodeArr(1) = "?";
        setMarksGradeMasterAP(iSide1Arr, block, oReader.RecognitionThreshold());
        oReader.Side1Array(iSide1Arr);
        oReader.BarcodeArray(sBarcodeArr);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
