// SPDX-License-Identifier: MIT
#include "drivers/ezdata/basNCSEZData.h"

#include "drivers/common/Dialogue.h"
#include "drivers/common/PackedMarks.h"
#include "drivers/ezdata/EZDataDialogue.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <array>

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
    std::array<Byte, 1> bTempArr{};
    Byte iTemp = 0;
    std::string sCmd;
    std::string sData;
    PackedRows page;
    const bool& bRightByte = page.isAtRowStart();
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(page, bRightByte, lWaiting, bPageRead, iTemp, bTempArr, sCmd, sData);
    guarded(kReadPage, variables, [&] {
        oReader.fComm().mscComm().InputLen(1);
        page = PackedRows(kMostRows, checkedAdd(oReader.RecognitionThreshold(), 1));
        drainInput(oReader);
        sCmd = frameCommand("E");
        oReader.fComm().mscComm().Output(sCmd);
        Sleep(500);
        lWaiting = oReader.fComm().mscComm().InBufferCount();
        if (lWaiting != kReplyLength) {
            const ReportedText reported(text::kEzReadUnanswered);
            reportNumberedFault(kReadPage, text::kEzReadUnanswered.value(),
                                VBLM_RTString(text::kEzReadUnanswered) + CStr(lWaiting), VBLM_RTString(text::kEzTitle));
            return;
        }
        if (!commandTakenNCSEZ(oReader, kReadPage,
                               {.refused = text::kEzReadRefused, .unknown = text::kEzReadUnexpected}, sData))
            return;

        while (!bPageRead) {
            DoEvents();
            if (oReader.CancelScan())
                return;
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                continue;
            bTempArr[0] = takeByte(oReader);
            iTemp = bTempArr[0];
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
    std::string sData;
    guarded(kRejectPage, KEL_PARAMETERS(oReader, bRejectHopper) + KEL_LOCALS(sData), [&] {
        oReader.fComm().mscComm().Output(frameCommand(bRejectHopper ? "EF" : "ER"));
        Sleep(200);
        if (oReader.fComm().mscComm().InBufferCount() != kReplyLength) {
            failNCSEZ(kRejectPage, text::kEzRejectUnanswered);
            return;
        }
        if (!commandTakenNCSEZ(oReader, kRejectPage,
                               {.refused = text::kEzRejectRefused, .unknown = text::kEzRejectUnexpected}, sData))
            return;
        if (bRejectHopper)
            Sleep(1000);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
