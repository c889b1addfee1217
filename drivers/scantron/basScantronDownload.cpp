// SPDX-License-Identifier: MIT
#include "drivers/scantron/basScantron.h"

#include "contract/clsKELReaderWindows.h"
#include "drivers/scantron/FormCommands.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "types/Text.h"

#include <concepts>

namespace kel {

constinit thread_local Int16 iRecognitionOffset = 0;

namespace {

constexpr const char* kDownloadForm = "KELReader81 - basScantron.DownloadFormST";

/// What the reports say of the two sides.
struct SideTexts {
    int side;
    TextNumber windowFailed;
    TextNumber pageFailed;
    TextNumber name;
};

constexpr SideTexts kSide1 = {1, text::kStAreaRefused, text::kStAreaRefused, text::kStSide1};
constexpr SideTexts kSide2 = {2, text::kStWindowOfSide2Refused, text::kStSide2Refused, text::kStSide2};

/// The models that take their threshold at the start, a form of column definitions, and send raw values.
bool isColumnModel(kelReaderType eReaderType)
{
    return eReaderType == kelReaderTypeScantron8000 || eReaderType == kelReaderTypeScantron8400;
}

bool isPageMode(const ReaderContract& oReader)
{
    return oReader.RecognitionMode() == kelRecognitionTypePage;
}

/// Sends a command of the form; one that is not acknowledged is reported in the words that `describe` gives,
/// which begin with the text `failed`.
template <std::invocable Describe>
bool send(ReaderContract& oReader, const std::string& sCmd, TextNumber failed, Describe&& describe)
{
    if (SendCommandST(oReader, sCmd))
        return true;
    const ReportedText reported(failed);
    reportReaderFault(kDownloadForm, describe(), VBLM_RTString(text::kNotReadyTitle));
    return false;
}

bool send(ReaderContract& oReader, const std::string& sCmd, TextNumber failed)
{
    return send(oReader, sCmd, failed, [&] { return VBLM_RTString(failed); });
}

/// The place of a definition within the job: message, sheet and side, one to a line.
std::string placeOf(TextNumber failed, const SideTexts& texts, Int16 iSheetIndex)
{
    std::string sText = VBLM_RTString(failed);
    sText.append(kLineEnd).append(kLineEnd);
    sText += VBLM_RTString(text::kStSheetOfForm) + CStr(iSheetIndex);
    sText.append(kLineEnd);
    return sText + VBLM_RTString(texts.name);
}

/// The window that goes to the reader.
struct SentWindow {
    Int32 lIndex = 0;
    WindowFieldsST fields;

    KEL_TELLS(lIndex, fields)
};

bool sendWindow(ReaderContract& oReader, const clsKELReaderWindow& cWindow, const SideTexts& texts, Int16 iSheetIndex,
                SentWindow& sent)
{
    return send(oReader, windowDefinitionST(texts.side, cWindow, sent.fields), texts.windowFailed, [&] {
        std::string sText = placeOf(texts.windowFailed, texts, iSheetIndex);
        sText.append(kLineEnd);
        return sText + VBLM_RTString(text::kStReadWindow) + CStr(sent.lIndex);
    });
}

/// The windows of page 1, up to the first of a later page.
bool sendWindowsOfSide1(ReaderContract& oReader, Int16 iSheetIndex, SentWindow& sent)
{
    const Int32 lCount = oReader.Windows()->Count();
    for (sent.lIndex = 1; sent.lIndex <= lCount; ++sent.lIndex) {
        const Reference<clsKELReaderWindow> cWindow = oReader.Windows()->Item(sent.lIndex);
        if (cWindow->Page() > 1)
            break;
        if (!sendWindow(oReader, *cWindow, kSide1, iSheetIndex, sent))
            return false;
    }
    return true;
}

/// The windows of page 2, up to the first of a later page.
bool sendWindowsOfSide2(ReaderContract& oReader, Int16 iSheetIndex, SentWindow& sent)
{
    const Int32 lCount = oReader.Windows()->Count();
    for (sent.lIndex = 1; sent.lIndex <= lCount; ++sent.lIndex) {
        const Reference<clsKELReaderWindow> cWindow = oReader.Windows()->Item(sent.lIndex);
        if (cWindow->Page() > 2)
            break;
        if (cWindow->Page() == 2 && !sendWindow(oReader, *cWindow, kSide2, iSheetIndex, sent))
            return false;
    }
    return true;
}

/// The one rectangle of a side; a side without rows has none.
bool sendPage(ReaderContract& oReader, const PageArray& iRowsArr, const PageArray& iColsArr, const SideTexts& texts,
              Int16 iSheetIndex)
{
    if (iRowsArr(iSheetIndex) <= 0)
        return true;
    const auto definition = isColumnModel(oReader.ReaderType()) ? columnDefinitionST : pageDefinitionST;
    return send(oReader, definition(texts.side, iRowsArr(iSheetIndex), iColsArr(iSheetIndex)), texts.pageFailed,
                [&] { return placeOf(texts.pageFailed, texts, iSheetIndex); });
}

} // namespace

Boolean DownloadFormST(ReaderContract& oReader)
{
    Boolean bResult = False;
    PageArray iSide1RowsArr;
    PageArray iSide1ColsArr;
    PageArray iSide2RowsArr;
    PageArray iSide2ColsArr;
    Int16 iSheetIndex = 0;
    SentWindow sent;
    const auto variables = KEL_PARAMETERS(oReader) +
                           KEL_LOCALS(iSide1RowsArr, iSide1ColsArr, iSide2RowsArr, iSide2ColsArr, iSheetIndex, sent);
    guarded(kDownloadForm, variables, [&] {
        const bool bColumnModel = isColumnModel(oReader.ReaderType());
        iRecognitionOffset = bColumnModel ? 0 : 48;
        if (bColumnModel &&
            !send(oReader, thresholdCommandST(oReader.RecognitionThreshold()), text::kStThresholdRefused))
            return;

        iSide1RowsArr = oReader.Side1Rows();
        iSide1ColsArr = oReader.Side1Cols();
        iSide2RowsArr = oReader.Side2Rows();
        iSide2ColsArr = oReader.Side2Cols();
        const Int32 lSheets = iSide1RowsArr.UBound();
        for (iSheetIndex = 1; iSheetIndex <= lSheets; ++iSheetIndex) {
            const bool bTwoSides = oReader.Duplex() && oReader.DuplexForm();
            const Int16 iSide2Rows = bTwoSides ? iSide2RowsArr(iSheetIndex) : Int16{0};
            if (!send(oReader, formStartST(iSide1RowsArr(iSheetIndex), iSide2Rows, iSide1ColsArr(iSheetIndex)),
                      text::kStFormStartRefused))
                return;

            if (isPageMode(oReader) ? !sendPage(oReader, iSide1RowsArr, iSide1ColsArr, kSide1, iSheetIndex)
                                    : !sendWindowsOfSide1(oReader, iSheetIndex, sent))
                return;
            if (oReader.Duplex() && oReader.DuplexForm()) {
                if (isPageMode(oReader) ? !sendPage(oReader, iSide2RowsArr, iSide2ColsArr, kSide2, iSheetIndex)
                                        : !sendWindowsOfSide2(oReader, iSheetIndex, sent))
                    return;
            }
            if (!send(oReader, formEndST(), text::kStFormEndRefused))
                return;
        }
        bResult = True;
    });
    return bResult;
}

} // namespace kel
