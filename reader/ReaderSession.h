// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"
#include "contract/clsKELReaderBarcodes.h"
#include "contract/clsKELReaderPrinter.h"
#include "contract/clsKELReaderWindows.h"
#include "failure/ObjectLife.h"
#include "reader/EventSource.h"
#include "reader/StopRequest.h"
#include "reader/kelReaderStruct.h"

#include "profiles/clsKELReaderProfiles.h"

namespace kel {

/// What a reader object consists of: its members, its settings, and the session that the drivers work on. The public
/// object hands everything on to it; the drivers see it as the contract.
class ReaderSession final : public ReaderContract {
public:
    static constexpr const char* kClassName = "clsKELReader";

    /// Creation order: the stop flag, the help numbers, printer, windows, profiles, barcodes, the carrier.
    ReaderSession();

    /// Termination order: barcodes, windows, profiles, printer, `fComm`, the answer key, then the object's own
    /// carrier. An open line is not closed here in any other way.
    ~ReaderSession() override;

    ReaderSession(const ReaderSession&) = delete;
    ReaderSession& operator=(const ReaderSession&) = delete;

    // The session
    Boolean StartReader();
    Boolean ReadPage(Boolean InitializePrinter);
    Boolean ReadBatch(Boolean InitializePrinter, Int32 lMaxSheets, Int32& lSheetCount);
    Boolean EndReader();
    void RejectPage() override;
    void EjectPage();
    Boolean LoadDefaults(kelReaderType eReaderType);
    Boolean Locate(Int16 iStartPort);
    Boolean Firmware(std::string& sReturn);

    /// The lines of the object's own variables for a dump.
    [[nodiscard]] std::string dumpMembers() const;

    [[nodiscard]] Int32& helpID(kelReaderHelpID eHelpIDType, SourceLocation where);
    [[nodiscard]] EventSource& events() { return events_; }
    [[nodiscard]] const MarkArray& side1() const { return iSide1Arr_; }
    [[nodiscard]] const MarkArray& side2() const { return iSide2Arr_; }

    // Settings that no driver may use, and the setters of those that it may only read
    [[nodiscard]] kelReaderStruct& settings() { return uReader_; }
    void ReaderType(kelReaderType value);
    void Windows(Reference<clsKELReaderWindows> value) { cWindows_ = std::move(value); }
    void Barcodes(Reference<clsKELReaderBarcodes> value) { cBarcodes_ = std::move(value); }
    void Printer(Reference<clsKELReaderPrinter> value) { cPrinter_ = std::move(value); }
    void Profiles(Reference<clsKELReaderProfiles> value) { cProfiles_ = std::move(value); }
    void AnswerKey(Reference<AnswerKeyObject> value);
    [[nodiscard]] const Reference<AnswerKeyObject>& keyOfHost() const { return oAnswerKey_; }
    void carrier(Reference<Carrier> value);
    [[nodiscard]] const Reference<Carrier>& carrier() const { return fComm_; }
    void Side1Rows(const PageArray& rows);
    void Side1Cols(const PageArray& columns);
    void Side2Rows(const PageArray& rows);
    void Side2Cols(const PageArray& columns);

