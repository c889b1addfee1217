// SPDX-License-Identifier: MIT
#include "simulators/ncs/OpScan.h"

#include "types/Text.h"

#include <stdexcept>
#include <string_view>

namespace kel {

namespace {

constexpr Byte kGo = 0x11;
constexpr Byte kEject = 0x12;
constexpr Byte kEnd = 0x0E;
constexpr Byte kEsc = 0x1B;
constexpr Byte kEndOfText = 0x04;

constexpr std::string_view kModes = "ietdws";
constexpr std::size_t kReportLength = 51;
constexpr std::size_t kDriverStatusAt = 34;
constexpr std::size_t kModeAt = 48;

constexpr Int32 kStatusLength = 4;
constexpr int kMeaningless = 0x40;
constexpr Byte kFaults1 = 0x03;
constexpr Byte kFaults2 = 0x0F;
constexpr Byte kJam = 0x08;

char letterOf(const std::string& name, const std::string& text, std::string_view allowed)
{
    if (text.size() != 1 || allowed.find(lowerCase(text)) == std::string_view::npos)
        throw std::invalid_argument("setting " + name + "=" + text + ": is none of the letters " +
                                    std::string(allowed));
    return text[0];
}

Int32 lengthOf(const std::string& name, Int32 length, Int32 least)
{
    if (length < least)
        throw std::invalid_argument("setting " + name + ": is " + std::to_string(least) + " at the least");
    return length;
}

} // namespace

OpScan::OpScan(SimulatorOptions options)
    : Simulator(std::move(options)), capitals_(setting("mode", "i") != lowerCase(setting("mode", "i"))),
      mode_(letterOf("mode", lowerCase(setting("mode", "i")), kModes)), modeBefore_(mode_),
      driverStatus_(letterOf("driver-status", setting("driver-status", "N"), "abcdefghijklmnopqrstuvwxyz")),
      lateReports_(settingNumber("late-reports", 0)), status1_(static_cast<Byte>(settingNumber("status1", 0))),
      status2_(static_cast<Byte>(settingNumber("status2", 0))),
      statusLength_(static_cast<std::size_t>(
          lengthOf("status-length", settingNumber("status-length", kStatusLength), kStatusLength))),
      reportLength_(static_cast<std::size_t>(
          lengthOf("report-length", settingNumber("report-length", Int32{kReportLength}), Int32{kReportLength}))),
      replyTime_(settingTime("reply-ms", 2)),
      feedTime_(settingTime("feed-ms", 300)), format_{.compressed = settingFlag("compress", true),
                                                      .alternating = settingFlag("alternate", false),
                                                      .silentEnd = setting("end", "crlf") == "silence",
                                                      .barcodePrefix = setting("barcode-prefix", "00")},
      feeder_(lowerCase(setting("feeder", "")))
{
}

void OpScan::statusBits(Byte status1, Byte status2)
{
    status1_ = status1;
    status2_ = status2;
}

void OpScan::onByte(Byte byte)
{
    if (begun_ == 0)
        beginCommand(byte);
    else if (begun_ == 's' || begun_ == kEsc)
        finishQuery(byte);
    else if (byte == kEndOfText)
        finishText();
    else
        argument_ += static_cast<char>(byte);
}

void OpScan::onLeftover()
{
    mode_ = modeBefore_ = 't';
}

void OpScan::beginCommand(Byte byte)
{
    if (unconfirmed_ && byte != kGo) {
        fault("command " + hex(byte) + " though the mode command was not confirmed with 11");
        unconfirmed_ = false;
    }
    switch (byte) {
    case 's':
    case 'e':
    case '1':
    case '2':
    case kEsc:
        begun_ = static_cast<char>(byte);
        argument_.clear();
        break;
    case 'r': startSession(); break;
    case kGo: go(); break;
    case kEject: sendAway(SheetEvent::Ejected, "12"); break;
    case kEnd: endSession(); break;
    default: fault("unknown command " + hex(byte)); break;
    }
}

void OpScan::finishQuery(Byte byte)
{
    const char first = begun_;
    begun_ = 0;
    if (first == kEsc && byte == kEject)
        sendAway(SheetEvent::Rejected, "1B 12");
    else if (first == 's' && byte == '0')
        reportMode();
    else if (first == 's' && byte == '1')
        reportStatus();
    else
        fault("unknown command " + hex(static_cast<Byte>(first)) + " " + hex(byte));
}

void OpScan::finishText()
{
    const char first = begun_;
    begun_ = 0;
    switch (first) {
    case 'e': changeMode(argument_); break;
    case '1': printPosition(argument_); break;
    default: print(argument_); break;
    }
}

bool OpScan::replyOutstanding() const
{
    return isSending() || isScheduled();
}

bool OpScan::demandsGo() const
{
    return lowerCase(std::string(1, driverStatus_)) == "a" || lowerCase(std::string(1, driverStatus_)) == "i";
}

void OpScan::changeMode(const std::string& letter)
{
    if (letter.size() != 1 || kModes.find(letter) == std::string_view::npos) {
        fault("there is no scan mode \"" + letter + "\"");
        return;
    }
    unconfirmed_ = demandsGo();
    if (letter[0] != 'w' && mode_ != 'w') {
        fault("from mode " + std::string(1, mode_) + " to " + letter + " without w between them");
        return;
    }
    if (session_ && stage_ == Stage::UnderWay)
        dropPending();
    session_ = false;
    if (reportsStillLate_ == 0)
        modeBefore_ = mode_;
    mode_ = letter[0];
    reportsStillLate_ = lateReports_;
}

void OpScan::reportMode()
{
    if (session_ && replyOutstanding())
        fault("s0 while a reply is outstanding");
    std::string report(reportLength_, '0');
    report[kDriverStatusAt] = driverStatus_;
    const std::string letter(1, reportsStillLate_ > 0 ? modeBefore_ : mode_);
    report[kModeAt] = (capitals_ ? upperCase(letter) : letter).front();
    if (reportsStillLate_ > 0)
        --reportsStillLate_;
    sendAfter(replyTime_, asStatus(report));
}

void OpScan::startSession()
{
    if (mode_ != 'i')
        fault("command r in mode " + std::string(1, mode_));
    dropPending();
    letSheetGo();
    waitingForSheet_ = false;
    status1_ = static_cast<Byte>(status1_ & ~kFaults1);
    status2_ = static_cast<Byte>(status2_ & ~kFaults2);
    session_ = true;
}

void OpScan::endSession()
{
    if (feeder_ == "true")
        fault("command 0E at a reader with a feeder");
    if (!session_)
        fault("command 0E without a session");
    dropPending();
    waitingForSheet_ = false;
    session_ = false;
    note(SheetEvent::Ended);
}

void OpScan::onClose()
{
    if (session_ && feeder_ == "false")
        fault("the line was closed without 0E");
    if (begun_ != 0)
        fault("the line was closed within the command " + hex(static_cast<Byte>(begun_)));
    begun_ = 0;
    session_ = false;
    unconfirmed_ = false;
    waitingForSheet_ = false;
    dropPending();
    if (stage_ == Stage::UnderWay)
        stage_ = Stage::None;
}

void OpScan::go()
{
    if (unconfirmed_) {
        unconfirmed_ = false;
        return;
    }
    startRead();
}

void OpScan::startRead()
{
    if (!session_) {
        fault("command 11 without a session");
        return;
    }
    if (stage_ == Stage::UnderWay) {
        fault("command 11 while a sheet is under way");
        return;
    }
    if (stage_ == Stage::Sent)
        fault("command 11 without s1 after the sheet before it");
    letSheetGo();
    stage_ = Stage::UnderWay;
    schedule(feedTime_, [this] { takeSheet(); });
}

void OpScan::takeSheet()
{
    switch (feed()) {
    case Feed::Sheet:
        stage_ = Stage::Sent;
        send(opScanReply(sheet(), format_));
        note(SheetEvent::Read);
        break;
    case Feed::Empty: waitingForSheet_ = true; break;
    case Feed::Jam:
        stage_ = Stage::Sent;
        status2_ |= kJam;
        send("\r\n");
        break;
    }
}

void OpScan::onSheetPut()
{
    if (std::exchange(waitingForSheet_, false))
        schedule(feedTime_, [this] { takeSheet(); });
}

void OpScan::reportStatus()
{
    if (stage_ != Stage::Sent || replyOutstanding())
        fault("s1 without a sheet whose reply is through");
    else
        stage_ = Stage::Asked;
    std::string status(statusLength_, '0');
    status[1] = static_cast<char>(kMeaningless | status1_);
    status[2] = static_cast<char>(kMeaningless | status2_);
    status[3] = '\r';
    sendAfter(replyTime_, asStatus(status));
}

void OpScan::letSheetGo()
{
    if (stage_ == Stage::Sent || stage_ == Stage::Asked)
        note(SheetEvent::Ejected);
    stage_ = Stage::None;
    forgetPrint();
}

void OpScan::forgetPrint()
{
    if (printPosition_)
        fault("command 1 without a text after it");
    printPosition_.reset();
}

void OpScan::sendAway(SheetEvent event, const char* command)
{
    if (stage_ != Stage::Asked) {
        fault(std::string("command ") + command + " without a sheet whose status was asked for");
        return;
    }
    stage_ = Stage::None;
    forgetPrint();
    status1_ = static_cast<Byte>(status1_ & ~kFaults1);
    status2_ = static_cast<Byte>(status2_ & ~kFaults2);
    note(event, event == SheetEvent::Ejected ? "" : "reject");
}

void OpScan::printPosition(const std::string& digits)
{
    if (stage_ != Stage::Asked)
        fault("command 1 without a sheet whose status was asked for");
    if (!isDigits(digits, 2)) {
        fault("the print position \"" + digits + "\" is not two digits");
        return;
    }
    printPosition_ = std::stoi(digits);
}

void OpScan::print(std::string text)
{
    if (!printPosition_) {
        fault("command 2 without a position before it");
        return;
    }
    if (!text.ends_with(' ')) {
        fault("the print text \"" + text + "\" does not end with a blank");
        return;
    }
    text.pop_back();
    note(SheetEvent::Printed, text, 1, *printPosition_);
    printPosition_.reset();
}

} // namespace kel
