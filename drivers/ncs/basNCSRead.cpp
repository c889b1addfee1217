// SPDX-License-Identifier: MIT
#include "drivers/ncs/basNCS.h"

#include "drivers/common/Dialogue.h"
#include "drivers/ncs/PageDecoder.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <array>

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basNCS.ReadPageNCS";
constexpr const char* kStartOfSheet = "\x11";

/// Waits for the first byte of a sheet: for as long as it takes where the reader grades or the operator feeds, within
/// the time-out where the feeder does. The stop flag counts in the untimed wait alone.
bool sheetComes(ReaderContract& oReader)
{
    const bool bTimed = oReader.Feeder() && !oReader.ReaderGrade();
    const Wait wait = waitForReply(oReader, {.cancellable = !bTimed, .timed = bTimed});
    if (wait == Wait::TimedOut)
        reportNumberedFault(kReadPage, text::kNcsSheetNotSent, text::kNotAnsweringTitle);
    return wait == Wait::Reply;
}

/// Waits for the next byte within a sheet; each wait has a whole time-out.
bool byteComes(ReaderContract& oReader)
{
    if (waitForReply(oReader, {.cancellable = false}) == Wait::Reply)
        return true;
    reportNumberedFault(kReadPage, text::kReadUnanswered, text::kNotAnsweringTitle);
    return false;
}

void reportRowFault(const PageDecoderNCS::RowFault& fault)
{
    const TextNumber message = fault.side == 1 ? text::kNcsWrongRowOfSide1 : text::kNcsWrongRowOfSide2;
    const ReportedText reported(message);
    std::string sText = VBLM_RTString(message);
    sText.append(kLineEnd).append(kLineEnd);
    sText += VBLM_RTString(text::kNcsPositionsReceived) + CStr(fault.positions);
    sText.append(kLineEnd);
    sText += VBLM_RTString(text::kNcsRowsCompleted) + CStr(fault.rowsCompletedBefore);
    reportNumberedFault(kReadPage, message.value(), sText, VBLM_RTString(text::kNcsWrongRowTitle));
}

using LastByte = std::array<Byte, 1>;

/// Takes bytes until the page ends. False when the reader has fallen silent within it.
bool readPage(ReaderContract& oReader, PageDecoderNCS& page, LastByte& bTempArr)
{
    while (!page.isDone()) {
        bTempArr[0] = takeByte(oReader);
        if (const auto fault = page.take(bTempArr[0]))
            reportRowFault(*fault);
        while (page.isInRun()) {
            if (!byteComes(oReader))
                return false;
            bTempArr[0] = takeByte(oReader);
            page.take(bTempArr[0]);
        }

        // After the CR that ends the page too: the LF that comes with it lets the loop end.
        if (oReader.fComm().mscComm().InBufferCount() != 0)
            continue;
        if (!page.isInBarcode()) {
            if (!byteComes(oReader))
                return false;
        } else {
            Sleep(oReader.SleepTime());
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                page.endBySilence();
        }
    }
    return true;
}

} // namespace

Boolean ReadPageNCS(ReaderContract& oReader)
{
    Boolean bResult = False;
    std::string sCmd;
    LastByte bTempArr{};
    PageDecoderNCS page;
    guarded(kReadPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(sCmd, bTempArr, page), [&] {
        const auto readsTwoSides = [&] { return oReader.Duplex() && oReader.DuplexForm(); };
        page = PageDecoderNCS(readsTwoSides);
        drainInput(oReader);
        sCmd = kStartOfSheet;
        oReader.fComm().mscComm().Output(sCmd);
        if (!sheetComes(oReader))
            return;
        oReader.fComm().mscComm().InputLen(1);
        if (!readPage(oReader, page, bTempArr))
            return;

        oReader.Side1TimingMarks(page.timingMarks(1));
        if (readsTwoSides())
            oReader.Side2TimingMarks(page.timingMarks(2));
        if (oReader.ReaderGrade())
            Sleep(checkedMultiply(oReader.SleepTime(), 10));
        drainInput(oReader);
        if (!CheckStatusNCS(oReader))
            return;
        oReader.Side1Array(page.side1());
        oReader.Side2Array(page.side2());
        oReader.BarcodeArray(page.barcodes());
        bResult = True;
    });
    return bResult;
}

} // namespace kel
