// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "types/Arrays.h"
#include "types/Enumerations.h"
#include "types/Reference.h"

#include <string>

namespace kel {

class AnswerKeyObject;
class Dictionary;
class clsKELReaderBarcodes;
class clsKELReaderPrinter;
class clsKELReaderProfiles;
class clsKELReaderWindows;

/// What the dispatch and the drivers see of the reader object, and all they may use of it.
///
/// A driver procedure takes it as `oReader`. It reports a failure itself before it returns False; a cancel is no
/// failure and is not reported. A good read hands over its own arrays with `Side1Array`, `Side2Array` and
/// `BarcodeArray`, stores the timing mark counts and returns True; a failed read stores nothing.
class ReaderContract {
public:
    virtual ~ReaderContract() = default;

    // Settings. None is checked when it is set.
    [[nodiscard]] virtual kelReaderType ReaderType() const = 0;
    [[nodiscard]] virtual Boolean ReaderGrade() const = 0;
    [[nodiscard]] virtual kelReaderBaudRate BaudRate() const = 0;
    [[nodiscard]] virtual kelReaderDataBits DataBits() const = 0;
    [[nodiscard]] virtual Boolean Duplex() const = 0;
    [[nodiscard]] virtual Boolean DuplexForm() const = 0;
    [[nodiscard]] virtual Boolean Barcode() const = 0;
    [[nodiscard]] virtual Boolean Feeder() const = 0;
    [[nodiscard]] virtual kelReaderFlowControl FlowControl() const = 0;
    [[nodiscard]] virtual Int16 MarkDiscrimination() const = 0;
    [[nodiscard]] virtual std::string Parity() = 0; ///< an empty one becomes "N", and stays so
    [[nodiscard]] virtual Int16 Port() const = 0;
    virtual void Port(Int16 value) = 0;
    [[nodiscard]] virtual Int16 RecognitionThreshold() const = 0;
    [[nodiscard]] virtual kelRecognitionType RecognitionMode() const = 0;
    [[nodiscard]] virtual Boolean Rejecter() const = 0;
    virtual void Rejecter(Boolean value) = 0; ///< corrected by the Scanning Systems driver
    [[nodiscard]] virtual float StopBits() const = 0;
    [[nodiscard]] virtual Int32 SleepTime() const = 0; ///< milliseconds, the base of all fixed pauses
    virtual void SleepTime(Int32 milliseconds) = 0;    ///< corrected by the NCS driver
    [[nodiscard]] virtual Int32 Timeout() const = 0;   ///< seconds
    virtual void Timeout(Int32 seconds) = 0;           ///< corrected by the dispatch

    // Objects; any may be nothing, and reaching through nothing is failure 91.
    [[nodiscard]] virtual Reference<clsKELReaderWindows> Windows() const = 0;
    [[nodiscard]] virtual Reference<clsKELReaderBarcodes> Barcodes() const = 0;
    [[nodiscard]] virtual Reference<clsKELReaderPrinter> Printer() const = 0;
    [[nodiscard]] virtual Reference<clsKELReaderProfiles> Profiles() const = 0;
    [[nodiscard]] virtual Reference<AnswerKeyObject> AnswerKey() const = 0;

    // The size of the form, page by page from element 1; copies.
    [[nodiscard]] virtual PageArray Side1Rows() const = 0;
    [[nodiscard]] virtual PageArray Side1Cols() const = 0;
    [[nodiscard]] virtual PageArray Side2Rows() const = 0;
    [[nodiscard]] virtual PageArray Side2Cols() const = 0;
    [[nodiscard]] virtual Int16 LargestSide1Rows() const = 0;
    [[nodiscard]] virtual Int16 LargestSide1Cols() const = 0;
    [[nodiscard]] virtual Int16 LargestSide2Rows() const = 0;
    [[nodiscard]] virtual Int16 LargestSide2Cols() const = 0;

    /// The line. Fetched again for every single access, since the host may replace the carrier at any time.
    [[nodiscard]] virtual Carrier& fComm() const = 0;

    /// The stop flag, looked at in each waiting loop.
    [[nodiscard]] virtual Boolean CancelScan() const = 0;
    virtual void CancelScan(Boolean value) = 0;

    // What a read hands over. Timing marks are -1 until the driver stores the number that it learnt.
    virtual void Side1TimingMarks(Int16 value) = 0;
    virtual void Side2TimingMarks(Int16 value) = 0;
    [[nodiscard]] virtual Int16 Side1TimingMarks() const = 0;
    [[nodiscard]] virtual Int16 Side2TimingMarks() const = 0;
    virtual void Side1Array(const MarkArray& marks) = 0;
    virtual void Side2Array(const MarkArray& marks) = 0;
    virtual void BarcodeArray(const TextArray& barcodes) = 0;
    [[nodiscard]] virtual TextArray BarcodeArray() const = 0;

    /// Raises the event `TranslateData`: a record of named fields, from which the host makes marks and barcodes.
    virtual void TranslateDataEvent(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array,
                                    TextArray& sBarcodeArray, Boolean& bNeedsMoreData) = 0;
    /// Raises the event `GetQuestionsOnPage`: how many questions a page holds.
    virtual void GetQuestionsOnPageEvent(Int16& iPage, Int16& iNumberQuestions) = 0;

    /// The object's own reject, with its rule that a sheet is decided on once.
    virtual void RejectPage() = 0;
};

} // namespace kel
