// SPDX-License-Identifier: MIT
#include "drivers/scantron/basScantron.h"

#include "contract/clsKELReaderWindows.h"
#include "drivers/common/Dialogue.h"
#include "drivers/scantron/FormCommands.h"
#include "drivers/scantron/SheetCells.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"

#include <array>

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
bool sheetIsReady(ReaderContract& oReader, ScantronReady& eReady)
{
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

/// Asks for the sheet and waits for its first byte. The timer then starts again: the whole transfer has to fit into one
/// time-out.
bool startTransfer(ReaderContract& oReader, const ReadStart& start, ScantronReady& eReady)
{
    ClearBufferST(oReader);
    if (!sheetIsReady(oReader, eReady))
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

/// The status after the transfer decides whether the sheet counts; what is left in the buffer goes.
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

/// A transfer that is under way.
struct TransferST {
    ScantronReady eReady = ScantronReady::NoSheet; ///< stays at a sheet until the last byte
    std::array<Byte, 1> bDataArr{};

    [[nodiscard]] bool isUnderWay() const { return eReady == ScantronReady::Sheet; }

    /// Takes a byte; true if it is the value of a cell, and not the end.
    bool takeValue(ReaderContract& oReader)
    {
        bDataArr[0] = takeByte(oReader);
        if (bDataArr[0] == kTransferEndST)
            eReady = ScantronReady::NoSheet;
        return isUnderWay();
    }

    KEL_TELLS(eReady, bDataArr)
};

using TimingMarksSetter = void (ReaderContract::*)(Int16);

/// Takes one round of a page transfer: a byte if one is there, then the timer, then a pause if nothing is left.
/// False when the transfer has failed.
bool transferRound(ReaderContract& oReader, TransferST& transfer, PageSideST& side, MarkArray& iSideArr,
                   TimingMarksSetter setTimingMarks)
{
    DoEvents();
    if (oReader.fComm().mscComm().InBufferCount() > 0 && transfer.takeValue(oReader)) {
        side.store(iSideArr, cellValue(transfer.bDataArr[0]));
        (oReader.*setTimingMarks)(side.lastRow());
    }
    if (transferOutlasted(oReader, kReadPage))
        return false;
    if (oReader.fComm().mscComm().InBufferCount() == 0)
        Sleep(oReader.SleepTime());
    return true;
}

/// Side 1 ends when it is full or the transfer ends. False when the transfer has failed.
bool readSide1(ReaderContract& oReader, TransferST& transfer, PageSideST& side, MarkArray& iSide1Arr)
{
    while (side.nextRow() <= oReader.LargestSide1Rows() && transfer.isUnderWay()) {
        if (!transferRound(oReader, transfer, side, iSide1Arr, &ReaderContract::Side1TimingMarks))
            return false;
    }
    return true;
}

/// Side 2 ends with the transfer alone: a stream that is longer than the array runs out of its bounds.
bool readSide2(ReaderContract& oReader, TransferST& transfer, PageSideST& side, MarkArray& iSide2Arr)
{
    while (transfer.isUnderWay()) {
        if (!transferRound(oReader, transfer, side, iSide2Arr, &ReaderContract::Side2TimingMarks))
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

/// Fills the cells of one window in the reader's order, until the transfer ends. False when it has failed.
bool readWindow(ReaderContract& oReader, TransferST& transfer, WindowCellsST& cells, MarkArray& iSideArr)
{
    while (cells.next()) {
        if (!byteComes(oReader))
            return false;
        if (!transfer.takeValue(oReader))
            return true;
        iSideArr(cells.row(), cells.column()) = cellValue(transfer.bDataArr[0]);
    }
    return true;
}

} // namespace

Boolean ReadPageST(ReaderContract& oReader)
{
    Boolean bResult = False;
    TransferST transfer;
    PageSideST side;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    guarded(kReadPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(transfer, side, iSide1Arr, iSide2Arr), [&] {
        if (!startTransfer(oReader, kPageStart, transfer.eReady))
            return;

        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        oReader.Side1TimingMarks(0);
        oReader.Side2TimingMarks(0);
        if (!readSide1(oReader, transfer, side, iSide1Arr))
            return;
        if (transfer.isUnderWay()) {
            if (oReader.DuplexForm() && oReader.LargestSide2Rows() >= 1) {
                iSide2Arr.ReDim(oReader.LargestSide2Rows(), oReader.LargestSide2Cols());
                side = {};
                if (!readSide2(oReader, transfer, side, iSide2Arr))
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
    TransferST transfer;
    Int16 iWindowCount = 0;
    Int16 iWindowIndex = 0;
    bool bSide2 = false;
    WindowCellsST cells;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(transfer, iWindowCount, iWindowIndex, bSide2, cells, iSide1Arr, iSide2Arr);
    guarded(kReadWindows, variables, [&] {
        iWindowCount = CInt(oReader.Windows()->Count());
        if (!startTransfer(oReader, kWindowsStart, transfer.eReady))
            return;

        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        for (iWindowIndex = 1; iWindowIndex <= iWindowCount && transfer.isUnderWay();
             iWindowIndex = checkedAdd(iWindowIndex, 1)) {
            const Reference<clsKELReaderWindow> cWindow = oReader.Windows()->Item(iWindowIndex);
            // From the first window of another page on all bytes are side 2's.
            if (cWindow->Page() >= 2 && !bSide2) {
                bSide2 = true;
                iSide2Arr.ReDim(oReader.LargestSide2Rows(), oReader.LargestSide2Cols());
            }
            cells = WindowCellsST(cWindow);
            if (!readWindow(oReader, transfer, cells, bSide2 ? iSide2Arr : iSide1Arr))
                return;
        }
        if (transfer.isUnderWay())
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
