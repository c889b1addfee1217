#include "reader/ReaderSession.h"

#include "dispatch/basRead.h"
#include "dispatch/frmComm.h"
#include "failure/guarded.h"
#include "reader/AnswerKeyObject.h"
#include "types/Text.h"

namespace kel {

namespace {

/// The largest entry from element 1 on, 0 if none is above that. Element 0 is no page.
Int16 largestEntry(const PageArray& entries)
{
    Int16 iLargest = 0;
    for (Int32 lPage = 1; lPage <= entries.UBound(); ++lPage) {
        if (entries(lPage) > iLargest)
            iLargest = entries(lPage);
    }
    return iLargest;
}

} // namespace

ReaderSession::ReaderSession()
    : lHelpIDArr_(kelReaderHelpIDProperties, kelReaderHelpIDProperties),
      cPrinter_(makeReference<clsKELReaderPrinter>()), cWindows_(makeReference<clsKELReaderWindows>()),
      cProfiles_(makeReference<clsKELReaderProfiles>()), cBarcodes_(makeReference<clsKELReaderBarcodes>()),
      fPComm_(makeReference<frmComm>()), fComm_(fPComm_)
{
}

ReaderSession::~ReaderSession()
{
    cBarcodes_ = nullptr;
    cWindows_ = nullptr;
    cProfiles_ = nullptr;
    cPrinter_ = nullptr;
    fComm_ = nullptr;
    oAnswerKey_ = nullptr;
    fPComm_ = nullptr;
}

Boolean ReaderSession::StartReader()
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.StartReader", [&] {
        CancelScan(False);
        bResult = ReaderInit(*this);
    });
    return bResult;
}

Boolean ReaderSession::ReadPage(Boolean InitializePrinter)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.ReadPage", [&] {
        cPrinter_->Initialized(InitializePrinter);
        Boolean bInitialized = cPrinter_->Initialized();
        events_.raise([&](ReaderEvents& host) { host.BeforeSheet(bInitialized); });
        if (CancelScan())
            return;

        sBarcodeArr_.ReDim(0, 0);
        bResult = ReaderRead(*this);
        if (!bResult)
            return;

        bSheetEjected_ = False;
        Boolean bReject = False;
        events_.raise([&](ReaderEvents& host) { host.ReadSheet(iSide1Arr_, iSide2Arr_, sBarcodeArr_, bReject); });
        if (cPrinter_->Initialized() && cPrinter_->Active())
            printSheet(bReject);

        Boolean bCancelScan = CancelScan();
        events_.raise([&](ReaderEvents& host) { host.AfterSheet(bCancelScan); });
        CancelScan(bCancelScan);
        bResult = True;
    });
    return bResult;
}

void ReaderSession::printSheet(Boolean bReject)
{
    Boolean bCancel = bReject;
    events_.raise([&](ReaderEvents& host) { host.BeforePrint(bCancel); });
    const Boolean bAbort = !cPrinter_->Active() || bCancel;
    if (ReaderPrint(*this, bAbort, bSheetEjected_))
        events_.raise([](ReaderEvents& host) { host.AfterPrint(); });
}

Boolean ReaderSession::ReadBatch(Boolean InitializePrinter, Int32 lMaxSheets, Int32& lSheetCount)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.ReadBatch", [&] {
        if (!StartReader()) {
            EndReader();
            return;
        }

        Boolean bReadPage = False;
        while (!CancelScan() && !(lSheetCount >= lMaxSheets && lMaxSheets >= 0)) {
            bReadPage = ReadPage(InitializePrinter);
            lSheetCount = checkedAdd(lSheetCount, 1);
        }

        // The last sheet of a batch is not left in the reader.
        if (CancelScan() || (lSheetCount == lMaxSheets && lMaxSheets >= 1)) {
            CancelScan(True);
            if (!bSheetEjected_ && bReadPage)
                EjectPage();
        }
        EndReader();
        bResult = True;
    });
    return bResult;
}

Boolean ReaderSession::EndReader()
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.EndReader", [&] {
        bResult = ReaderClose(*this);
        oAnswerKey_ = nullptr;
    });
    return bResult;
}

