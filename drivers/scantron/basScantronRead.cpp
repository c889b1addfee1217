#include "drivers/scantron/basScantron.h"

#include "contract/clsKELReaderWindows.h"
#include "drivers/common/Dialogue.h"
#include "drivers/scantron/FormCommands.h"
#include "drivers/scantron/SheetCells.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basScantron.ReadPageST";
constexpr const char* kReadWindows = "KELReader81 - basScantron.ReadWindowsST";

/// What differs between the two ways of reading at the start of a sheet.
struct ReadStart {
    const char* source;
    const char* (*command)(const ReaderContract& oReader); ///< asked once a sheet is there
    TextNumber noReply;
};

constexpr const char* kReadKeepingSheet = "READ 5 Y E";

constexpr ReadStart kPageStart = {
    kReadPage, [](const ReaderContract& oReader) { return oReader.Rejecter() ? kReadKeepingSheet : "READ 5 Y"; },
    text::kStPageNotSent};
constexpr ReadStart kWindowsStart = {kReadWindows, [](const ReaderContract&) { return kReadKeepingSheet; },
                                     text::kStWindowsNotSent};

/// Waits for a sheet in the feeder (one look) or in the hand of the operator (until the stop flag).
bool sheetIsReady(ReaderContract& oReader)
{
    ScantronReady eReady = ScantronReady::NoSheet;
    if (oReader.Feeder()) {
        eReady = CheckStatusST(oReader);
    } else {
        while (eReady == ScantronReady::NoSheet) {
            eReady = CheckStatusST(oReader);
            if (oReader.CancelScan())
                return false;
        }
    }
    if (eReady == ScantronReady::Fault)
        ClearBufferST(oReader);
    return eReady == ScantronReady::Sheet;
}

/// Asks for the sheet and waits for its first byte. The timer then runs anew: the whole transfer has to fit into one
/// time-out.
bool startTransfer(ReaderContract& oReader, const ReadStart& start)
{
    ClearBufferST(oReader);
    if (!sheetIsReady(oReader))
        return false;
    oReader.fComm().mscComm().Output(frameST(start.command(oReader)));
    const Wait wait = waitForReply(oReader);
    if (wait == Wait::TimedOut)
        reportReaderFault(start.source, start.noReply, text::kSheetNotReadTitle);
    if (wait != Wait::Reply) {
        ClearBufferST(oReader);
        return false;
    }
    oReader.fComm().mscComm().InputLen(1);
    oReader.fComm().tmrScan().Enabled(True);
    return true;
}

bool transferOutlasted(ReaderContract& oReader, const char* source)
{
    if (oReader.fComm().tmrScan().Enabled())
        return false;
    reportReaderFault(source, text::kStTransferTooLong, text::kSheetNotReadTitle);
    ClearBufferST(oReader);
    return true;
}

/// The status behind the transfer decides whether the sheet counts; what is left in the buffer goes.
bool sheetIsGood(ReaderContract& oReader)
{
    const ScantronReady eReady = CheckStatusST(oReader);
    ClearBufferST(oReader);
    return eReady != ScantronReady::Fault;
}

/// The value of a cell. What is to be subtracted belongs to the thread: a session that the host starts meanwhile may
/// change it.
Int16 cellValue(Byte bData)
{
    return checkedSubtract(Int16{bData}, iRecognitionOffset);
}

using TimingMarksSetter = void (ReaderContract::*)(Int16);

/// How the transfer of one side ended.
enum class SideEnd { Full, TransferEnded, Failed };

/// Takes one round of a page transfer: a byte if one is there, then the timer, then a pause if nothing is left.
/// False when the transfer has failed; `bEnded` becomes true at its last byte.
bool transferRound(ReaderContract& oReader, PageSideST& side, TimingMarksSetter setTimingMarks, bool& bEnded)
{
    DoEvents();
    if (oReader.fComm().mscComm().InBufferCount() > 0) {
        const Byte bData = takeByte(oReader);
        if (bData == kTransferEndST) {
            bEnded = true;
        } else {
            side.store(cellValue(bData));
            (oReader.*setTimingMarks)(side.lastRow());
        }
    }
    if (transferOutlasted(oReader, kReadPage))
        return false;
    if (oReader.fComm().mscComm().InBufferCount() == 0)
        Sleep(oReader.SleepTime());
    return true;
}

