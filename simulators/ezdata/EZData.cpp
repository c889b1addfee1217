// SPDX-License-Identifier: MIT
#include "simulators/ezdata/EZData.h"

#include "recording/Transcript.h"

#include <algorithm>
#include <stdexcept>

namespace kel {

namespace {

using Kind = HostCommand::Kind;

constexpr int kSheetInPath = 0x01;
constexpr int kJam = 0x04;

constexpr std::size_t kBetween = 4;

/// The setting's text, which has to have a length.
std::string ofLength(const std::string& text, std::size_t length, const char* name)
{
    if (text.size() != length)
        throw std::invalid_argument("setting " + std::string(name) + "=" + text + ": is not of " +
                                    std::to_string(length) + " characters");
    return text;
}

} // namespace

EZData::EZData(SimulatorOptions options)
    : Simulator(std::move(options)), format_(ofLength(setting("format", "22"), 2, "format")),
      mode_(ofLength(setting("mode", "INL"), 3, "mode")),
      between_(ofLength(setting("between", "G?#8"), kBetween, "between")),
      active_{.flags = ofLength(setting("flags", "03"), 2, "flags"),
              .timing = ofLength(setting("timing", "80"), 2, "timing"),
              .threshold = ofLength(setting("threshold", "68"), 2, "threshold"),
              .decay = ofLength(setting("decay", "1.5"), 3, "decay")},
      changed_(active_), sealed_(active_), inPath_(settingNumber("stranded", 0)),
      status_(static_cast<Byte>(settingNumber("status", 0x10))),
      lastByte_(parseTranscriptBytes(setting("last-byte", "0D"))), version_(setting("version", "EZData 4.10 ")),
      spareBit_(spareBitFrom(setting("spare-bit", "changing"))), replyTime_(settingTime("reply-ms", 5)),
      feedTime_(settingTime("feed-ms", 800)), resetTime_(settingTime("reset-ms", 1200)),
      hopperTime_(settingTime("hopper-ms", 900))
{
}

std::string EZData::configuration() const
{
    // 22.03.80....INL68.1.5: what stands between the values means nothing.
    return format_ + between_[0] + active_.flags + between_[1] + active_.timing + between_ + mode_ + active_.threshold +
           between_[2] + active_.decay;
}

void EZData::onOpen()
{
    frames_.clear();
    sessionEnded_ = false;
}

void EZData::onClose()
{
    statusAsked_ = false;
    busyUntil_ = std::min(busyUntil_, now());
    if (!frames_.empty())
        fault("the line was closed within a command");
}

void EZData::onByte(Byte byte)
{
    if (const std::optional<HostCommand> command = frames_.take(byte))
        obey(*command);
}

void EZData::obey(const HostCommand& command)
{
    switch (command.kind) {
    case Kind::Framed: framed(command.text); break;
    case Kind::LocateProbe:
        demandReadiness("the locate probe");
        reply("");
        break;
    case Kind::JoinedProbe: fault("the joined probe, which is for other readers"); break;
    case Kind::SetUp:
    case Kind::Single:
    case Kind::Broken: fault("no command: " + transcriptBytes(command.text)); break;
    }
}

void EZData::framed(const std::string& text)
{
    demandReadiness(text);
    if (feeding_ && text != "D")
        fault("command " + text + " while a page is under way");
    if (text == "GETCONFIG") {
        sessionEnded_ = false;
        replyWithStatus(configuration() + '\r');
    } else if (text.starts_with("SET"))
        set(text);
    else if (text == "CHECKSUM")
        seal();
    else if (text == "RESET")
        restart();
    else if (text == "S")
        reportStatus();
    else if (text == "E")
        startRead();
    else if (text == "EF")
        sendAway(SheetEvent::Rejected);
    else if (text == "ER")
        sendAway(SheetEvent::Ejected);
    else if (text == "V")
        reply(version_);
    else if (text == "D") {
        statusAsked_ = false;
        sessionEnded_ = true;
        note(SheetEvent::Ended);
        reply("");
    } else {
        fault("unknown command " + text);
        reply("", false);
    }
}

void EZData::demandReadiness(const std::string& command)
{
    if (now() < busyUntil_)
        fault(command + " while the reader is busy with " + busyWith_);
    else if (isSending() && command != "D")
        fault(command + " before the reply to " + busyWith_ + " was through");
    busyWith_ = command;
}

void EZData::reply(const std::string& text, bool taken)
{
    busyUntil_ = now() + replyTime_;
    sendAfter(replyTime_, text + (taken ? "G" : "?") + lastByte_);
}

void EZData::replyWithStatus(const std::string& text)
{
    busyUntil_ = now() + replyTime_;
    sendAfter(replyTime_, asStatus(text + "G" + lastByte_));
}

/// A sheet is in the path, and of the changes to the configuration some were made and sealed.
void EZData::onLeftover()
{
    active_.flags = "01";
    active_.threshold = "60";
    changed_ = sealed_ = active_;
    inPath_ = 1;
}

void EZData::set(const std::string& command)
{
    struct Settable {
        std::string name;
        std::string Configuration::*value;
    };
    static const Settable settables[] = {{"SETFLAGS", &Configuration::flags},
                                         {"SETTMCH", &Configuration::timing},
                                         {"SETTHRESH", &Configuration::threshold},
                                         {"SETDECAY", &Configuration::decay}};
    if (change_ != Change::None)
        fault("command " + command + " though the change before it was not sealed and followed by RESET");
    for (const Settable& settable : settables) {
        if (!command.starts_with(settable.name))
            continue;
        const std::string argument = command.substr(settable.name.size());
        const bool flags = settable.value == &Configuration::flags;
        if (!isDigits(argument, flags ? 2 : 1)) {
            reply(argument, false);
            return;
        }
        const int digit = argument.back() - '0';
        std::string value = argument;
        std::string echo = argument;
        if (flags)
            echo = static_cast<char>((argument[0] - '0') * 16 + digit);
        else if (settable.value == &Configuration::timing)
            value = "8" + argument;
        else if (settable.value == &Configuration::threshold)
            value = std::to_string(60 + 2 * digit);
        else
            value = std::to_string(digit / 2) + (digit % 2 != 0 ? ".5" : ".0");
        if (active_.*settable.value == value)
            fault("command " + command + " though that is set already");
        changed_ = active_;
        changed_.*settable.value = value;
        change_ = Change::Set;
        reply(echo);
        return;
    }
    fault("unknown command " + command);
    reply("", false);
}

void EZData::seal()
{
    if (change_ != Change::Set)
        fault("command CHECKSUM without a change to seal");
    else
        sealed_ = changed_;
    const bool taken = change_ == Change::Set;
    change_ = taken ? Change::Sealed : change_;
    reply("P", taken);
}

void EZData::restart()
{
    if (change_ != Change::Sealed)
        fault("command RESET without a sealed change");
    dropPending();
    feeding_ = false;
    active_ = sealed_;
    changed_ = sealed_;
    change_ = Change::None;
    busyUntil_ = now() + resetTime_;
}

void EZData::reportStatus()
{
    if (change_ != Change::None)
        fault("command S though a change was not sealed and followed by RESET");
    statusAsked_ = true;
    const int standing = status_ | (inPath_ > 0 ? kSheetInPath : 0) | (jammed_ ? kJam : 0);
    replyWithStatus(std::string(1, static_cast<char>(standing)));
}

void EZData::startRead()
{
    if (!statusAsked_)
        fault("command E without a status query in this session");
    if (nextFeed() == Feed::Empty) {
        feed(); // for the log
        reply("", false);
        return;
    }
    inPath_ = 0; // the sheet before it goes its way
    feeding_ = true;
    reply("");
    schedule(feedTime_, [this] { takeSheet(); });
}

void EZData::takeSheet()
{
    feeding_ = false;
    const Feed fed = feed();
    if (fed == Feed::Empty)
        return;
    ++inPath_;
    jammed_ = fed == Feed::Jam;
    if (jammed_ || sessionEnded_)
        return;
    send(packedRows(sheet().side1, spareBit_));
    note(SheetEvent::Read);
}

void EZData::sendAway(SheetEvent event)
{
    if (inPath_ == 0) {
        reply("", false);
        return;
    }
    --inPath_;
    jammed_ = false;
    note(event);
    reply("");
    if (event == SheetEvent::Rejected)
        busyUntil_ = now() + hopperTime_;
}

} // namespace kel
