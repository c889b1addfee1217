#include "drivers/ezdata/basNCSEZData.h"

#include "drivers/common/Dialogue.h"
#include "drivers/common/PackedMarks.h"
#include "drivers/ezdata/EZDataDialogue.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basNCSEZData.ReadPageNCSEZ";
constexpr const char* kRejectPage = "KELReader81 - basNCSEZData.RejectPageNCSEZ";
constexpr Int32 kMostRows = 150;
constexpr Int32 kReplyLength = 2;

} // namespace

Boolean ReadPageNCSEZ(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int32 lWaiting = 0;
    bool bPageRead = false;
    Byte iTemp = 0;
    guarded(kReadPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(lWaiting, bPageRead, iTemp), [&] {
        oReader.fComm().mscComm().InputLen(1);
        PackedRows page(kMostRows, checkedAdd(oReader.RecognitionThreshold(), 1));
        drainInput(oReader);
        oReader.fComm().mscComm().Output(frameCommand("E"));
        Sleep(500);
        lWaiting = oReader.fComm().mscComm().InBufferCount();
        if (lWaiting != kReplyLength) {
            reportReaderFault(kReadPage, VBLM_RTString(TextNumber(340)) + CStr(lWaiting),
                              VBLM_RTString(TextNumber(292)));
            return;
        }
        if (!commandTakenNCSEZ(oReader, kReadPage, {.refused = 336, .unknown = 338}))
            return;

        while (!bPageRead) {
            DoEvents();
            if (oReader.CancelScan())
                return;
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                continue;
            iTemp = takeByte(oReader);
            if (iTemp == kSheetEnd)
                bPageRead = true;
            else
                page.take(iTemp);
        }
        oReader.Side1TimingMarks(page.completeRows());
        oReader.Side1Array(page.marks());
        bResult = True;
    });
    return bResult;
}

Boolean RejectPageNCSEZ(ReaderContract& oReader, Boolean bRejectHopper)
{
    Boolean bResult = False;
    guarded(kRejectPage, KEL_PARAMETERS(oReader, bRejectHopper), [&] {
        oReader.fComm().mscComm().Output(frameCommand(bRejectHopper ? "EF" : "ER"));
        Sleep(200);
        if (oReader.fComm().mscComm().InBufferCount() != kReplyLength) {
            failNCSEZ(kRejectPage, 346);
            return;
        }
        if (!commandTakenNCSEZ(oReader, kRejectPage, {.refused = 342, .unknown = 344}))
            return;
        if (bRejectHopper)
            Sleep(1000);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
