// SPDX-License-Identifier: MIT
#include "reader/ReaderSession.h"

#include "contract/AnswerKeyObject.h"
#include "contract/DictionaryVariant.h"
#include "dispatch/basRead.h"
#include "failure/TypeName.h"
#include "failure/guarded.h"
#include "reader/HostAnswerKey.h"
#include "reader/HostCarrier.h"
#include "reader/frmComm.h"
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
      fPComm_(makeReference<frmComm>()), fComm_(fPComm_), fCommForDrivers_(fPComm_)
{
}

ReaderSession::~ReaderSession()
{
    life_.ends();
    cBarcodes_ = nullptr;
    cWindows_ = nullptr;
    cProfiles_ = nullptr;
    cPrinter_ = nullptr;
    carrier(nullptr);
    AnswerKey(nullptr);
    fPComm_ = nullptr;
}

Boolean ReaderSession::StartReader()
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.StartReader", moduleOf(*this), [&] {
        stop_.begin();
        bResult = ReaderInit(*this);
    });
    return bResult;
}

Boolean ReaderSession::ReadPage(Boolean InitializePrinter)
{
    Boolean bResult = False;
    Boolean bInitialized = False;
    Boolean bReject = False;
    Boolean bCancel = False;
    Boolean bAbort = False;
    Boolean bCancelScan = False;
    const auto variables = KEL_PARAMETERS(InitializePrinter) +
                           KEL_LOCALS(bInitialized, bReject, bCancel, bAbort, bCancelScan) + moduleOf(*this);
    guarded("KELReader81 - clsKELReader.ReadPage", variables, [&] {
        stop_.waitHere();
        cPrinter_->Initialized(InitializePrinter);
        bInitialized = cPrinter_->Initialized();
        events_.raise([&](ReaderEvents& host) { host.BeforeSheet(bInitialized); });
        if (CancelScan())
            return;

        sBarcodeArr_.ReDim(0, 0);
        bResult = ReaderRead(*this);
        if (!bResult)
            return;

        bSheetEjected_ = False;
        events_.raise([&](ReaderEvents& host) { host.ReadSheet(iSide1Arr_, iSide2Arr_, sBarcodeArr_, bReject); });
        if (cPrinter_->Initialized() && cPrinter_->Active())
            printSheet(bReject, bCancel, bAbort);

        bCancelScan = CancelScan();
        events_.raise([&](ReaderEvents& host) { host.AfterSheet(bCancelScan); });
        CancelScan(bCancelScan);
        bResult = True;
    });
    return bResult;
}

void ReaderSession::printSheet(Boolean bReject, Boolean& bCancel, Boolean& bAbort)
{
    bCancel = bReject;
    events_.raise([&](ReaderEvents& host) { host.BeforePrint(bCancel); });
    bAbort = !cPrinter_->Active() || bCancel;
    if (ReaderPrint(*this, bAbort, bSheetEjected_))
        events_.raise([](ReaderEvents& host) { host.AfterPrint(); });
}

Boolean ReaderSession::ReadBatch(Boolean InitializePrinter, Int32 lMaxSheets, Int32& lSheetCount)
{
    Boolean bResult = False;
    Boolean bReadPage = False;
    const auto variables =
        KEL_PARAMETERS(InitializePrinter, lMaxSheets, lSheetCount) + KEL_LOCALS(bReadPage) + moduleOf(*this);
    guarded("KELReader81 - clsKELReader.ReadBatch", variables, [&] {
        if (!StartReader()) {
            EndReader();
            return;
        }

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
    guarded("KELReader81 - clsKELReader.EndReader", moduleOf(*this), [&] {
        bResult = ReaderClose(*this);
        AnswerKey(nullptr);
    });
    return bResult;
}

void ReaderSession::RejectPage()
{
    guarded("KELReader81 - clsKELReader.RejectPage", moduleOf(*this), [&] {
        if (!bSheetEjected_)
            ReaderReject(*this);
        bSheetEjected_ = True;
    });
}

void ReaderSession::EjectPage()
{
    guarded("KELReader81 - clsKELReader.EjectPage", moduleOf(*this), [&] {
        if (bSheetEjected_)
            return;
        bSheetEjected_ = True;
        ReaderEject(*this, bSheetEjected_);
    });
}

Boolean ReaderSession::LoadDefaults(kelReaderType eReaderType)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.LoadDefaults", KEL_PARAMETERS(eReaderType) + moduleOf(*this), [&] {
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
    guarded("KELReader81 - clsKELReader.Locate", KEL_PARAMETERS(iStartPort) + moduleOf(*this), [&] {
        stop_.waitHere();
        bResult = ReaderLocate(*this, iStartPort);
    });
    return bResult;
}

Boolean ReaderSession::Firmware(std::string& sReturn)
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.Firmware", KEL_PARAMETERS(sReturn) + moduleOf(*this), [&] {
        stop_.waitHere();
        bResult = ReaderFirmware(*this, sReturn);
    });
    return bResult;
}

