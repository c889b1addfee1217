// SPDX-License-Identifier: MIT
#include "options/ReaderTrial.h"

#include "failure/WithoutHost.h"
#include "options/TrialLine.h"
#include "platform/PlatformAround.h"
#include "platform/PortMap.h"
#include "platform/StopCarrier.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"
#include "types/CaughtFailure.h"
#include "types/Text.h"

#include <algorithm>
#include <vector>

namespace kel {

namespace {

/// How long a pause goes on before anybody looks whether it is to end, in milliseconds.
constexpr Int32 kNap = 50;

/// Keeps the first report, as a sentence of one line: what follows is mostly a consequence.
class FirstReport final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        take(report.ErrorTitle, report.ErrorDescription);
        return 0;
    }

    void take(const std::string& title, const std::string& text)
    {
        if (!sentence_.empty())
            return;
        sentence_ = title.empty() ? std::string() : title + ": ";
        // Texts of boxes have line ends of their own.
        for (const char letter : text) {
            const bool isBlank = letter == '\r' || letter == '\n' || letter == '\t' || letter == ' ';
            if (!isBlank)
                sentence_ += letter;
            else if (!sentence_.ends_with(' '))
                sentence_ += ' ';
        }
    }

    [[nodiscard]] const std::string& sentence() const noexcept { return sentence_; }
    void forget() { sentence_.clear(); }

private:
    std::string sentence_;
};

/// Boxes of the component are reports here.
class NoScreen final : public Screen {
public:
    explicit NoScreen(FirstReport& report) : report_(report) {}

    BoxAnswer MsgBox(const std::string& text, BoxIcon, BoxButtons buttons, const std::string& title) override
    {
        report_.take(title, text);
        return buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Abort;
    }
    void Beep() override {}
    [[nodiscard]] Int32 MousePointer() const override { return kMousePointerDefault; }
    void MousePointer(Int32) override {}

private:
    FirstReport& report_;
};

/// The pump of a test that may be stopped: no pause goes on then.
class TestPump final : public MessagePump {
public:
    TestPump(MessagePump& inner, std::function<bool()> turn) : inner_(inner), turn_(std::move(turn)) {}

    void DoEvents() override
    {
        inner_.DoEvents();
        turn_();
    }
    void Sleep(Int32 milliseconds) override
    {
        while (milliseconds > 0 && !turn_()) {
            inner_.Sleep(std::min(milliseconds, kNap));
            milliseconds -= kNap;
        }
    }
    [[nodiscard]] Moment now() const override { return inner_.now(); }
    void hostPump(std::function<void()> pump) override { inner_.hostPump(std::move(pump)); }

private:
    MessagePump& inner_;
    std::function<bool()> turn_;
};

class TestMachine final : public PlatformAround {
public:
    TestMachine(Platform& inner, Screen& screen, MessagePump& pump)
        : PlatformAround(inner), screen_(screen), pump_(pump)
    {
    }
    [[nodiscard]] MessagePump& pump() override { return pump_; }
    [[nodiscard]] Screen& screen() override { return screen_; }

private:
    Screen& screen_;
    MessagePump& pump_;
};

std::string filled(TextNumber text, const std::string& first, const std::string& second = {})
{
    return replaceAll(replaceAll(VBLM_RTString(text), "%1", first), "%2", second);
}

std::string twoSentences(const std::string& first, const std::string& next)
{
    return first + " " + next;
}

} // namespace

/// The test while it runs.
class ReaderTrial::Work {
public:
    explicit Work(ReaderTrial& test)
        : test_(test), withoutHost_(report_), screen_(*report_), pump_(platform().pump(), [this] { return turn(); }),
          machine_(platform(), screen_, pump_), scope_(machine_), reader_(std::make_unique<clsKELReader>())
    {
        if (test.device_)
            port_.emplace(test.settings_.port, *test.device_);
        takeSettings();
        line_ = std::make_shared<TrialLine>(reader_->fComm(), test.settings_.model,
                                            [this] { test_.stage_ = Stage::Waits; });
        reader_->fComm(makeReference<StopCarrier>(Reference<Carrier>(line_), [this] { return isToEnd(); }));
    }

    Outcome hold()
    {
        const bool starts = start();
        if (test_.isStopped())
            return {Outcome::Kind::Stopped, VBLM_RTString(text::kTestStopped)};
        if (!report_->sentence().empty())
            return {Outcome::Kind::Fails, failure()};
        if (!starts)
            return {Outcome::Kind::Fails, notStarted()};
        const bool isAnswered = !isSerial() || line_->isAnswered();
        const std::string version = firmware();
        if (test_.isStopped())
            return {Outcome::Kind::Stopped, VBLM_RTString(text::kTestStopped)};
        if (!isAnswered && version.empty())
            return {Outcome::Kind::Fails, report_->sentence().empty() ? notStarted() : failure()};
        return {Outcome::Kind::Answers, answer(version)};
    }

private:
    void takeSettings()
    {
        const Settings& from = test_.settings_;
        clsKELReader& to = *reader_;
        to.LoadDefaults(from.model);
        to.Port(from.port);
        to.BaudRate(from.baudRate);
        to.DataBits(from.dataBits);
        to.Parity(from.parity);
        to.StopBits(from.stopBits);
        to.FlowControl(from.flowControl);
        to.ReaderGrade(from.readerGrade);
        to.Duplex(from.duplex);
        to.Barcode(from.barcode);
        to.Feeder(from.feeder);
        to.Rejecter(from.rejecter);
        to.RecognitionThreshold(from.recognitionThreshold);
        to.MarkDiscrimination(from.markDiscrimination);
        to.SleepTime(from.sleepTime);
        to.Timeout(from.timeout);
        // A form of no page: none is loaded into the reader.
        to.RecognitionMode(kelRecognitionTypePage);
        const PageArray none = PageArray::of(1, {});
        to.Side1Rows(none);
        to.Side1Cols(none);
        to.Side2Rows(none);
        to.Side2Cols(none);
    }

