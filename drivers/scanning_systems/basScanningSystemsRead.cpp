// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderBarcodes.h"
#include "contract/clsKELReaderPrinter.h"
#include "contract/clsKELReaderWindows.h"
#include "drivers/common/Dialogue.h"
#include "drivers/scanning_systems/Framing.h"
#include "drivers/scanning_systems/PageReply.h"
#include "drivers/scanning_systems/SheetReplies.h"
#include "drivers/scanning_systems/WindowReply.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <array>
#include <utility>

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basScanningSystems.ReadPageSS";
constexpr const char* kReadEntirePage = "KELReader81 - basScanningSystems.ReadEntirePageSS";
constexpr const char* kReadWindows = "KELReader81 - basScanningSystems.ReadWindowsSS";
constexpr const char* kAddToArray = "KELReader81 - basScanningSystems.AddToArraySS";

constexpr Int32 kPageColumns = 48;

bool wantsBarcode(ReaderContract& oReader)
{
    return oReader.Barcode() && oReader.Barcodes()->Count() > 0;
}

bool readsBothSides(ReaderContract& oReader)
{
    return oReader.Duplex() && oReader.DuplexForm();
}

/// What goes to the reader and comes from it before the marks of a sheet.
struct SheetSS {
    std::string sCmd;
    std::string sData;
    std::array<Byte, 1> bDataArr{};
    TextArray sBarcodeArr;

    /// Sends a query; True if a reply came into `sData`.
    bool ask(ReaderContract& oReader, std::string sQuery, Boolean bUseByteArray)
    {
        sCmd = std::move(sQuery);
        sData = SendCommandSS(oReader, sCmd, bUseByteArray);
        return !sData.empty();
    }

    KEL_TELLS(sCmd, sData, bDataArr, sBarcodeArr)
};

/// Waits for the data of a sheet that is already under way, whatever the stop flag says. Silence is reported.
bool dataComes(ReaderContract& oReader, const char* source)
{
    if (waitForReply(oReader, {.cancellable = false}) == Wait::Reply)
        return true;
    reportReaderFault(source, text::kSsDataUnanswered, text::kSheetNotReadTitle);
    return false;
}

/// The sheet's status, two digits a side: side 1 stands last. Side 2 counts only when it is read at all.
bool statusIsGood(ReaderContract& oReader, const std::string& sData)
{
    const std::string sSide1 = Right(sData, 2);
    if (sSide1 != kGoodStatusSS) {
        ReturnErrorSS(oReader, sSide1);
        return false;
    }
    const std::string sSide2 = Left(sData, 2);
    if (sSide2 != kGoodStatusSS && readsBothSides(oReader)) {
        ReturnErrorSS(oReader, sSide2);
        return false;
    }
    return true;
}

/// Asks for the timing marks. A side that does not reply is left uncounted, and side 2 is not asked after it.
void readTimingMarks(ReaderContract& oReader, SheetSS& sheet)
{
    if (!sheet.ask(oReader, querySS("T"), False))
        return;
    oReader.Side1TimingMarks(timingMarksSS(sheet.sData));
    if (readsBothSides(oReader) && sheet.ask(oReader, std::string(kSide2SS) + querySS("T"), False))
        oReader.Side2TimingMarks(timingMarksSS(sheet.sData));
}

/// Fetches the barcode into element 1; the pause gives the rest of the frame time to arrive.
bool readBarcode(ReaderContract& oReader, SheetSS& sheet)
{
    sheet.sCmd = settingSS("BA05");
    oReader.fComm().mscComm().Output(sheet.sCmd);
    if (!dataComes(oReader, kReadPage))
        return false;
    sheet.sBarcodeArr.ReDim(1, 1);
    Sleep(oReader.SleepTime());
    while (oReader.fComm().mscComm().InBufferCount() > 0) {
        sheet.bDataArr[0] = takeByte(oReader);
        sheet.sBarcodeArr(1) += Chr(sheet.bDataArr[0]);
    }
    sheet.sBarcodeArr(1) = barcodeOfFrameSS(sheet.sBarcodeArr(1));
    return true;
}

/// What differs between the two sides of a page.
struct PageSide {
    std::string_view prefix;
    Int16 (ReaderContract::*rows)() const;
    ColumnLettersSS (*letters)(const ReaderContract& oReader);
};

constexpr PageSide kFront = {"", &ReaderContract::LargestSide1Rows, [](const ReaderContract& oReader) {
                                 return oReader.ReaderType() == kelReaderTypeSekonicSR430 ? ColumnLettersSS::SR430
                                                                                          : ColumnLettersSS::Upwards;
                             }};
// The back is named upwards on every model.
constexpr PageSide kBack = {kSide2SS, &ReaderContract::LargestSide2Rows,
                            [](const ReaderContract&) { return ColumnLettersSS::Upwards; }};

/// The side of a page that is being read.
struct PageReadSS {
    std::string sRowCount;
    PageReplySS reply;

    KEL_TELLS(sRowCount, reply)
};