std::string ReaderSession::dumpMembers() const
{
    VariableLines lines;
    lines.add("Barcodes, Windows, Profiles, Printer", cBarcodes_, cWindows_, cProfiles_, cPrinter_);
    lines.add("fComm, AnswerKey, fPComm", byTypeName(fComm_.shared().get()), byTypeName(oAnswerKey_.shared().get()),
              byTypeName(fPComm_.shared().get()));
    lines.add("uReader, lHelpIDArr, bSheetEjected", Variant(RecordValue{"kelReaderStruct"}), lHelpIDArr_,
              bSheetEjected_);
    lines.add("iLargestSide1Rows, iLargestSide1Cols, iLargestSide2Rows, iLargestSide2Cols", iLargestSide1Rows_,
              iLargestSide1Cols_, iLargestSide2Rows_, iLargestSide2Cols_);
    lines.add("iSide1TimingMarks, iSide2TimingMarks", iSide1TimingMarks_, iSide2TimingMarks_);
    lines.add("iSide1Arr, iSide2Arr, sBarcodeArr", iSide1Arr_, iSide2Arr_, sBarcodeArr_);
    lines.add("iSide1RowsArr, iSide1ColsArr, iSide2RowsArr, iSide2ColsArr", iSide1RowsArr_, iSide1ColsArr_,
              iSide2RowsArr_, iSide2ColsArr_);
    return lines.text();
}

Int32& ReaderSession::helpID(kelReaderHelpID eHelpIDType, SourceLocation where)
{
    return captured("clsKELReader.HelpID", KEL_PARAMETERS(eHelpIDType) + moduleOf(*this),
                    [&]() -> Int32& { return lHelpIDArr_(eHelpIDType, where); });
}

void ReaderSession::ReaderType(kelReaderType value)
{
    captured("clsKELReader.ReaderType", KEL_PARAMETERS(value) + moduleOf(*this), [&] {
        uReader_.ReaderType = value;
        cPrinter_->SetType(value);
    });
}

void ReaderSession::AnswerKey(Reference<AnswerKeyObject> value)
{
    // The host's old key may be at its end here.
    const HostCode host;
    oKeyForDrivers_ = hostAnswerKey(value);
    oAnswerKey_ = std::move(value);
}

void ReaderSession::carrier(Reference<Carrier> value)
{
    const HostCode host;
    if (!value || value == fPComm_)
        fCommForDrivers_ = value;
    else
        fCommForDrivers_ = makeReference<HostCarrier>(value);
    fComm_ = std::move(value);
}

std::string ReaderSession::Parity()
{
    if (uReader_.Parity.empty())
        uReader_.Parity = "N";
    return uReader_.Parity;
}

void ReaderSession::Side1Rows(const PageArray& rows)
{
    guarded("KELReader81 - clsKELReader.Side1Rows", KEL_PARAMETERS(rows) + moduleOf(*this), [&] {
        iSide1RowsArr_ = rows;
        iLargestSide1Rows_ = 0;
        iLargestSide1Rows_ = largestEntry(rows);
    });
}

void ReaderSession::Side1Cols(const PageArray& columns)
{
    guarded("KELReader81 - clsKELReader.Side1Cols", KEL_PARAMETERS(columns) + moduleOf(*this), [&] {
        iSide1ColsArr_ = columns;
        iLargestSide1Cols_ = 0;
        iLargestSide1Cols_ = largestEntry(columns);
    });
}

void ReaderSession::Side2Rows(const PageArray& rows)
{
    guarded("KELReader81 - clsKELReader.Side2Rows", KEL_PARAMETERS(rows) + moduleOf(*this), [&] {
        iSide2RowsArr_ = rows;
        iLargestSide2Rows_ = 0;
        iLargestSide2Rows_ = largestEntry(rows);
    });
}

void ReaderSession::Side2Cols(const PageArray& columns)
{
    guarded("KELReader81 - clsKELReader.Side2Cols", KEL_PARAMETERS(columns) + moduleOf(*this), [&] {
        iSide2ColsArr_ = columns;
        iLargestSide2Cols_ = 0;
        iLargestSide2Cols_ = largestEntry(columns);
    });
}

void ReaderSession::TranslateDataEvent(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array,
                                       TextArray& sBarcodeArray, Boolean& bNeedsMoreData)
{
    const auto variables =
        KEL_PARAMETERS(oData, iSide1Array, iSide2Array, sBarcodeArray, bNeedsMoreData) + moduleOf(*this);
    captured("clsKELReader.TranslateDataEvent", variables, [&] {
        events_.raise([&](ReaderEvents& host) {
            host.TranslateData(oData, iSide1Array, iSide2Array, sBarcodeArray, bNeedsMoreData);
        });
    });
}

void ReaderSession::GetQuestionsOnPageEvent(Int16& iPage, Int16& iNumberQuestions)
{
    captured("clsKELReader.GetQuestionsOnPageEvent", KEL_PARAMETERS(iPage, iNumberQuestions) + moduleOf(*this),
             [&] { events_.raise([&](ReaderEvents& host) { host.GetQuestionsOnPage(iPage, iNumberQuestions); }); });
}

} // namespace kel