/// Side 1 ends when it is full or the transfer ends.
SideEnd readSide1(ReaderContract& oReader, MarkArray& iSide1Arr)
{
    PageSideST side(iSide1Arr);
    bool bEnded = false;
    while (side.nextRow() <= oReader.LargestSide1Rows() && !bEnded) {
        if (!transferRound(oReader, side, &ReaderContract::Side1TimingMarks, bEnded))
            return SideEnd::Failed;
    }
    return bEnded ? SideEnd::TransferEnded : SideEnd::Full;
}

/// Side 2 ends with the transfer alone: a stream that is longer than the array runs out of its bounds.
bool readSide2(ReaderContract& oReader, MarkArray& iSide2Arr)
{
    PageSideST side(iSide2Arr);
    bool bEnded = false;
    while (!bEnded) {
        if (!transferRound(oReader, side, &ReaderContract::Side2TimingMarks, bEnded))
            return false;
    }
    return true;
}

/// Waits for the next byte of a window; the stop flag is not looked at. False when the transfer has outlasted the
/// timer.
bool byteComes(ReaderContract& oReader)
{
    while (oReader.fComm().mscComm().InBufferCount() == 0) {
        DoEvents();
        if (transferOutlasted(oReader, kReadWindows))
            return false;
        if (oReader.fComm().mscComm().InBufferCount() == 0)
            Sleep(oReader.SleepTime());
    }
    return true;
}

/// Fills the cells of one window in the reader's order.
SideEnd readWindow(ReaderContract& oReader, const Reference<clsKELReaderWindow>& cWindow, MarkArray& iSideArr)
{
    WindowCellsST cells(cWindow);
    while (const auto cell = cells.next()) {
        if (!byteComes(oReader))
            return SideEnd::Failed;
        const Byte bData = takeByte(oReader);
        if (bData == kTransferEndST)
            return SideEnd::TransferEnded;
        iSideArr(cell->row, cell->column) = cellValue(bData);
    }
    return SideEnd::Full;
}

} // namespace

Boolean ReadPageST(ReaderContract& oReader)
{
    Boolean bResult = False;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    guarded(kReadPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(iSide1Arr, iSide2Arr), [&] {
        if (!startTransfer(oReader, kPageStart))
            return;

        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        oReader.Side1TimingMarks(0);
        oReader.Side2TimingMarks(0);
        const SideEnd eSide1 = readSide1(oReader, iSide1Arr);
        if (eSide1 == SideEnd::Failed)
            return;
        if (eSide1 == SideEnd::Full) {
            if (oReader.DuplexForm() && oReader.LargestSide2Rows() >= 1) {
                iSide2Arr.ReDim(oReader.LargestSide2Rows(), oReader.LargestSide2Cols());
                if (!readSide2(oReader, iSide2Arr))
                    return;
            } else {
                ClearBufferST(oReader);
            }
        }

        if (!sheetIsGood(oReader))
            return;
        oReader.Side1Array(iSide1Arr);
        oReader.Side2Array(iSide2Arr);
        bResult = True;
    });
    return bResult;
}

Boolean ReadWindowsST(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int32 lWindowCount = 0;
    Int32 lWindowIndex = 0;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    bool bSide2 = false;
    bool bEnded = false;
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(lWindowCount, lWindowIndex, iSide1Arr, iSide2Arr, bSide2, bEnded);
    guarded(kReadWindows, variables, [&] {
        lWindowCount = oReader.Windows()->Count();
        if (!startTransfer(oReader, kWindowsStart))
            return;

        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        for (lWindowIndex = 1; lWindowIndex <= lWindowCount && !bEnded; ++lWindowIndex) {
            const Reference<clsKELReaderWindow> cWindow = oReader.Windows()->Item(lWindowIndex);
            // From the first window of another page on all bytes are side 2's.
            if (cWindow->Page() >= 2 && !bSide2) {
                bSide2 = true;
                iSide2Arr.ReDim(oReader.LargestSide2Rows(), oReader.LargestSide2Cols());
            }
            switch (readWindow(oReader, cWindow, bSide2 ? iSide2Arr : iSide1Arr)) {
            case SideEnd::Failed: return;
            case SideEnd::TransferEnded: bEnded = true; break;
            case SideEnd::Full: break;
            }
        }
        if (!bEnded)
            ClearBufferST(oReader);

        if (!sheetIsGood(oReader))
            return;
        oReader.Side1Array(iSide1Arr);
        oReader.Side2Array(iSide2Arr);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
