// SPDX-License-Identifier: MIT
#include "simulators/scanning_systems/SekonicSerial.h"

#include "recording/Transcript.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace kel {

namespace {

using namespace std::chrono_literals;

constexpr char kENQ = 0x05;
constexpr char kDLE = 0x10;
constexpr char kDC3 = 0x13;
constexpr char kCAN = 0x18;
constexpr char kSTX = 0x02;
constexpr char kGood = '0';
constexpr Moment kReplyTime = 4ms;
constexpr std::size_t kWindowFields = 6;

Int32 number(std::string_view digits)
{
    Int32 value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

std::string threeDigits(std::size_t count)
{
    const std::string digits = std::to_string(count);
    return std::string(3 - std::min<std::size_t>(digits.size(), 3), '0') + digits;
}

} // namespace

SekonicSerial::SekonicSerial(SimulatorOptions options)
    : Simulator(std::move(options)), mode_(settingNumber("mode", 0)), rejecter_(settingFlag("rejecter", true)),
      optionsReply_(setting("options", "00000.00")), feedTime_(settingTime("feed-ms", 200)),
      resetReply_(parseTranscriptBytes(setting("reset-reply", "06"))), emptyStatus_(settingNumber("empty-status", '2')),
      jamStatus_(settingNumber("jam-status", '1')), faultSide_(FaultSide::Both),
      printStatus_(setting("print-status", "10")), statusOfTwo_(settingFlag("two-sided", hasTwoSides())),
      shortPages_(settingFlag("short-pages", false)), replyLump_(settingNumber("reply-lump", 1)),
      optionsLump_(settingNumber("options-lump", 0))
{
    const std::string side = setting("fault-side", "both");
    if (side != "both" && side != "1" && side != "2")
        throw std::invalid_argument("setting fault-side=" + side + ": is neither 1, 2 nor both");
    if (side == "2" && !statusOfTwo_)
        throw std::invalid_argument("setting fault-side=2: there is no second side");
    if (side != "both")
        faultSide_ = side == "1" ? FaultSide::One : FaultSide::Two;
    if (settingFlag("plain", false))
        style_ = {.blanks = false, .separators = false, .explicitZeros = false};
    if (optionsReply_.size() > 5)
        optionsReply_[5] = rejecter_ ? '1' : '0';
    if (!isLarge())
        learnWindows();
}

/// No host can load windows into the small readers: theirs are those of the form.
void SekonicSerial::learnWindows()
{
    for (const FormWindow& window : form().windows)
        windows_.at(window.Page == 1 ? 0 : 1)
            .push_back(
                {window.StartRow, window.NumRows, window.RowGap, window.StartCol, window.NumCols, window.ColGap});
}

bool SekonicSerial::isLarge() const
{
    return model() != kelReaderTypeScanningSystemsSR410 && model() != kelReaderTypeSekonicSR430;
}

bool SekonicSerial::hasTwoSides() const
{
    return model() == kelReaderTypeScanningSystemsSR607 || model() == kelReaderTypeScanningSystemsSR700352;
}

void SekonicSerial::onOpen()
{
    begun_.clear();
    block_ = Block::None;
    started_ = false;
}

/// A data block has begun, and the host's first command is taken for the rest of it.
void SekonicSerial::onLeftover()
{
    block_ = isLarge() ? Block::Window : Block::StartCommand;
}

void SekonicSerial::onClose()
{
    if (!begun_.empty() || block_ != Block::None)
        fault("the line was closed within a command");
}

void SekonicSerial::onByte(Byte byte)
{
    if (byte != '\r') {
        begun_ += static_cast<char>(byte);
        return;
    }
    const std::string text = std::exchange(begun_, {});
    if (block_ != Block::None)
        block(text);
    else
        obey(text);
}

void SekonicSerial::obey(std::string command)
{
    if (command == std::string(1, kCAN)) {
        reset();
        return;
    }
    if (!started_)
        fault("command " + transcriptBytes(command) + " before a reset");
    int side = 1;
    if (command.starts_with('/')) {
        side = 2;
        command.erase(0, 1);
        if (!hasTwoSides())
            fault("command " + transcriptBytes(command) + " for a second side, which this reader has not");
    }
    const char first = command.empty() ? '\0' : command.front();
    const std::string text = command.empty() ? "" : command.substr(1);
    if (first == kENQ)
        query(text, side);
    else if (first == kDLE)
        setUpOrRead(text, side);
    else if (first == kDC3 && side == 1)
        setting13(text);
    else if (first == '?' && side == 1)
        plainQuery(text);
    else
        unknown(command);
}

void SekonicSerial::unknown(const std::string& command)
{
    fault("unknown command " + transcriptBytes(command));
}

void SekonicSerial::reset()
{
    dropPending();
    started_ = true;
    startCommand_ = false;
    modeTold_ = false;
    extraSetting_ = false;
    lastReply_ = '0';
    windowsCleared_ = false;
    goodSheet_ = false;
    threshold_.clear();
    barcodeArming_.clear();
    printArming_.clear();
    repliedAt_ = now();
    reply(resetReply_);
}

void SekonicSerial::reply(std::string reply)
{
    this->reply(std::move(reply), replyLump_);
}

void SekonicSerial::reply(std::string reply, Int32 lump)
{
    if (now() < repliedAt_ || isSending())
        fault("a query before the reply to the one before it was through");
    repliedAt_ = now() + kReplyTime;
    lastReply_ = reply.empty() ? '0' : reply.front();
    schedule(kReplyTime, [this, lump, text = std::move(reply)] { sendInLumps(text, lump); });
}

void SekonicSerial::query(const std::string& text, int side)
{
    if (text == "OM" && side == 1 && isLarge()) {
        modeTold_ = true;
        reply(std::to_string(mode_));
    } else if (text == "O" && side == 1 && isLarge())
        reply(optionsReply_, optionsLump_);
    else if (text == "T") {
        demandSheet("timing marks");
        reply(threeDigits(this->side(side).size()) + ",7");
    } else
        unknown(kENQ + text);
}

void SekonicSerial::setUpOrRead(const std::string& text, int side)
{
    if (text == "T" && !isLarge() && side == 1)
        block_ = Block::StartCommand;
    else if (text.starts_with("DL") && side == 1)
        takeThreshold(text.substr(2));
    else if (text == "Q" && isLarge() && side == 1) {
        windows_ = {};
        windowsCleared_ = true;
    } else if (text == "W" && isLarge()) {
        block_ = Block::Window;
        blockSide_ = side;
    } else if (text.starts_with("ED001"))
        sendPage(text.substr(5), side);
    else if (text == "R*" && (isLarge() || !form().windows.empty()))
        sendWindows(side);
    else
        unknown(kDLE + text);
}

void SekonicSerial::block(const std::string& text)
{
    const Block kind = std::exchange(block_, Block::None);
    if (kind == Block::Window) {
        loadWindow(text);
        return;
    }
    const std::string wanted = model() == kelReaderTypeScanningSystemsSR410 ? "1" : std::string{kSTX, '2'};
    if (text != wanted)
        fault("start command " + transcriptBytes(text) + " for " + transcriptBytes(wanted));
    startCommand_ = true;
}

void SekonicSerial::takeThreshold(const std::string& text)
{
    bool right = isDigits(text, 2);
    if (isLarge() && mode_ <= 1)
        right = isDigits(text, 1) && text[0] >= '1' && text[0] <= (mode_ == 0 ? '3' : '4');
    else if (model() == kelReaderTypeScanningSystemsSR410)
        right = text.size() >= 2 && text[0] == '0' && isDigits(text, text.size());
    if (!right)
        fault("threshold DL" + text + ", which is not of this model and mode");
    if (isLarge() && !modeTold_)
        fault("the threshold before the mode was asked for");
    if (!isLarge() && !startCommand_)
        fault("the threshold before the start command");
    threshold_ = text;
}

void SekonicSerial::loadWindow(const std::string& text)
{
    if (!windowsCleared_)
        fault("a window without Q before it");
    const std::size_t digits = 2 * kWindowFields;
    if (text.empty() || text.front() != kSTX || !text.ends_with("112") || !isDigits(text.substr(1), digits + 3)) {
        fault("a window of other fields: " + transcriptBytes(text));
        return;
    }
    std::array<Int32, kWindowFields> fields{};
    for (std::size_t field = 0; field < kWindowFields; ++field)
        fields[field] = number(std::string_view(text).substr(1 + 2 * field, 2));
    windows_.at(static_cast<std::size_t>(blockSide_ - 1))
        .push_back({fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]});
}

