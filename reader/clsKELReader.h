// SPDX-License-Identifier: MIT
#pragma once

#include "contract/AnswerKeyObject.h"
#include "contract/clsKELReaderBarcodes.h"
#include "contract/clsKELReaderPrinter.h"
#include "contract/clsKELReaderWindows.h"
#include "profiles/clsKELReaderProfiles.h"
#include "reader/ReaderEvents.h"

#include "failure/ErrorReport.h"
#include "platform/Carrier.h"
#include "types/Export.h"

#include <cstdint>
#include <memory>
#include <string>

namespace kel {

class ReaderSession;

/// One optical mark reader: its settings, the description of the form, and the session.
///
/// The usual order: create; `LoadDefaults`; set windows, barcode zones and printer values; `SetError` if the host has
/// an error object; `StartReader`; `ReadPage` repeatedly, or `ReadBatch` alone, which starts and ends by itself;
/// `EndReader`.
///
/// A reader belongs to the thread that made it: methods, events and the host's pump (`setHostPump`) run there. Only
/// `CancelScan` may be set from any thread, and from a signal handler; it ends a wait. No method throws for a failure
/// of the reader: a failure is reported to the error object or in a message box, and the method returns False, or ends,
/// with the result so far. No property checks its value: a wrong value is refused when it is used.
class KEL_PUBLIC clsKELReader {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReader";

    clsKELReader();
    /// The host has to call `EndReader` first; an open line is dropped with the object.
    ~clsKELReader();
    clsKELReader(const clsKELReader&) = delete;
    clsKELReader& operator=(const clsKELReader&) = delete;

    // --- Objects. Each may be replaced, also by a null reference.

    /// Barcode zones of the form.
    [[nodiscard]] Reference<clsKELReaderBarcodes> Barcodes() const;
    void Barcodes(Reference<clsKELReaderBarcodes> value);
    /// Read windows of the form.
    [[nodiscard]] Reference<clsKELReaderWindows> Windows() const;
    void Windows(Reference<clsKELReaderWindows> value);
    /// What each model can do, with its defaults.
    [[nodiscard]] Reference<clsKELReaderProfiles> Profiles() const;
    void Profiles(Reference<clsKELReaderProfiles> value);
    /// What is to be printed on a sheet.
    [[nodiscard]] Reference<clsKELReaderPrinter> Printer() const;
    void Printer(Reference<clsKELReaderPrinter> value);
    /// The carrier of the serial control and the timer. A host may replace it with its own.
    [[nodiscard]] Reference<Carrier> fComm() const;
    void fComm(Reference<Carrier> value);
    /// The answer key for readers that can store one; `EndReader` clears it.
    [[nodiscard]] Reference<AnswerKeyObject> AnswerKey() const;
    void AnswerKey(Reference<AnswerKeyObject> value);

    // --- Help

    /// A help context number. An index out of bounds is failure 9.
    [[nodiscard]] Int32 HelpID(kelReaderHelpID eHelpIDType) const;
    void HelpID(kelReaderHelpID eHelpIDType, Int32 value);
    /// The help file of the whole process.
    [[nodiscard]] std::string HelpFile() const;
    void HelpFile(const std::string& value);

    // --- Settings

    /// Grading in the reader; read by the OpScan and Apperson drivers.
    [[nodiscard]] Boolean ReaderGrade() const;
    void ReaderGrade(Boolean value);
    /// Line speed in baud. Any number is accepted and goes to the line unchanged.
    [[nodiscard]] kelReaderBaudRate BaudRate() const;
    void BaudRate(kelReaderBaudRate value);
    /// Base of all fixed pauses of the serial dialogues, in milliseconds. Raise it for a slow reader.
    [[nodiscard]] Int32 SleepTime() const;
    void SleepTime(Int32 value);
    /// Data bits of the line.
    [[nodiscard]] kelReaderDataBits DataBits() const;
    void DataBits(kelReaderDataBits value);
    /// Read both sides.
    [[nodiscard]] Boolean Duplex() const;
    void Duplex(Boolean value);
    /// The form itself is two-sided.
    [[nodiscard]] Boolean DuplexForm() const;
    void DuplexForm(Boolean value);
    /// Read barcodes.
    [[nodiscard]] Boolean Barcode() const;
    void Barcode(Boolean value);
    /// Use the sheet feeder.
    [[nodiscard]] Boolean Feeder() const;
    void Feeder(Boolean value);
    /// Handshaking of the line.
    [[nodiscard]] kelReaderFlowControl FlowControl() const;
    void FlowControl(kelReaderFlowControl value);
    /// Mark cut-off; saved and shown, used by no driver.
    [[nodiscard]] Int16 MarkCutOff() const;
    void MarkCutOff(Int16 value);
    /// Mark discrimination; read by the Scanning Systems driver.
    [[nodiscard]] Int16 MarkDiscrimination() const;
    void MarkDiscrimination(Int16 value);
    /// The model's name, as `ReturnReaderName` returns it.
    [[nodiscard]] std::string ReaderName() const;

    /// Timing marks that the reader reported on each side of the last sheet, -1 if it reported none.
    [[nodiscard]] Int16 Side1TimingMarks() const;
    [[nodiscard]] Int16 Side2TimingMarks() const;
    /// Marks of the last sheet, as copies: rows and columns from 1, 0 for no mark. A read of one side leaves the
    /// other side's array unchanged.
    [[nodiscard]] MarkArray Side1Array() const;
    [[nodiscard]] MarkArray Side2Array() const;