    [[nodiscard]] Reference<clsKELReaderProfile> profile() const
    {
        return reader_->Profiles()->Item(CStr(test_.settings_.model));
    }
    [[nodiscard]] bool isSerial() const { return profile()->InterfaceType() == kelReaderInterfaceTypeSerial; }

    /// Runs in each turn of a wait and of a pause; whether the test has been stopped.
    bool turn()
    {
        if (test_.isStopped() && reader_)
            reader_->CancelScan(True);
        return test_.isStopped();
    }

    /// Nobody waits long for the last words of a reader that has not said a first one.
    [[nodiscard]] bool isToEnd() const { return test_.isStopped() || isGivenUp_; }

    /// Starts a session and ends it. True if it started, as far as no sheet moves.
    bool start()
    {
        const bool isStarted(reader_->StartReader());
        // What is reported after a command that was not sent is the test's own making.
        if (line_->hasWithheld())
            report_->forget();
        const bool isGood = (isStarted || line_->hasWithheld()) && report_->sentence().empty();
        isGivenUp_ = !isGood && !line_->hasHeard();
        test_.stage_ = Stage::EndsSession;
        reader_->EndReader();
        if (isGood && line_->hasWithheld())
            report_->forget();
        return isGood;
    }

    /// The version, empty if the reader reports none.
    std::string firmware()
    {
        std::string version;
        if (!profile()->FirmwareEnabled())
            return version;
        test_.stage_ = Stage::AsksFirmware;
        reader_->Firmware(version);
        return version;
    }

    // --- The result

    [[nodiscard]] std::string failure() const
    {
        const bool isSilent = line_->hasOpened() && !line_->hasHeard();
        return isSilent ? twoSentences(report_->sentence(), VBLM_RTString(text::kTestAdviceLine)) : report_->sentence();
    }

    [[nodiscard]] std::string notStarted() const
    {
        if (!line_->hasOpened() || line_->hasHeard())
            return VBLM_RTString(text::kTestNotStarted);
        return twoSentences(filled(text::kTestNothingCame, CStr(test_.settings_.port)),
                            VBLM_RTString(text::kTestAdviceSilent));
    }

    [[nodiscard]] std::string answer(const std::string& version) const
    {
        std::string result = isSerial()
                                 ? filled(text::kTestAnswersAtPort, reader_->ReaderName(), CStr(test_.settings_.port))
                                 : filled(text::kTestAnswers, reader_->ReaderName());
        if (!version.empty())
            result = twoSentences(result, filled(text::kTestFirmware, version));
        return twoSentences(result, VBLM_RTString(text::kTestNoSheetRead));
    }

    ReaderTrial& test_;
    std::shared_ptr<FirstReport> report_ = std::make_shared<FirstReport>();
    const WithoutHost withoutHost_;
    NoScreen screen_;
    TestPump pump_;
    TestMachine machine_;
    const PlatformScope scope_;
    std::optional<PortOverride> port_;
    std::unique_ptr<clsKELReader> reader_;
    std::shared_ptr<TrialLine> line_;
    bool isGivenUp_ = false;
};

ReaderTrial::ReaderTrial(const clsKELReader& shown, std::optional<std::string> device)
    : settings_{.model = shown.ReaderType(),
                .port = shown.Port(),
                .baudRate = shown.BaudRate(),
                .dataBits = shown.DataBits(),
                .parity = shown.Parity(),
                .stopBits = shown.StopBits(),
                .flowControl = shown.FlowControl(),
                .readerGrade = shown.ReaderGrade(),
                .duplex = shown.Duplex(),
                .barcode = shown.Barcode(),
                .feeder = shown.Feeder(),
                .rejecter = shown.Rejecter(),
                .recognitionThreshold = shown.RecognitionThreshold(),
                .markDiscrimination = shown.MarkDiscrimination(),
                .sleepTime = shown.SleepTime(),
                .timeout = shown.Timeout()},
      device_(std::move(device))
{
}

ReaderTrial::Outcome ReaderTrial::run()
{
    try {
        return Work(*this).hold();
    } catch (const std::exception&) {
        return {Outcome::Kind::Fails, caughtFailure().text()};
    }
}

std::string ReaderTrial::progress() const
{
    switch (stage_.load()) {
    case Stage::OpensPort: return filled(text::kTestOpensPort, CStr(settings_.port));
    case Stage::Waits: return VBLM_RTString(text::kTestWaits);
    case Stage::EndsSession: return VBLM_RTString(text::kTestEndsSession);
    case Stage::AsksFirmware: break;
    }
    return VBLM_RTString(text::kTestAsksFirmware);
}

} // namespace kel
