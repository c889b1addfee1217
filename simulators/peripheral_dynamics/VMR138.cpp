// SPDX-License-Identifier: MIT
#include "simulators/peripheral_dynamics/VMR138.h"

#include "recording/Transcript.h"

#include <algorithm>

namespace kel {

namespace {

using namespace std::chrono_literals;

// Status byte 1.
constexpr Byte kFaults = 0x02 | 0x01 | 0x40;
constexpr Byte kJam = 0x02;
constexpr Byte kWantsD = 0x10;
constexpr Byte kWantsG = 0x04;
constexpr Byte kSheetUnderWay = 0x20;
// Status byte 2.
constexpr Byte kWantsE = 0x08;

// The byte before the status bytes. Its bits would be every fault at once if it were taken for one of them.
constexpr char kBeforeStatus = 0x7F;

constexpr Int32 kLowestThreshold = 0xC0;
constexpr Int32 kHighestThreshold = 0xFF;
constexpr Int32 kColumnsPerByte = 6;
constexpr char kNoMarks = 0x40;

constexpr Moment kReplyTime = 2ms;

} // namespace

VMR138::VMR138(SimulatorOptions options)
    : Simulator(std::move(options)),
      threshold_(std::clamp(settingNumber("threshold", 0xC5), kLowestThreshold, kHighestThreshold)),
      status1_(static_cast<Byte>(settingNumber("status1", 0))),
      status2_(static_cast<Byte>(settingNumber("status2", 0))), feedTime_(settingTime("feed-ms", 300)),
      noise_(parseTranscriptBytes(setting("noise", ""))), highBits_(settingNumber("high-bits", -1))
{
}

void VMR138::statusBits(Byte status1, Byte status2)
{
    status1_ = status1;
    status2_ = status2;
}

void VMR138::onByte(Byte byte)
{
    if (session_ == Session::Off && byte != '0') {
        fault("command " + hex(byte) + " before a session was started with 0");
        return;
    }
    switch (byte) {
    case '0': startSession(); break;
    case 'Q': reportStatus(); break;
    case 'D': takeBit('D', status1_, kWantsD); break;
    case 'G': takeBit('G', status1_, kWantsG); break;
    case 'E': takeBit('E', status2_, kWantsE); break;
    case '+':
    case '-': stepThreshold(static_cast<char>(byte)); break;
    case '8': startRead(); break;
    case '9': endPage(); break;
    case '3': sendAway(SheetEvent::Rejected); break;
    case '4': sendAway(SheetEvent::Ejected); break;
    default: fault("unknown command " + hex(byte)); break;
    }
}

void VMR138::onClose()
{
    session_ = Session::Off;
}

/// A sheet is in the path.
void VMR138::onLeftover()
{
    status1_ |= kSheetUnderWay;
}

void VMR138::startSession()
{
    dropPending();
    session_ = Session::On;
    page_ = Page::None;
    waitingForSheet_ = false;
    thresholdAsked_ = false;
    statusFresh_ = false;
    firstStatus_ = true;
    owed_.clear();
}

void VMR138::reportStatus()
{
    if (firstStatus_) {
        owed_ += status1_ & kWantsD ? "D" : "";
        owed_ += status1_ & kWantsG ? "G" : "";
        owed_ += status2_ & kWantsE ? "E" : "";
        firstStatus_ = false;
    }
    statusFresh_ = true;
    const int underWay = page_ == Page::UnderWay ? kSheetUnderWay : 0;
    sendAfter(kReplyTime,
              asStatus({kBeforeStatus, static_cast<char>(status1_ | underWay), static_cast<char>(status2_)}));
}

void VMR138::takeBit(char command, Byte& status, Byte bit)
{
    if (!(status & bit) || firstStatus_)
        fault(std::string("command ") + command + " though no status has asked for it");
    status = static_cast<Byte>(status & ~bit);
    std::erase(owed_, command);
}

void VMR138::demandNoBits(const char* command)
{
    if (!owed_.empty())
        fault(std::string("command ") + command + " though the status asked for " + owed_ + " first");
    owed_.clear();
}

void VMR138::stepThreshold(char command)
{
    if (firstStatus_)
        fault(std::string("a threshold step ") + command + " without a status query before it");
    if (command == '-' && !thresholdAsked_)
        fault("a threshold step - before the threshold was asked for with +");
    demandNoBits("+");
    thresholdAsked_ = true;
    threshold_ = std::clamp(threshold_ + (command == '-' ? 1 : -1), kLowestThreshold, kHighestThreshold);
    sendAfter(kReplyTime, hex(static_cast<Byte>(threshold_)));
}

void VMR138::startRead()
{
    if (!statusFresh_)
        fault("command 8 without a status query before it");
    statusFresh_ = false;
    demandNoBits("8");
    if (page_ == Page::UnderWay) {
        fault("command 8 while a sheet is under way");
        return;
    }
    if (page_ == Page::Sent)
        fault("command 8 though the page before it was not ended with 9");
    page_ = Page::UnderWay;
    schedule(feedTime_, [this] { takeSheet(); });
}

void VMR138::takeSheet()
{
    switch (feed()) {
    case Feed::Sheet:
        page_ = Page::Sent;
        send(pageReply());
        note(SheetEvent::Read);
        break;
    case Feed::Empty: waitingForSheet_ = true; break;
    case Feed::Jam:
        page_ = Page::None;
        status1_ |= kJam;
        break;
    }
}

void VMR138::onSheetPut()
{
    if (std::exchange(waitingForSheet_, false))
        schedule(feedTime_, [this] { takeSheet(); });
}

void VMR138::endPage()
{
    if (page_ == Page::None) {
        session_ = Session::Off;
    } else if (page_ == Page::UnderWay || isSending()) {
        // A host that gives up. The rest of the reply is not sent, and there is nothing more to say in this session.
        dropPending();
        waitingForSheet_ = false;
        session_ = Session::Off;
    }
    page_ = Page::None;
    note(SheetEvent::Ended);
}

void VMR138::sendAway(SheetEvent event)
{
    status1_ = static_cast<Byte>(status1_ & ~(kFaults | kSheetUnderWay)); // the latter of a sheet that was left
    note(event);
}

std::string VMR138::pageReply() const
{
    std::string reply = noise_ + "\n";
    for (Int32 row = static_cast<Int32>(sheet().side1.size()); row >= 1; --row) {
        reply += rowByte(row, 1);
        reply += rowByte(row, 1 + kColumnsPerByte);
    }
    return reply + "\r";
}

char VMR138::rowByte(Int32 row, Int32 firstColumn) const
{
    int bits = 0;
    for (Int32 column = 0; column < kColumnsPerByte; ++column)
        if (markAt(sheet().side1, row, firstColumn + column) != 0)
            bits |= 1 << column;
    if (bits == 0)
        return kNoMarks;
    const int high = highBits_ >= 0 ? highBits_ : row + firstColumn;
    return static_cast<char>(bits | (high & 3) << 6);
}

} // namespace kel