void ReaderSession::RejectPage()
{
    guarded("KELReader81 - clsKELReader.RejectPage", [&] {
        if (!bSheetEjected_)
            ReaderReject(*this);
        bSheetEjected_ = True;
    });
}

void ReaderSession::EjectPage()
{
    guarded("KELReader81 - clsKELReader.EjectPage", [&] {
        if (bSheetEjected_)
            return;
        bSheetEjected_ = True;
        ReaderEject(*this, bSheetEjected_);
    });
}

Boolean ReaderSession::LoadDefaults(kelReaderType eReaderType)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.LoadDefaults", [&] {
        ReaderType(eReaderType);
        const auto profile = [&] { return cProfiles_->Item(CStr(eReaderType)); };
        uReader_.ReaderGrade = profile()->ReaderGrade();
        uReader_.Barcode = profile()->Barcode();
        uReader_.Duplex = profile()->Duplex();
        uReader_.Feeder = profile()->Feeder();
        uReader_.FlowControl = profile()->FlowControl();
        uReader_.MarkCutOff = profile()->MarkCutOff();
        uReader_.MarkDiscrimination = profile()->MarkDiscrimination();
        cPrinter_->Enabled(profile()->Printer());
        uReader_.RecognitionThreshold = profile()->RecognitionThreshold();
        uReader_.Rejecter = profile()->Rejecter();
        uReader_.BaudRate = profile()->BaudRate();
        uReader_.DataBits = profile()->DataBits();
        uReader_.Parity = profile()->Parity();
        uReader_.StopBits = profile()->StopBits();
        uReader_.SleepTime = profile()->SleepTime();
        uReader_.TimeOut = profile()->Timeout();
        bResult = True;
    });
    return bResult;
}

Boolean ReaderSession::Locate(Int16 iStartPort)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.Locate", [&] { bResult = ReaderLocate(*this, iStartPort); });
    return bResult;
}

Boolean ReaderSession::Firmware(std::string& sReturn)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.Firmware", [&] { bResult = ReaderFirmware(*this, sReturn); });
    return bResult;
}

Int32& ReaderSession::helpID(kelReaderHelpID eHelpIDType, SourceLocation where)
{
    return lHelpIDArr_(eHelpIDType, where);
}

void ReaderSession::ReaderType(kelReaderType value)
{
    uReader_.ReaderType = value;
    cPrinter_->SetType(value);
}

std::string ReaderSession::Parity()
{
    if (uReader_.Parity.empty())
        uReader_.Parity = "N";
    return uReader_.Parity;
}

void ReaderSession::Side1Rows(const PageArray& rows)
{
    guarded("KELReader81 - clsKELReader.Side1Rows", [&] {
        iSide1RowsArr_ = rows;
        iLargestSide1Rows_ = 0;
        iLargestSide1Rows_ = largestEntry(rows);
    });
}

void ReaderSession::Side1Cols(const PageArray& columns)
{
    guarded("KELReader81 - clsKELReader.Side1Cols", [&] {
        iSide1ColsArr_ = columns;
        iLargestSide1Cols_ = 0;
        iLargestSide1Cols_ = largestEntry(columns);
    });
}

void ReaderSession::Side2Rows(const PageArray& rows)
{
    guarded("KELReader81 - clsKELReader.Side2Rows", [&] {
        iSide2RowsArr_ = rows;
        iLargestSide2Rows_ = 0;
        iLargestSide2Rows_ = largestEntry(rows);
    });
}

void ReaderSession::Side2Cols(const PageArray& columns)
{
    guarded("KELReader81 - clsKELReader.Side2Cols", [&] {
        iSide2ColsArr_ = columns;
        iLargestSide2Cols_ = 0;
        iLargestSide2Cols_ = largestEntry(columns);
    });
}

void ReaderSession::TranslateDataEvent(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array,
                                       TextArray& sBarcodeArray, Boolean& bNeedsMoreData)
{
    events_.raise([&](ReaderEvents& host) {
        host.TranslateData(oData, iSide1Array, iSide2Array, sBarcodeArray, bNeedsMoreData);
    });
}

void ReaderSession::GetQuestionsOnPageEvent(Int16& iPage, Int16& iNumberQuestions)
{
    events_.raise([&](ReaderEvents& host) { host.GetQuestionsOnPage(iPage, iNumberQuestions); });
}

} // namespace kel
