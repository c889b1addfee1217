// SPDX-License-Identifier: MIT
#include "simulators/apperson/DataLineReader.h"

#include "recording/Transcript.h"
#include "types/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kel {

namespace {

constexpr std::size_t kCommandLength = 2;
constexpr std::size_t kEssayLength = 4;
constexpr std::string_view kNoEssay = "0000";
constexpr Int32 kPieceLength = 5;
constexpr std::size_t kDigitsAQuestion = 5;
constexpr Byte kHighestMask = 0x1F;
constexpr Int32 kMostVersions = 4;
constexpr Int32 kLetters = 26;
constexpr Int32 kAsTheOthers = -1;

// What stands in places of a line whose meaning nobody knows. It looks like what is known.
std::string unknown(std::size_t length)
{
    std::string text;
    while (text.size() < length)
        text += "Z1,A0001,";
    return text.substr(0, length);
}

} // namespace

DataLineReader::DataLineReader(SimulatorOptions options)
    : AppersonReader(std::move(options)), bench_(model() == kelReaderTypeAppersonBenchMark3000),
      idLength_(static_cast<std::size_t>(std::max(settingNumber("id-length", 4), 1))),
      piecePause_(settingTime("piece-ms", 10)), keySlack_(settingTime("key-slack-ms", 100)),
      k7Reply_(settingFlag("k7-reply", !bench_)), shortLine_(parseTranscriptBytes(setting("short-line", ""))),
      endLine_(setting("end-line", "Z1")), awayReply_(parseTranscriptBytes(setting("away-reply", "")))
{
    const Int32 first = settingNumber("first-ms", kAsTheOthers);
    firstFeedTime_ = first == kAsTheOthers ? feedTime() : Moment(std::chrono::milliseconds(first));
    expectStart();
}

void DataLineReader::expectStart()
{
    std::deque<std::string> steps;
    if (!readerGrade())
        steps.push_back("M6");
    if (bench_)
        steps.insert(steps.end(), {"I1", "A9", "R6", "S1", "M0"});
    else
        steps.insert(steps.end(), {"M0", "M8"});
    expectSteps(std::move(steps));
}

void DataLineReader::restart()
{
    dropPending();
    running_ = false;
    waitingForSheet_ = false;
    downloading_ = false;
    keyEnded_ = false;
    keyOpen_ = false;
    expectStart();
}

/// Half a command has come, and the host's first byte is taken for its second.
void DataLineReader::onLeftover()
{
    command_ = "K";
}

void DataLineReader::onClose()
{
    restart();
    powered_ = false;
    command_.clear();
    argument_.clear();
    argumentLength_ = 0;
}

void DataLineReader::onByte(Byte byte)
{
    if (keyOpen_ && byte != 'R') {
        onKeyByte(byte);
        return;
    }
    // A host that gives up starts again.
    keyOpen_ = false;
    if (argumentLength_ == 0) {
        command_ += static_cast<char>(byte);
        if (command_ == "K7" || command_ == "K8")
            argumentLength_ = idLength_;
        else if (command_ == "E9" && !bench_)
            argumentLength_ = kEssayLength;
        else if (command_.size() == kCommandLength)
            obey(std::exchange(command_, {}));
    } else {
        argument_ += static_cast<char>(byte);
        if (argument_.size() == argumentLength_) {
            argumentLength_ = 0;
            const std::string argument = std::exchange(argument_, {});
            takeArgument(std::exchange(command_, {}), argument);
        }
    }
}

