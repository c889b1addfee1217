// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"
#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/basApperson.h"
#include "failure/basError.h"
#include "reader/ReaderSession.h"
#include "recording/TranscriptDevice.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace kel::apperson_test {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

inline constexpr kelReaderType kLink = kelReaderTypeAppersonAdvantageLink;
inline constexpr kelReaderType kMaster = kelReaderTypeAppersonGradeMaster;
inline constexpr kelReaderType kBench = kelReaderTypeAppersonBenchMark3000;
inline constexpr kelReaderType k1200 = kelReaderTypeAppersonAdvantage1200;

inline constexpr Int32 kPause = 20;
inline constexpr Int32 kTimeout = 10000;

/// What was reported.
struct Told {
    std::string source;
    Int32 number;
    Int32 type;
    std::string text;
    std::string title;

    friend bool operator==(const Told&, const Told&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Told& told)
    {
        return out << told.source << " (" << told.number << ", " << told.type << ") " << told.title << ": "
                   << told.text;
    }
};

/// A fault of the reader or the link under a code of the reader, by the numbers of its texts.
inline Told readerError(const std::string& procedure, Int32 code, Int32 text, Int32 title)
{
    return {"basApperson." + procedure, code, 2, VBLM_RTString(text), VBLM_RTString(title)};
}

/// The same under the number of its message.
inline Told fault(const std::string& procedure, Int32 message, Int32 title)
{
    return readerError(procedure, message, message, title);
}

/// A host that keeps what it hears, and may act within the events.
class KeepingHost final : public ErrorObject, public ReaderEvents {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        // The line's number follows the source of a run-time failure.
        told.push_back({report.ErrorSource.substr(0, report.ErrorSource.find_first_of(", ")), report.ErrorNumber,
                        report.ErrorType, report.ErrorDescription, report.ErrorTitle});
        return 0;
    }

    void TranslateData(Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                       Boolean& bNeedsMoreData) override
    {
        records.push_back(oData);
        if (onTranslateData)
            onTranslateData(oData, iSide1Array, iSide2Array, sBarcodeArray, bNeedsMoreData);
    }

    void GetQuestionsOnPage(Int16& iPage, Int16& iNumberQuestions) override
    {
        askedPages.push_back(iPage);
        iNumberQuestions = questionsOnPage;
    }

    std::vector<Told> told;
    std::vector<Dictionary> records;
    std::vector<Int16> askedPages;
    Int16 questionsOnPage = 0;
    std::function<void(Dictionary&, MarkArray&, MarkArray&, TextArray&, Boolean&)> onTranslateData;
};

/// A reader object whose line is open to a dialogue worked out by hand, under a virtual clock.
class AppersonTest : public testing::Test {
protected:
    AppersonTest() : scope(machine) { machine.hostPace(HostPace::Instant); }

    ~AppersonTest() override { setErrorObject(nullptr); }

    /// Opens the line to a reader that plays its part of `dialogue`.
    void play(kelReaderType eReaderType, const std::string& dialogue)
    {
        host = std::make_shared<KeepingHost>();
        setErrorObject(host);
        session = std::make_unique<ReaderSession>();
        session->events().add(host);
        device = std::make_unique<TranscriptDevice>(parseTranscript(dialogue));
        machine.attach(1, *device);
        session->ReaderType(eReaderType);
        session->SleepTime(kPause);
        session->CancelScan(False);
        session->fComm().mscComm().CommPort(1);
        session->fComm().mscComm().PortOpen(True);
        session->fComm().tmrScan().Interval(kTimeout);
        beganAt = machine.now();
        pausesBefore = machine.sleeps().size();
    }

    /// The same with a reader that is no dialogue.
    void playWith(kelReaderType eReaderType, LineDevice& reader)
    {
        play(eReaderType, "");
        session->fComm().mscComm().PortOpen(False);
        machine.attach(1, reader);
        session->fComm().mscComm().PortOpen(True);
    }

    /// The dialogue has come to its end, and the host has said nothing else. Closes the line.
    void expectPlayed()
    {
        EXPECT_THAT(device->differences(), IsEmpty());
        EXPECT_TRUE(device->finished()) << "still to come: " << device->next();
        session->fComm().mscComm().PortOpen(False);
    }

    void form(Int16 rows, Int16 columns)
    {
        session->Side1Rows(PageArray::of(1, {rows}));
        session->Side1Cols(PageArray::of(1, {columns}));
    }

    void cancelAfter(Moment time)
    {
        machine.at(machine.now() + time, [this] { session->CancelScan(True); });
    }

    [[nodiscard]] Moment elapsed() const { return machine.now() - beganAt; }
    [[nodiscard]] const std::vector<Told>& told() const { return host->told; }
    [[nodiscard]] Int32 waiting() { return session->fComm().mscComm().InBufferCount(); }

    /// The lengths of the pauses since the dialogue began.
    [[nodiscard]] std::vector<Int32> pauses() const
    {
        std::vector<Int32> result;
        for (std::size_t i = pausesBefore; i < machine.sleeps().size(); ++i)
            result.push_back(machine.sleeps()[i].milliseconds);
        return result;
    }

    SimulatedPlatform machine;
    PlatformScope scope;
    std::shared_ptr<KeepingHost> host;
    std::unique_ptr<TranscriptDevice> device;
    std::unique_ptr<ReaderSession> session;
    Moment beganAt{};
    std::size_t pausesBefore = 0;
};

/// A reader that says its bytes at certain times, whatever the host does.
class UntroubledReader final : public LineDevice {
public:
    explicit UntroubledReader(std::vector<std::pair<Moment, char>> bytes) : bytes_(std::move(bytes)) {}

    void lineOpened(Moment now, const LineParameters&) override { openedAt_ = now; }
    void lineClosed(Moment) override {}
    void byteFromHost(Moment, Byte) override {}
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return next_ < bytes_.size() ? std::optional(openedAt_ + bytes_[next_].first) : std::nullopt;
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        const std::optional<Moment> due = nextEvent();
        return due && *due <= now ? std::optional(static_cast<Byte>(bytes_[next_++].second)) : std::nullopt;
    }
    [[nodiscard]] bool hungUp() const override { return false; }

private:
    std::vector<std::pair<Moment, char>> bytes_;
    std::size_t next_ = 0;
    Moment openedAt_{};
};

/// The part of a dialogue in which the reader sends some bytes.
inline std::string from(const std::string& bytes)
{
    return "< " + transcriptBytes(bytes) + "\n";
}

/// The part of a dialogue in which the reader says yes to each of some commands.
inline std::string accepts(const std::vector<std::string>& commands)
{
    std::string dialogue;
    for (const std::string& command : commands)
        dialogue += "> " + transcriptBytes(command) + "\n+ 3\n< \"OK\"\n";
    return dialogue;
}

} // namespace kel::apperson_test