void SekonicSerial::setting13(const std::string& text)
{
    if (text == "15" && model() == kelReaderTypeSekonicSR430) {
        extraSetting_ = true;
        return;
    }
    if (!isLarge())
        unknown(kDC3 + text);
    else if (text.starts_with("DD")) {
        if (!isDigits(text.substr(2), 2))
            fault("mark discrimination of other fields: " + text);
        if (lastReply_ <= '1')
            fault("mark discrimination though the last reply does not allow it");
    } else if (text == "BA05")
        sendBarcode();
    else if (text.starts_with("BA")) {
        barcodeArming_ += text.starts_with("BA10999") && text.size() > 7 ? "zone" : text.substr(2) + " ";
    } else if (text == "P10" || text == "P3100")
        printArming_ += text;
    else if (text.starts_with('P'))
        printCommand(text.substr(1));
    else if (text == "R05") {
        if (!rejecter_)
            fault("a sheet to the reject hopper, which this reader has not");
        sendAway(SheetEvent::Rejected);
    } else if (text == "R04")
        sendAway(SheetEvent::Ejected);
    else
        unknown(kDC3 + text);
}

void SekonicSerial::plainQuery(const std::string& text)
{
    if (text.empty())
        startRead();
    else if (text == "P" && isLarge()) {
        demandPrint("the print status");
        if (printText_)
            fault("the print status is asked for with a text that was not printed");
        reply(printStatus_);
    } else if (text == "F" && isLarge()) {
        sendAway(SheetEvent::Ejected);
        reply("F0");
    } else
        unknown("?" + text);
}