    // The contract of the drivers
    [[nodiscard]] kelReaderType ReaderType() const override { return uReader_.ReaderType; }
    [[nodiscard]] Boolean ReaderGrade() const override { return uReader_.ReaderGrade; }
    [[nodiscard]] kelReaderBaudRate BaudRate() const override { return uReader_.BaudRate; }
    [[nodiscard]] kelReaderDataBits DataBits() const override { return uReader_.DataBits; }
    [[nodiscard]] Boolean Duplex() const override { return uReader_.Duplex; }
    [[nodiscard]] Boolean DuplexForm() const override { return uReader_.DuplexForm; }
    [[nodiscard]] Boolean Barcode() const override { return uReader_.Barcode; }
    [[nodiscard]] Boolean Feeder() const override { return uReader_.Feeder; }
    [[nodiscard]] kelReaderFlowControl FlowControl() const override { return uReader_.FlowControl; }
    [[nodiscard]] Int16 MarkDiscrimination() const override { return uReader_.MarkDiscrimination; }
    [[nodiscard]] std::string Parity() override;
    [[nodiscard]] Int16 Port() const override { return uReader_.Port; }
    void Port(Int16 value) override { uReader_.Port = value; }
    [[nodiscard]] Int16 RecognitionThreshold() const override { return uReader_.RecognitionThreshold; }
    [[nodiscard]] kelRecognitionType RecognitionMode() const override { return uReader_.RecognitionMode; }
    [[nodiscard]] Boolean Rejecter() const override { return uReader_.Rejecter; }
    void Rejecter(Boolean value) override { uReader_.Rejecter = value; }
    [[nodiscard]] float StopBits() const override { return uReader_.StopBits; }
    [[nodiscard]] Int32 SleepTime() const override { return uReader_.SleepTime; }
    void SleepTime(Int32 milliseconds) override { uReader_.SleepTime = milliseconds; }
    [[nodiscard]] Int32 Timeout() const override { return uReader_.TimeOut; }
    void Timeout(Int32 seconds) override { uReader_.TimeOut = seconds; }
    [[nodiscard]] Reference<clsKELReaderWindows> Windows() const override { return cWindows_; }
    [[nodiscard]] Reference<clsKELReaderBarcodes> Barcodes() const override { return cBarcodes_; }
    [[nodiscard]] Reference<clsKELReaderPrinter> Printer() const override { return cPrinter_; }
    [[nodiscard]] Reference<clsKELReaderProfiles> Profiles() const override { return cProfiles_; }
    [[nodiscard]] Reference<AnswerKeyObject> AnswerKey() const override { return oKeyForDrivers_; }
    [[nodiscard]] PageArray Side1Rows() const override { return iSide1RowsArr_; }
    [[nodiscard]] PageArray Side1Cols() const override { return iSide1ColsArr_; }
    [[nodiscard]] PageArray Side2Rows() const override { return iSide2RowsArr_; }
    [[nodiscard]] PageArray Side2Cols() const override { return iSide2ColsArr_; }
    [[nodiscard]] Int16 LargestSide1Rows() const override { return iLargestSide1Rows_; }
    [[nodiscard]] Int16 LargestSide1Cols() const override { return iLargestSide1Cols_; }
    [[nodiscard]] Int16 LargestSide2Rows() const override { return iLargestSide2Rows_; }
    [[nodiscard]] Int16 LargestSide2Cols() const override { return iLargestSide2Cols_; }
    [[nodiscard]] Carrier& fComm() const override { return *fCommForDrivers_; }
    [[nodiscard]] Boolean CancelScan() const override { return stop_.value(); }
    void CancelScan(Boolean value) override { stop_.value(value); }
    /// The host's, from any thread: ends a wait that is under way.
    void demandStop(Boolean value) noexcept { stop_.demand(value); }
    void Side1TimingMarks(Int16 value) override { iSide1TimingMarks_ = value; }
    void Side2TimingMarks(Int16 value) override { iSide2TimingMarks_ = value; }
    [[nodiscard]] Int16 Side1TimingMarks() const override { return iSide1TimingMarks_; }
    [[nodiscard]] Int16 Side2TimingMarks() const override { return iSide2TimingMarks_; }
    void Side1Array(const MarkArray& marks) override { iSide1Arr_ = marks; }
    void Side2Array(const MarkArray& marks) override { iSide2Arr_ = marks; }
    void BarcodeArray(const TextArray& barcodes) override { sBarcodeArr_ = barcodes; }
    [[nodiscard]] TextArray BarcodeArray() const override { return sBarcodeArr_; }
    void TranslateDataEvent(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                            Boolean& bNeedsMoreData) override;
    void GetQuestionsOnPageEvent(Int16& iPage, Int16& iNumberQuestions) override;

private:
    static constexpr const char* kNameAndKind = "clsKELReader,1";

    void printSheet(Boolean bReject, Boolean& bCancel, Boolean& bAbort);

    ObjectLife life_{kNameAndKind};
    kelReaderStruct uReader_;
    StopRequest stop_{uReader_.CancelScan};
    Array1<Int32> lHelpIDArr_;
    Boolean bSheetEjected_;
    Int16 iLargestSide1Rows_ = 0;
    Int16 iLargestSide1Cols_ = 0;
    Int16 iLargestSide2Rows_ = 0;
    Int16 iLargestSide2Cols_ = 0;
    Int16 iSide1TimingMarks_ = 0;
    Int16 iSide2TimingMarks_ = 0;
    MarkArray iSide1Arr_;
    MarkArray iSide2Arr_;
    TextArray sBarcodeArr_;
    PageArray iSide1RowsArr_;
    PageArray iSide1ColsArr_;
    PageArray iSide2RowsArr_;
    PageArray iSide2ColsArr_;
    EventSource events_;
    Reference<clsKELReaderPrinter> cPrinter_;
    Reference<clsKELReaderWindows> cWindows_;
    Reference<clsKELReaderProfiles> cProfiles_;
    Reference<clsKELReaderBarcodes> cBarcodes_;
    Reference<AnswerKeyObject> oAnswerKey_;
    Reference<Carrier> fPComm_; // the object's own carrier
    Reference<Carrier> fComm_;  // the carrier in use
    // Key and carrier are the host's objects; the drivers use them as such.
    Reference<AnswerKeyObject> oKeyForDrivers_;
    Reference<Carrier> fCommForDrivers_;
};

} // namespace kel
