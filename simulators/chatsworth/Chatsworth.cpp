// SPDX-License-Identifier: MIT
#include "simulators/chatsworth/Chatsworth.h"

#include "recording/Transcript.h"

#include <algorithm>

namespace kel {

namespace {

using namespace std::chrono_literals;
using Kind = HostCommand::Kind;

constexpr char kRefused = 0x07;
constexpr Moment kReplyTime = 5ms;

} // namespace

Chatsworth::Chatsworth(SimulatorOptions options)
    : Simulator(std::move(options)), setUpReply_(parseTranscriptBytes(setting("setup-reply", "\"OK 0\" 0D"))),
      setUpTime_(settingTime("setup-ms", 40)), sheetReply_(parseTranscriptBytes(setting("sheet-reply", "\"G\" 0D"))),
      feedTime_(settingTime("feed-ms", 500)), version_(setting("version", "Chatsworth 2.07 ")),
      spareBit_(spareBitFrom(setting("spare-bit", "changing")))
{
}

bool Chatsworth::isSetUp() const
{
    return model() == kelReaderTypeChatsworthACF200 || model() == kelReaderTypeChatsworthACP200;
}

bool Chatsworth::sendsByItself() const
{
    return model() == kelReaderTypeChatsworthOMR1100 || (isSetUp() && !feeder_);
}

void Chatsworth::onOpen()
{
    frames_.clear();
}

void Chatsworth::onClose()
{
    if (!frames_.empty())
        fault("the line was closed within a command");
    start_ = Start::None;
    underWay_ = false;
    waitingForSheet_ = false;
    dropPending();
}

/// A sheet is under way, and its page comes to whoever is there.
void Chatsworth::onLeftover()
{
    underWay_ = true;
    schedule(feedTime_, [this] { takeSheet(); });
}

void Chatsworth::onByte(Byte byte)
{
    if (const std::optional<HostCommand> command = frames_.take(byte))
        obey(*command);
}

void Chatsworth::obey(const HostCommand& command)
{
    switch (command.kind) {
    case Kind::SetUp: setUp(command.text); break;
    case Kind::JoinedProbe: joinedProbe(); break;
    case Kind::Single: single(command.text); break;
    case Kind::Framed: framed(command.text); break;
    case Kind::LocateProbe:
        if (start_ != Start::None)
            fault("the locate probe within a session");
        sendAfter(kReplyTime, asStatus("G\r"));
        break;
    case Kind::Broken: fault("no command: " + transcriptBytes(command.text)); break;
    }
}

void Chatsworth::setUp(const std::string& letters)
{
    if (!isSetUp()) {
        fault("set-up command " + letters + ", which is for other models");
        return;
    }
    if (letters == "F") {
        if (!feeder_)
            fault("command F though the feeder was not set up");
        startRead("F", "0\r", "1\r");
        return;
    }
    if (now() < repliedAt_ || isSending())
        fault("set-up command " + letters + " before the reply to the one before it");
    const std::string second = model() == kelReaderTypeChatsworthACF200 ? "HCD" : "FD";
    if (letters == "SF" || letters == "SL") {
        feeder_ = letters == "SL";
        start_ = feeder_ ? Start::SetUpFeeder : Start::SetUpByHand;
    } else if ((letters == second && start_ == Start::SetUpByHand) ||
               (letters == "HCE" && start_ == Start::SetUpFeeder)) {
        start_ = Start::SetUpDone;
        if (model() == kelReaderTypeChatsworthACP200)
            startDone();
    } else {
        fault("set-up command " + letters + " out of its order");
    }
    repliedAt_ = now() + setUpTime_;
    schedule(setUpTime_, [this] { send(asStatus(setUpReply_)); });
}

void Chatsworth::joinedProbe()
{
    if (model() == kelReaderTypeChatsworthACP200) {
        fault("the joined probe, which is for other models");
        return;
    }
    if (isSetUp() && start_ != Start::SetUpDone && start_ != Start::Done)
        fault("the joined probe before the set-up");
    else if (now() < repliedAt_ || isSending())
        fault("the joined probe before the reply to the set-up");
    else if (start_ == Start::Done)
        fault("the joined probe a second time");
    startDone();
}

void Chatsworth::startDone()
{
    start_ = Start::Done;
    underWay_ = false;
    inPath_ = false;
    if (sendsByItself())
        feedByItself();
}

void Chatsworth::feedByItself()
{
    if (nextFeed() == Feed::Empty) {
        waitingForSheet_ = true;
        return;
    }
    underWay_ = true;
    schedule(feedTime_, [this] { takeSheet(); });
}

void Chatsworth::onSheetPut()
{
    if (std::exchange(waitingForSheet_, false))
        schedule(feedTime_, [this] { takeSheet(); });
}

void Chatsworth::single(const std::string& text)
{
    if (text != "\x11")
        fault("no command: " + transcriptBytes(text));
    else if (model() != kelReaderTypeChatsworthOMR2000)
        fault("command 11, which is for another model");
    else
        startRead("11", "", std::string(1, kRefused));
}

void Chatsworth::startRead(const std::string& command, const std::string& taken, const std::string& refused)
{
    if (start_ != Start::Done)
        fault("command " + command + " before the start was done");
    if (underWay_ || isSending()) {
        fault("command " + command + " while a sheet is under way");
        return;
    }
    if (nextFeed() == Feed::Empty) {
        feed(); // for the log
        sendAfter(kReplyTime, asStatus(refused));
        return;
    }
    underWay_ = true;
    sendAfter(kReplyTime, asStatus(taken));
    // However soon the page comes, the reply stands before it.
    schedule(std::max(feedTime_, kReplyTime), [this] { takeSheet(); });
}

void Chatsworth::takeSheet()
{
    const Feed fed = feed();
    inPath_ = fed != Feed::Empty;
    if (fed == Feed::Jam)
        return; // silence, and still under way
    underWay_ = false;
    if (fed == Feed::Empty)
        return;
    send(packedRows(sheet().side1, spareBit_));
    note(SheetEvent::Read);
    if (sendsByItself())
        feedByItself();
}

void Chatsworth::framed(const std::string& text)
{
    if (text == "V") {
        if (start_ != Start::None)
            fault("command V within a session");
        sendAfter(kReplyTime, asStatus(version_ + "G\r"));
        return;
    }
    if (model() != kelReaderTypeChatsworthALSAccelScanOMR)
        fault("command " + text + ", which this model does not know");
    else if (text == "E" && nextFeed() == Feed::Empty && start_ == Start::Done && !underWay_) {
        // No refusal: the command is taken, and nothing comes until there is a sheet.
        feed();
        underWay_ = true;
        waitingForSheet_ = true;
        sendAfter(kReplyTime, asStatus(sheetReply_));
    } else if (text == "E")
        startRead("E", sheetReply_, "");
    else if (text == "EF")
        sendAway(SheetEvent::Rejected);
    else if (text == "ER")
        sendAway(SheetEvent::Ejected);
    else
        fault("unknown command " + text);
}

void Chatsworth::sendAway(SheetEvent event)
{
    if (!inPath_)
        fault("the sheet is sent out, and there is none");
    if (underWay_ || isSending())
        fault("the sheet is sent out while it is under way");
    if (inPath_)
        note(event);
    inPath_ = false;
    sendAfter(kReplyTime, asStatus("G\r"));
}

} // namespace kel
