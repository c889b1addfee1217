// SPDX-License-Identifier: MIT
#include "simulators/scantron/Scanmark.h"

#include "recording/Transcript.h"

#include <algorithm>
#include <stdexcept>

namespace kel {

namespace {

constexpr Byte kEsc = 0x1B;
constexpr Byte kCr = 0x0D;

constexpr std::size_t kStatusLength = 12;
constexpr std::size_t kFlags = 8; // position 9
constexpr char kSheetReady = 0x01;
constexpr char kJam = 0x40;

constexpr std::size_t kMostPrinted = 125;
constexpr Int32 kHighestRaw = 255;

bool isColumnModel(kelReaderType model)
{
    return model == kelReaderTypeScantron8000 || model == kelReaderTypeScantron8400;
}

bool hasEject(kelReaderType model)
{
    return !isColumnModel(model) && model != kelReaderTypeScantronScanMarkES2010 &&
           model != kelReaderTypeScantronScanMarkES2260;
}

std::string usualStatus()
{
    return std::string(7, '0') + "  000";
}

} // namespace

Scanmark::Scanmark(SimulatorOptions options)
    : Simulator(std::move(options)), columnModel_(isColumnModel(model())), ejects_(hasEject(model())),
      status_(parseTranscriptBytes(setting("status", '"' + usualStatus() + '"'))),
      replyTime_(settingTime("reply-ms", 2)), feedTime_(settingTime("feed-ms", 300)),
      readyTime_(settingTime("ready-ms", 0)), endAfter_(settingNumber("end-after", -1)), end_(settingFlag("end", true)),
      answersPrintOff_(settingFlag("prn-n-reply", true))
{
    if (status_.size() != kStatusLength)
        throw std::invalid_argument("setting status: has " + std::to_string(status_.size()) +
                                    " characters instead of 12");
}

void Scanmark::status(std::size_t position, char character)
{
    status_.at(position - 1) = character;
}

void Scanmark::onByte(Byte byte)
{
    if (byte == kEsc) {
        if (frame_ == Frame::Open)
            fault("ESC within the command \"" + command_ + "\"");
        frame_ = Frame::Open;
        command_.clear();
    } else if (frame_ == Frame::None) {
        fault("byte " + hex(byte) + " outside a command");
    } else if (byte == kCr) {
        frame_ = Frame::None;
        obey(command_);
    } else {
        command_ += static_cast<char>(byte);
    }
}

void Scanmark::onClose()
{
    frame_ = Frame::None;
    session_ = false;
}

/// The text of a print has begun, and the host's first command is taken for the rest of it.
void Scanmark::onLeftover()
{
    printTextOpen_ = true;
}

void Scanmark::obey(const std::string& command)
{
    if (std::exchange(printTextOpen_, false)) {
        refuse("PRN$ 1 Y without a sheet");
        return;
    }
    if (command == "SRST") {
        reset();
        return;
    }
    const bool ejectBehindPrintOff = printOff_ && command.starts_with("EJCT");
    if (!session_)
        fault("command \"" + command + "\" before SRST");
    else if (isSending() || isScheduled() || waitingForSheet_) {
        if (!ejectBehindPrintOff)
            fault("command \"" + command + "\" while a reply is outstanding");
    }
    if (command.starts_with("FRM=") && (command.size() == 6 || (command.size() > 7 && command[6] == ' ')))
        form(command.substr(4, 2), command.size() == 6 ? "" : command.substr(7));
    else if (formOpen_)
        refuse("command \"" + command + "\" within a form");
    else if (command == "QSTS")
        reportStatus();
    else if (command.starts_with("THR= "))
        setThreshold(command.substr(5));
    else if (command == "READ 5 Y" || command == "READ 5 Y E")
        startRead();
    else if (command == "EJCT A ")
        sendAway(SheetEvent::Ejected, "A");
    else if (command == "EJCT C")
        sendAway(SheetEvent::Rejected, "C");
    else if (command == "PRN$ 1 N ")
        doNotPrint();
    else if (command.starts_with("PRN$ 1 Y "))
        print(command.substr(9));
    else
        refuse("unknown command \"" + command + "\"");
    printOff_ = command == "PRN$ 1 N ";
}

void Scanmark::acknowledge()
{
    sendAfter(replyTime_, "\r");
}

void Scanmark::refuse(const std::string& why)
{
    fault(why);
    sendAfter(replyTime_, "?");
}

void Scanmark::reset()
{
    dropPending();
    letSheetGo();
    session_ = true;
    printOff_ = false;
    threshold_.reset();
    formOpen_ = false;
    forms_.clear();
    reads_ = 0;
    toldReady_ = false;
    waitingForSheet_ = false;
    jammed_ = false;
    acknowledge();
}

void Scanmark::setThreshold(const std::string& argument)
{
    const std::optional<Int32> value = plainNumber(argument);
    if (!columnModel_)
        refuse("THR= on a model without a threshold");
    else if (!value)
        refuse("the threshold \"" + argument + "\" is not a number");
    else if (!forms_.empty())
        refuse("THR= after a form");
    else {
        threshold_ = value;
        acknowledge();
    }
}

void Scanmark::form(const std::string& keyword, const std::string& arguments)
{
    const std::string command = "FRM=" + keyword + (arguments.empty() ? "" : " ") + arguments;
    const bool starts = keyword == "FS";
    if (starts == formOpen_) {
        refuse(command + (starts ? " within a form" : " outside a form"));
        return;
    }
    if (keyword == "LS" && arguments.empty()) {
        if (stage_ != Stage::None)
            fault(command + " while a sheet is in the reader");
        forms_.push_back(openForm_);
        formOpen_ = false;
        acknowledge();
        return;
    }
    ScanmarkForm::Refusal refusal = "is unknown";
    if (starts) {
        openForm_ = {};
        refusal = openForm_.start(wordsOf(arguments));
    } else if (keyword == "DK") {
        refusal = openForm_.defineRectangle(wordsOf(arguments));
    } else if (keyword == "MC" && columnModel_) {
        refusal = openForm_.defineColumns(wordsOf(arguments));
    }
    if (refusal) {
        refuse(command + ": " + *refusal);
        return;
    }
    formOpen_ = true;
    acknowledge();
}

bool Scanmark::sheetReady() const
{
    return stage_ != Stage::UnderWay && now() >= readyFrom_ && nextFeed() != Feed::Empty;
}

void Scanmark::reportStatus()
{
    std::string block = status_;
    const int flags = (block[kFlags] & ~kSheetReady) | (jammed_ ? kJam : 0) | (sheetReady() ? kSheetReady : 0);
    block[kFlags] = static_cast<char>(flags);
    toldReady_ = sheetReady();
    sendAfter(replyTime_, asStatus(block));
}

void Scanmark::startRead()
{
    if (forms_.empty()) {
        fault("READ before a form was loaded");
        return;
    }
    if (!toldReady_) {
        fault("READ without a status that reported a sheet");
        return;
    }
    toldReady_ = false;
    letSheetGo();
    stage_ = Stage::UnderWay;
    schedule(feedTime_, [this] { takeSheet(); });
}

void Scanmark::takeSheet()
{
    switch (feed()) {
    case Feed::Sheet:
        stage_ = Stage::AtDecision;
        readyFrom_ = now() + readyTime_;
        send(cellBytes() + (end_ ? "\r" : ""));
        ++reads_;
        note(SheetEvent::Read);
        break;
    case Feed::Empty: waitingForSheet_ = true; break;
    case Feed::Jam:
        stage_ = Stage::None;
        jammed_ = true;
        send("\r");
        break;
    }
}

void Scanmark::onSheetPut()
{
    if (std::exchange(waitingForSheet_, false))
        schedule(feedTime_, [this] { takeSheet(); });
}

void Scanmark::letSheetGo()
{
    if (stage_ == Stage::AtDecision)
        note(SheetEvent::Ejected);
    stage_ = Stage::None;
}

void Scanmark::sendAway(SheetEvent event, const std::string& stacker)
{
    if (!ejects_) {
        refuse("EJCT " + stacker + " on a model without it");
        return;
    }
    if (stage_ != Stage::AtDecision) {
        refuse("EJCT " + stacker + " without a sheet");
        return;
    }
    if (event == SheetEvent::Rejected && !printOff_)
        fault("EJCT C without PRN$ 1 N before it");
    stage_ = Stage::None;
    note(event, stacker);
    acknowledge();
}

void Scanmark::print(const std::string& text)
{
    if (stage_ != Stage::AtDecision) {
        refuse("PRN$ 1 Y without a sheet");
        return;
    }
    if (text.size() > kMostPrinted) {
        refuse("PRN$ 1 Y with " + std::to_string(text.size()) + " characters");
        return;
    }
    const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
    note(SheetEvent::Printed, text.substr(begin), 1, static_cast<Int32>(begin));
    acknowledge();
}

void Scanmark::doNotPrint()
{
    if (stage_ != Stage::AtDecision)
        fault("PRN$ 1 N without a sheet");
    if (answersPrintOff_)
        acknowledge();
}

std::string Scanmark::cellBytes() const
{
    std::string bytes;
    for (const ScanmarkCell& cell : forms_[reads_ % forms_.size()].cells())
        bytes += cellByte(markAt(cell.side == 1 ? sheet().side1 : sheet().side2, cell.row, cell.column));
    if (endAfter_ >= 0 && static_cast<std::size_t>(endAfter_) < bytes.size())
        bytes.resize(static_cast<std::size_t>(endAfter_));
    return bytes;
}

char Scanmark::cellByte(Int16 value) const
{
    if (!columnModel_)
        return static_cast<char>('0' + value);
    const Int32 raw = std::clamp<Int32>(value, 0, kHighestRaw);
    return static_cast<char>(raw == kCr ? kCr - 1 : raw);
}

} // namespace kel