/// Fetches all marks of one side. The reply has no end of its own: it is over with the last row, or when nothing has
/// come for one pause.
bool readSide(ReaderContract& oReader, const PageSide& side, MarkArray& marks, PageReadSS& read)
{
    read = {.sRowCount = formatZeros((oReader.*side.rows)(), 3), .reply = {}};
    oReader.fComm().mscComm().Output(std::string(side.prefix) + readingSS("ED001" + read.sRowCount));
    if (!dataComes(oReader, kReadEntirePage))
        return false;
    oReader.fComm().mscComm().InputLen(1);
    while (oReader.fComm().mscComm().InBufferCount() > 0 && read.reply.row() <= (oReader.*side.rows)()) {
        PageStepSS step = PageStepSS::ElementOpen;
        while (step != PageStepSS::ElementDone) {
            const Byte bData = takeByte(oReader);
            step = read.reply.take(marks, bData, side.letters(oReader));
            // The value that follows goes to the column before, and the read goes on.
            if (step == PageStepSS::WrongColumn)
                reportReaderFault(kReadEntirePage, text::kSsWrongColumn, text::kSheetNotReadTitle);
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                Sleep(oReader.SleepTime());
        }
    }
    return true;
}

/// Fetches the marks of the windows of one side.
bool readWindowsOfSide(ReaderContract& oReader, std::string_view prefix, std::string& sOutput)
{
    oReader.fComm().mscComm().Output(std::string(prefix) + readingSS("R*"));
    if (!dataComes(oReader, kReadWindows))
        return false;
    oReader.fComm().mscComm().InputLen(1);
    while (oReader.fComm().mscComm().InBufferCount() != 0) {
        sOutput += Chr(takeByte(oReader));
        DoEvents();
        if (oReader.fComm().mscComm().InBufferCount() == 0)
            Sleep(oReader.SleepTime());
    }
    return true;
}

} // namespace

Boolean ReadPageSS(ReaderContract& oReader)
{
    Boolean bResult = False;
    SheetSS sheet;
    guarded(kReadPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(sheet), [&] {
        sheet.sBarcodeArr.ReDim(0, 0);
        drainInput(oReader);
        if (wantsBarcode(oReader))
            InitBarcodeSS(oReader);
        if (oReader.Printer()->Initialized() && oReader.Printer()->Active())
            InitPrinterSS(oReader);

        // The reader replies when a sheet has passed: this is the wait for the sheet.
        if (!sheet.ask(oReader, "?\r", True) || !statusIsGood(oReader, sheet.sData))
            return;
        readTimingMarks(oReader, sheet);
        if (wantsBarcode(oReader) && !readBarcode(oReader, sheet))
            return;
        oReader.BarcodeArray(sheet.sBarcodeArr);
        bResult =
            oReader.RecognitionMode() == kelRecognitionTypePage ? ReadEntirePageSS(oReader) : ReadWindowsSS(oReader);
    });
    return bResult;
}

Boolean ReadEntirePageSS(ReaderContract& oReader)
{
    Boolean bResult = False;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    PageReadSS read;
    guarded(kReadEntirePage, KEL_PARAMETERS(oReader) + KEL_LOCALS(read, iSide1Arr, iSide2Arr), [&] {
        drainInput(oReader);
        iSide1Arr.ReDim(oReader.LargestSide1Rows(), kPageColumns);
        if (!readSide(oReader, kFront, iSide1Arr, read))
            return;
        if (readsBothSides(oReader)) {
            drainInput(oReader);
            iSide2Arr.ReDim(oReader.LargestSide2Rows(), kPageColumns);
            if (!readSide(oReader, kBack, iSide2Arr, read))
                return;
        }
        oReader.Side1Array(iSide1Arr);
        oReader.Side2Array(iSide2Arr);
        bResult = True;
    });
    return bResult;
}

Boolean ReadWindowsSS(ReaderContract& oReader)
{
    Boolean bResult = False;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    std::string sOutput;
    guarded(kReadWindows, KEL_PARAMETERS(oReader) + KEL_LOCALS(iSide1Arr, iSide2Arr, sOutput), [&] {
        drainInput(oReader);
        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        if (!readWindowsOfSide(oReader, "", sOutput))
            return;
        AddToArraySS(oReader, sOutput, 1, iSide1Arr);
        if (readsBothSides(oReader)) {
            drainInput(oReader);
            iSide2Arr.ReDim(oReader.LargestSide2Rows(), oReader.LargestSide2Cols());
            sOutput.clear();
            if (!readWindowsOfSide(oReader, kSide2SS, sOutput))
                return;
            AddToArraySS(oReader, sOutput, 2, iSide2Arr);
        }
        oReader.Side1Array(iSide1Arr);
        oReader.Side2Array(iSide2Arr);
        bResult = True;
    });
    return bResult;
}

void AddToArraySS(ReaderContract& oReader, const std::string& sOutput, Int16 iPage, MarkArray& iPageArr)
{
    std::vector<Reference<clsKELReaderWindow>> windows;
    WindowPlacingSS at;
    guarded(kAddToArray, KEL_PARAMETERS(oReader, sOutput, iPage, iPageArr) + KEL_LOCALS(windows, at), [&] {
        const Int32 lWindows = oReader.Windows()->Count();
        for (Int32 lWindow = 1; lWindow <= lWindows; ++lWindow)
            windows.push_back(oReader.Windows()->Item(lWindow));
        placeWindowReplySS(sOutput, windows, iPage, iPageArr, at);
    });
}

} // namespace kel