void DataLineReader::obey(const std::string& command)
{
    const bool several = !bench_ && command[0] == 'S' && command[1] >= '1' && command[1] <= '0' + kMostVersions;
    const bool step = command == "M6" || command == "M0" || (!bench_ && command == "M8") ||
                      (bench_ && (command == "I1" || command == "A9" || command == "R6" || command == "S1"));
    if (!powered_ && command != "R1")
        fault("command " + command + " before R1");

    if (command == "R1") {
        restart();
        powered_ = (powered_ ? replyAtEnd(command) : reply(command)) || powered_;
    } else if (several) {
        chooseVersion(command[1] - '0');
    } else if (command == "K1") {
        startKey();
    } else if (command == "K6") {
        endDownload();
    } else if (step) {
        if (downloading_)
            fault("command " + command + " though the keys were not ended with K6");
        downloading_ = false;
        takeStep(command);
        if (command == "M8" && stepsDone() && !running_)
            startRun();
    } else if (bench_ && command == "B1") {
        startRun();
    } else if (bench_ && (command == "A6" || command == "A7")) {
        sendAway(command == "A6" ? SheetEvent::Ejected : SheetEvent::Rejected);
    } else {
        fault("unknown command " + transcriptBytes(command));
    }
}

void DataLineReader::demandDownload(const std::string& command)
{
    if (downloading_)
        return;
    if (stepsDone())
        fault("command " + command + " though the reader is ready to read");
    else if (stepTaken())
        fault("command " + command + " after the first step of the start");
    else if (keyEnded_)
        fault("command " + command + " after a key that was ended");
    key_ = {};
    downloading_ = true;
    pageTold_ = false;
    versionTold_ = false;
    essayTold_ = false;
    version_ = 1;
}

void DataLineReader::chooseVersion(Int32 version)
{
    const std::string command = "S" + std::to_string(version);
    demandDownload(command);
    const Int32 next = static_cast<Int32>(key_.versions.size()) + 1;
    if (version != next || pageTold_)
        fault("command " + command + " where the key of version " + std::to_string(next) + " comes");
    if (version > 1 && !versionTold_)
        fault("command " + command + " though the key before it came without a version");
    if (reply(command)) {
        version_ = version;
        versionTold_ = true;
        essayTold_ = false;
    }
}

void DataLineReader::takeArgument(const std::string& command, const std::string& argument)
{
    if (!powered_)
        fault("command " + command + " before R1");
    demandDownload(command);
    if (command == "K7") {
        if (static_cast<Int32>(key_.versions.size()) >= version_)
            fault("command K7 for a second key without a version");
        pageTold_ = true;
        secondPageTold_ = false;
        startPage(key_.page1, command, argument);
        if (k7Reply_)
            reply(command);
    } else if (command == "K8") {
        if (!pageTold_)
            fault("command K8 without K7 before it");
        if (std::exchange(secondPageTold_, true))
            fault("command K8 a second time");
        startPage(key_.page2, command, argument);
        reply(command);
    } else {
        if (pageTold_)
            fault("command E9 after K7");
        if (!isDigits(argument, kEssayLength))
            fault("command E9 with " + transcriptBytes(argument));
        else if (argument == kNoEssay)
            fault("command E9 though the essay has no points");
        if (std::exchange(essayTold_, true))
            fault("command E9 a second time");
        key_.essay = argument;
    }
}

void DataLineReader::startPage(std::string& place, const std::string& command, const std::string& identifier)
{
    if (!place.empty() && place != identifier)
        fault("command " + command + " with " + identifier + " after " + place);
    place = identifier;
}

void DataLineReader::startKey()
{
    if (!downloading_ || !pageTold_)
        fault("command K1 without K7 before it");
    if (!reply("K1"))
        return;
    keyOpen_ = true;
    keyBytes_.clear();
    pieceBytes_ = 0;
    pieceDue_ = now();
    paceTold_ = false;
}

void DataLineReader::onKeyByte(Byte byte)
{
    checkPace();
    if (byte == 'Q') {
        endKey();
        return;
    }
    if (bench_ ? byte > kHighestMask : byte != '0' && byte != '1')
        fault("the byte " + hex(byte) + " in a key");
    keyBytes_ += static_cast<char>(byte);
}

void DataLineReader::checkPace()
{
    const bool late = pieceBytes_ > 0 && now() - lastKeyByte_ > piecePause_ / 2 + keySlack_;
    if (late && pieceBytes_ < kPieceLength && !std::exchange(paceTold_, true))
        fault("a piece of " + std::to_string(pieceBytes_) + " characters in a key");
    lastKeyByte_ = now();
    if (!late && pieceBytes_ > 0 && pieceBytes_ < kPieceLength) {
        ++pieceBytes_;
        return;
    }
    if (now() + keySlack_ < pieceDue_ && !std::exchange(paceTold_, true))
        fault("a piece of a key too soon after the one before it");
    pieceDue_ = std::max(pieceDue_, now()) + piecePause_;
    pieceBytes_ = 1;
}