void SekonicSerial::startRead()
{
    if (threshold_.empty())
        fault("a sheet before the threshold");
    if (model() == kelReaderTypeSekonicSR430 && !extraSetting_)
        fault("a sheet before 13 \"15\"");
    if (!barcodeArming_.empty() && barcodeArming_ != "00 01 zone")
        fault("barcodes armed with " + barcodeArming_);
    if (!printArming_.empty() && printArming_ != "P10P3100")
        fault("the printer armed with " + printArming_);
    if (now() < repliedAt_ || isSending() || isScheduled())
        fault("a sheet before the reply to the command before it was through");
    goodSheet_ = false;
    schedule(feedTime_, [this] { takeSheet(); });
}

void SekonicSerial::takeSheet()
{
    const Feed fed = feed();
    barcodeArmed_ = !barcodeArming_.empty();
    printArmed_ = !printArming_.empty();
    barcodeArming_.clear();
    printArming_.clear();
    printText_.reset();
    printPosition_.reset();
    goodSheet_ = fed == Feed::Sheet;
    const Int32 status = goodSheet_ ? kGood : fed == Feed::Empty ? emptyStatus_ : jamStatus_;
    if (status >= 0)
        sendInLumps(asStatus(statusBytes(status)), replyLump_);
}

std::string SekonicSerial::statusBytes(Int32 status) const
{
    const char first = faultSide_ == FaultSide::Two ? kGood : static_cast<char>(status);
    const char second = faultSide_ == FaultSide::One ? kGood : static_cast<char>(status);
    return statusOfTwo_ ? std::string{second, first} : std::string{first};
}

void SekonicSerial::demandSheet(const std::string& what)
{
    if (!goodSheet_)
        fault(what + " without a good sheet");
}

void SekonicSerial::demandPrint(const std::string& what)
{
    demandSheet(what);
    if (!printArmed_)
        fault(what + " that was not armed for this sheet");
    else if (!printPosition_)
        fault(what + " without a position");
}

void SekonicSerial::sendBarcode()
{
    demandSheet("a barcode");
    if (!barcodeArmed_)
        fault("a barcode that was not armed for this sheet");
    if (sheet().barcodes.empty() || sheet().barcodes.front().empty())
        reply("?00\r");
    else
        reply("*" + sheet().barcodes.front() + "\r");
}

void SekonicSerial::sendPage(const std::string& rows, int side)
{
    demandSheet("marks");
    if (!isDigits(rows, 3)) {
        fault("marks down to row " + rows);
        return;
    }
    if (now() < repliedAt_ || isSending())
        fault("a query before the reply to the one before it was through");
    const MarkRows& marks = this->side(side);
    Int32 count = number(rows);
    if (shortPages_)
        count = std::min(count, std::max(1, static_cast<Int32>(marks.size())));
    const bool reversed = model() == kelReaderTypeSekonicSR430 && side == 1;
    const ColumnLetters letters = reversed ? ColumnLetters::Reversed : ColumnLetters::Counted;
    repliedAt_ = now() + kReplyTime;
    sendAfter(kReplyTime, pageReply(marks, count, letters, style_));
    note(SheetEvent::Read);
}

void SekonicSerial::sendWindows(int side)
{
    demandSheet("windows");
    if (isLarge() && !windowsCleared_)
        fault("windows without Q before them");
    if (now() < repliedAt_ || isSending())
        fault("a query before the reply to the one before it was through");
    repliedAt_ = now() + kReplyTime;
    // A side without windows has a reply too, or the host would take it for silence.
    const std::string reply = windowReply(this->side(side), windows(side), style_);
    sendAfter(kReplyTime, reply.empty() ? "\r" : reply);
    note(SheetEvent::Read);
}

void SekonicSerial::printCommand(const std::string& text)
{
    const bool positions = text.starts_with("32") && isDigits(text.substr(2), 3);
    if (positions)
        printPosition_ = number(std::string_view(text).substr(2));
    demandPrint("a print");
    const bool hasLine = text.size() >= 2 && text[1] >= '0' && text[1] <= '2';
    const Int32 line = hasLine ? text[1] - '0' + 1 : 0;
    if (positions)
        return;
    if (hasLine && text[0] == '4' && text.size() > 2 && text.back() == ' ')
        printText_ = {line, text.substr(2, text.size() - 3)};
    else if (hasLine && text[0] == '2' && text.size() == 2 && printText_ && printText_->first == line) {
        note(SheetEvent::Printed, printText_->second, line, printPosition_.value_or(0));
        printText_.reset();
    } else
        fault("print command P" + text);
}

void SekonicSerial::sendAway(SheetEvent event)
{
    if (sheetNumber() == 0)
        fault("a sheet is sent out, and there was none");
    note(event);
}

} // namespace kel
