// SPDX-License-Identifier: MIT
#include "reader/clsKELReader.h"

#include "failure/basError.h"
#include "failure/guarded.h"
#include "profiles/ReaderModels.h"
#include "reader/OptionsDialog.h"
#include "reader/ReaderSession.h"
#include "reader/SettingsStore.h"

#include <mutex>
#include <utility>

namespace kel {

namespace {

std::mutex helpFileMutex;
std::string helpFile;

} // namespace

clsKELReader::clsKELReader() : session_(std::make_unique<ReaderSession>()) {}

clsKELReader::~clsKELReader() = default;

Reference<clsKELReaderBarcodes> clsKELReader::Barcodes() const
{
    return session_->Barcodes();
}

void clsKELReader::Barcodes(Reference<clsKELReaderBarcodes> value)
{
    session_->Barcodes(std::move(value));
}

Reference<clsKELReaderWindows> clsKELReader::Windows() const
{
    return session_->Windows();
}

void clsKELReader::Windows(Reference<clsKELReaderWindows> value)
{
    session_->Windows(std::move(value));
}

Reference<clsKELReaderProfiles> clsKELReader::Profiles() const
{
    return session_->Profiles();
}

void clsKELReader::Profiles(Reference<clsKELReaderProfiles> value)
{
    session_->Profiles(std::move(value));
}

Reference<clsKELReaderPrinter> clsKELReader::Printer() const
{
    return session_->Printer();
}

void clsKELReader::Printer(Reference<clsKELReaderPrinter> value)
{
    session_->Printer(std::move(value));
}

Reference<AnswerKeyObject> clsKELReader::AnswerKey() const
{
    return session_->keyOfHost();
}

void clsKELReader::AnswerKey(Reference<AnswerKeyObject> value)
{
    session_->AnswerKey(std::move(value));
}

Reference<Carrier> clsKELReader::fComm() const
{
    return session_->carrier();
}

void clsKELReader::fComm(Reference<Carrier> value)
{
    session_->carrier(std::move(value));
}

Int32 clsKELReader::HelpID(kelReaderHelpID eHelpIDType) const
{
    return session_->helpID(eHelpIDType, SourceLocation::current());
}

void clsKELReader::HelpID(kelReaderHelpID eHelpIDType, Int32 value)
{
    session_->helpID(eHelpIDType, SourceLocation::current()) = value;
}

std::string clsKELReader::HelpFile() const
{
    const std::lock_guard lock(helpFileMutex);
    return helpFile;
}

void clsKELReader::HelpFile(const std::string& value)
{
    const std::lock_guard lock(helpFileMutex);
    helpFile = value;
}

Boolean clsKELReader::ReaderGrade() const
{
    return session_->settings().ReaderGrade;
}

void clsKELReader::ReaderGrade(Boolean value)
{
    session_->settings().ReaderGrade = value;
}

kelReaderBaudRate clsKELReader::BaudRate() const
{
    return session_->settings().BaudRate;
}

void clsKELReader::BaudRate(kelReaderBaudRate value)
{
    session_->settings().BaudRate = value;
}

Int32 clsKELReader::SleepTime() const
{
    return session_->settings().SleepTime;
}

void clsKELReader::SleepTime(Int32 value)
{
    session_->settings().SleepTime = value;
}

kelReaderDataBits clsKELReader::DataBits() const
{
    return session_->settings().DataBits;
}

void clsKELReader::DataBits(kelReaderDataBits value)
{
    session_->settings().DataBits = value;
}

Boolean clsKELReader::Duplex() const
{
    return session_->settings().Duplex;
}

void clsKELReader::Duplex(Boolean value)
{
    session_->settings().Duplex = value;
}

Boolean clsKELReader::DuplexForm() const
{
    return session_->settings().DuplexForm;
}

void clsKELReader::DuplexForm(Boolean value)
{
    session_->settings().DuplexForm = value;
}

Boolean clsKELReader::Barcode() const
{
    return session_->settings().Barcode;
}

void clsKELReader::Barcode(Boolean value)
{
    session_->settings().Barcode = value;
}

Boolean clsKELReader::Feeder() const
{
    return session_->settings().Feeder;
}

void clsKELReader::Feeder(Boolean value)
{
    session_->settings().Feeder = value;
}

kelReaderFlowControl clsKELReader::FlowControl() const
{
    return session_->settings().FlowControl;
}

void clsKELReader::FlowControl(kelReaderFlowControl value)
{
    session_->settings().FlowControl = value;
}

Int16 clsKELReader::MarkCutOff() const
{
    return session_->settings().MarkCutOff;
}

void clsKELReader::MarkCutOff(Int16 value)
{
    session_->settings().MarkCutOff = value;
}

Int16 clsKELReader::MarkDiscrimination() const
{
    return session_->settings().MarkDiscrimination;
}

void clsKELReader::MarkDiscrimination(Int16 value)
{
    session_->settings().MarkDiscrimination = value;
}

std::string clsKELReader::ReaderName() const
{
    return ReturnReaderName(session_->ReaderType());
}

Int16 clsKELReader::Side1TimingMarks() const
{
    return session_->Side1TimingMarks();
}

Int16 clsKELReader::Side2TimingMarks() const
{
    return session_->Side2TimingMarks();
}

MarkArray clsKELReader::Side1Array() const
{
    return session_->side1();
}

MarkArray clsKELReader::Side2Array() const
{
    return session_->side2();
}

PageArray clsKELReader::Side1Rows() const
{
    return session_->Side1Rows();
}

void clsKELReader::Side1Rows(const PageArray& value)
{
    session_->Side1Rows(value);
}

PageArray clsKELReader::Side1Cols() const
{
    return session_->Side1Cols();
}

void clsKELReader::Side1Cols(const PageArray& value)
{
    session_->Side1Cols(value);
}

PageArray clsKELReader::Side2Rows() const
{
    return session_->Side2Rows();
}

void clsKELReader::Side2Rows(const PageArray& value)
{
    session_->Side2Rows(value);
}

PageArray clsKELReader::Side2Cols() const
{
    return session_->Side2Cols();
}

void clsKELReader::Side2Cols(const PageArray& value)
{
    session_->Side2Cols(value);
}

std::string clsKELReader::Parity() const
{
    return session_->Parity();
}

void clsKELReader::Parity(const std::string& value)
{
    session_->settings().Parity = value;
}

Int16 clsKELReader::Port() const
{
    return session_->settings().Port;
}

void clsKELReader::Port(Int16 value)
{
    session_->settings().Port = value;
}

Boolean clsKELReader::CancelScan() const
{
    return session_->CancelScan();
}

void clsKELReader::CancelScan(Boolean value)
{
    session_->demandStop(value);
}

kelReaderType clsKELReader::ReaderType() const
{
    return session_->settings().ReaderType;
}

void clsKELReader::ReaderType(kelReaderType value)
{
    session_->ReaderType(value);
}

Int16 clsKELReader::RecognitionThreshold() const
{
    return session_->settings().RecognitionThreshold;
}

void clsKELReader::RecognitionThreshold(Int16 value)
{
    session_->settings().RecognitionThreshold = value;
}

Boolean clsKELReader::Rejecter() const
{
    return session_->settings().Rejecter;
}

void clsKELReader::Rejecter(Boolean value)
{
    session_->settings().Rejecter = value;
}

float clsKELReader::StopBits() const
{
    return session_->settings().StopBits;
}

void clsKELReader::StopBits(float value)
{
    session_->settings().StopBits = value;
}

Int32 clsKELReader::Timeout() const
{
    return session_->settings().TimeOut;
}

void clsKELReader::Timeout(Int32 value)
{
    session_->settings().TimeOut = value;
}

Boolean clsKELReader::Windowing() const
{
    return session_->settings().Windowing;
}

void clsKELReader::Windowing(Boolean value)
{
    session_->settings().Windowing = value;
}

kelRecognitionType clsKELReader::RecognitionMode() const
{
    return session_->settings().RecognitionMode;
}

void clsKELReader::RecognitionMode(kelRecognitionType value)
{
    session_->settings().RecognitionMode = value;
}

Boolean clsKELReader::StartReader()
{
    return session_->StartReader();
}

Boolean clsKELReader::ReadPage(Boolean InitializePrinter)
{
    return session_->ReadPage(InitializePrinter);
}

Boolean clsKELReader::ReadBatch(Boolean InitializePrinter, Int32 lMaxSheets, Int32& lSheetCount)
{
    return session_->ReadBatch(InitializePrinter, lMaxSheets, lSheetCount);
}

Boolean clsKELReader::EndReader()
{
    return session_->EndReader();
}

void clsKELReader::RejectPage()
{
    session_->RejectPage();
}

void clsKELReader::EjectPage()
{
    session_->EjectPage();
}

Boolean clsKELReader::LoadDefaults(kelReaderType eReaderType)
{
    return session_->LoadDefaults(eReaderType);
}

Boolean clsKELReader::LoadSettings(kelReaderRegistryKey lRegistryKey, const std::string& sRegistrySubKey)
{
    return SettingsStore(lRegistryKey, sRegistrySubKey).LoadSettings(*session_);
}

Boolean clsKELReader::SaveSettings(kelReaderRegistryKey lRegistryKey, const std::string& sRegistrySubKey)
{
    return SettingsStore(lRegistryKey, sRegistrySubKey).SaveSettings(*session_);
}

Boolean clsKELReader::ShowOptions(void* fParent)
{
    Boolean bResult = False;
    const auto variables =
        parametersFrom([&](VariableLines& lines) {
            lines.add("fParent", fParent ? Variant(std::string(kExternalType)) : Variant(MissingValue{}));
        }) +
        moduleOf(*session_);
    guarded("KELReader81 - clsKELReader.ShowOptions", variables, [&] { bResult = optionsDialog()(*this, fParent); });
    return bResult;
}

Boolean clsKELReader::Locate(Int16 iStartPort)
{
    return session_->Locate(iStartPort);
}

Boolean clsKELReader::Firmware(std::string& sReturn)
{
    return session_->Firmware(sReturn);
}

Boolean clsKELReader::SetError(std::shared_ptr<ErrorObject> oErr)
{
    return setErrorObject(std::move(oErr));
}

std::uint32_t clsKELReader::Advise(std::shared_ptr<ReaderEvents> listener)
{
    return session_->events().add(std::move(listener));
}

Boolean clsKELReader::Unadvise(std::uint32_t cookie)
{
    return session_->events().remove(cookie);
}

} // namespace kel