void DataLineReader::endKey()
{
    keyOpen_ = false;
    pageTold_ = false;
    if (!bench_ && keyBytes_.size() % kDigitsAQuestion != 0)
        fault("a key of " + std::to_string(keyBytes_.size()) + " digits");
    key_.versions[version_] = keyBytes_;
    reply("Q");
}

void DataLineReader::endDownload()
{
    if (!downloading_ || key_.versions.empty() || pageTold_)
        fault("command K6 without a key before it");
    if (versionTold_ && key_.versions.size() == 1)
        fault("command S1 for a key that is the only one");
    if (!reply("K6"))
        return;
    key_.complete = !key_.versions.empty();
    keyEnded_ = true;
    downloading_ = false;
}

void DataLineReader::startRun()
{
    if (bench_) {
        demandStepsDone("B1");
        if (running_)
            fault("command B1 though the reader is reading");
        if (!reply("B1"))
            return;
    }
    running_ = true;
    schedule(firstFeedTime_, [this] { takeSheet(); });
}

void DataLineReader::onSheetPut()
{
    if (std::exchange(waitingForSheet_, false))
        schedule(feedTime(), [this] { takeSheet(); });
}

void DataLineReader::takeSheet()
{
    switch (feed()) {
    case Feed::Sheet:
        send((bench_ ? shortLine_ : "") + lineOf(fieldOf(sheet(), "Error Code")));
        note(SheetEvent::Read);
        break;
    case Feed::Jam:
        if (!bench_)
            return;
        send(lineOf(std::to_string(jamCode())));
        break;
    case Feed::Empty:
        running_ = false;
        waitingForSheet_ = !bench_;
        if (bench_)
            send(endLine_ + std::string(kLineEnd));
        return;
    }
    schedule(feedTime(), [this] { takeSheet(); });
}

void DataLineReader::sendAway(SheetEvent event)
{
    if (sheetNumber() == 0)
        fault("a sheet is sent away before there is one");
    note(event);
    if (!awayReply_.empty())
        send(awayReply_);
}

std::string DataLineReader::lineOf(const std::string& errorCode) const
{
    const auto field = [&](const char* name, std::size_t length, const char* fallback = "") {
        return cutOrPadded(fieldOf(sheet(), name, fallback), length);
    };
    std::string line;
    if (bench_) {
        line = field("Student ID", 12) + unknown(4);                           // to 16
        line += "," + field("Page 1 ID", 4, "0001") + unknown(5);              // to 26
        line += "," + field("Test ID", 12) + "," + field("School ID", 12);     // to 52
        line += "," + field("Class ID", 12) + "," + cutOrPadded(errorCode, 3); // to 69
        line += unknown(49);                                                   // to 118
    } else {
        line = field("Student ID", 10) + field("Test Version", 1, "1") + unknown(3); // to 14
        line += field("Essay Score", 4, "0000");                                     // to 18
        line += "," + field("Page 1 ID", 4, "0001");                                 // to 23
        line += "," + field("Page 2 ID", 4, "0000") + unknown(4);                    // to 32
    }
    // What follows the last comma is no answer.
    return line + "," + answers() + "A" + std::string(kLineEnd);
}

std::string DataLineReader::answers() const
{
    std::string text;
    const auto add = [&](const MarkRows& rows) {
        for (Int32 row = 1; row <= static_cast<Int32>(rows.size()); ++row) {
            for (Int32 column = 1; column <= kLetters; ++column)
                if (markAt(rows, row, column) != 0)
                    text += static_cast<char>('A' + column - 1);
            text += ',';
        }
    };
    add(sheet().side1);
    if (!bench_)
        add(sheet().side2);
    return text;
}

} // namespace kel