    /// Rows and columns of the form, page by page from element 1.
    [[nodiscard]] PageArray Side1Rows() const;
    void Side1Rows(const PageArray& value);
    [[nodiscard]] PageArray Side1Cols() const;
    void Side1Cols(const PageArray& value);
    [[nodiscard]] PageArray Side2Rows() const;
    void Side2Rows(const PageArray& value);
    [[nodiscard]] PageArray Side2Cols() const;
    void Side2Cols(const PageArray& value);

    /// Parity letter: N, E, O, M or S. Read while it is empty it becomes "N".
    [[nodiscard]] std::string Parity() const;
    void Parity(const std::string& value);
    /// Serial port, 1 to 16.
    [[nodiscard]] Int16 Port() const;
    void Port(Int16 value);
    /// The stop flag. True on a new object; `StartReader` clears it; a failed start or read, the end of a batch and the
    /// host set it: the host from any thread, and from a signal handler.
    [[nodiscard]] Boolean CancelScan() const;
    void CancelScan(Boolean value);
    /// The reader model; the printer object gets it, too.
    [[nodiscard]] kelReaderType ReaderType() const;
    void ReaderType(kelReaderType value);
    /// Recognition threshold on the scale of the model.
    [[nodiscard]] Int16 RecognitionThreshold() const;
    void RecognitionThreshold(Int16 value);
    /// Reject with the rejecter (second output) rather than on the normal path.
    [[nodiscard]] Boolean Rejecter() const;
    void Rejecter(Boolean value);
    /// Stop bits of the line: 1, 1.5 or 2.
    [[nodiscard]] float StopBits() const;
    void StopBits(float value);
    /// How long a reader may take to answer, in seconds. `StartReader` changes values outside 1 to 600 to 10.
    [[nodiscard]] Int32 Timeout() const;
    void Timeout(Int32 value);
    /// Window reading as the options dialog shows it; the drivers follow `RecognitionMode`.
    [[nodiscard]] Boolean Windowing() const;
    void Windowing(Boolean value);
    /// Whole pages or read windows.
    [[nodiscard]] kelRecognitionType RecognitionMode() const;
    void RecognitionMode(kelRecognitionType value);

    // --- The session

    /// Clears `CancelScan`, opens the line of a serial reader and starts the reader. True if it is ready to read.
    Boolean StartReader();

    /// Reads one sheet and raises its events. `InitializePrinter` says whether the sheet may be printed on.
    /// False when the read was prevented or failed; then no event follows `BeforeSheet`.
    Boolean ReadPage(Boolean InitializePrinter);

    /// Starts the reader, reads sheets until `lSheetCount`, which goes on from its present value, reaches `lMaxSheets`
    /// (negative: no limit) or `CancelScan` is set, sends the last sheet out and ends the reader.
    /// True says that the batch ran, not how many sheets were read.
    Boolean ReadBatch(Boolean InitializePrinter, Int32 lMaxSheets, Int32& lSheetCount);

    /// Ends the session and closes the line. The result is the driver's.
    Boolean EndReader();

    /// Sends the current sheet to the reject side or to the normal output. After the first call for a sheet, others
    /// do nothing until the next read.
    void RejectPage();
    void EjectPage();

    /// Sets the model and takes its defaults from the catalogue. Port, windowing, recognition mode, `DuplexForm` and
    /// the form do not change. False, after a report, for a model without a profile.
    Boolean LoadDefaults(kelReaderType eReaderType);

    /// Loads the settings from values of a registry key, or saves them there: the 19 settings of the options dialog as
    /// texts. A key or a value that is missing or cannot be read takes its default; a key that cannot be written is no
    /// failure. Loading is False, after a report, when a text does not fit; the settings before it are then set.
    Boolean LoadSettings(kelReaderRegistryKey lRegistryKey, const std::string& sRegistrySubKey);
    Boolean SaveSettings(kelReaderRegistryKey lRegistryKey, const std::string& sRegistrySubKey);

    /// Lets the user choose the model and its settings in the options dialog; `fParent` is the owner window (a
    /// `QWidget*` of the host's own application, a `HWND`), if there is one. True when the dialog was closed with OK,
    /// and the settings are set; False when it was cancelled or, after a report, when it could not be shown. The reader
    /// must not be in a session: the dialog opens each port for a moment to find out which ones can be used. A host can
    /// replace the window that shows the dialog (`<KELReader81U/OptionsPresenter.h>`).
    Boolean ShowOptions(void* fParent = nullptr);

    /// Searches the serial ports for the reader: first `iStartPort` if it is above 0, then 1 to 16. The port that
    /// answers becomes `Port`. False for a model that cannot be searched for, whose lines are not touched. The reader
    /// must not be in a session.
    Boolean Locate(Int16 iStartPort);

    /// The firmware version of the reader at `Port`. False, with `sReturn` unchanged, if it reports none.
    Boolean Firmware(std::string& sReturn);

    /// Registers the host's error object, for all reader objects of the process; a null pointer restores message boxes.
    /// True if an object is set.
    Boolean SetError(std::shared_ptr<ErrorObject> oErr);

    // --- Events

    /// Adds a listener; the result removes it.
    std::uint32_t Advise(std::shared_ptr<ReaderEvents> listener);
    Boolean Unadvise(std::uint32_t cookie);

private:
    std::unique_ptr<ReaderSession> session_;
};

} // namespace kel
