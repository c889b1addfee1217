// SPDX-License-Identifier: MIT
#include "simulators/apperson/RawMarkReader.h"

#include "recording/Transcript.h"

#include <algorithm>

namespace kel {

namespace {

// The lowest byte that ends a block, and the only one that says that all is well.
constexpr Int32 kLinkDone = 200;
constexpr Int32 kGradeDone = 217;

constexpr std::size_t kFirstRowBytes = 14;
constexpr std::size_t kIdentifierBytes = 10;
constexpr std::size_t kErrorNumberBytes = 3;
constexpr Int32 kGradeColumns = 5;
constexpr char kNoMeaning = 0x55;

constexpr Int32 kWaits = -1;
constexpr std::size_t kLongestCommand = 2;

Int32 columnsOf(const FormDescription& form)
{
    return form.side1Cols.empty() ? 12 : form.side1Cols.front();
}

} // namespace

RawMarkReader::RawMarkReader(SimulatorOptions options)
    : AppersonReader(std::move(options)), link_(model() == kelReaderTypeAppersonAdvantageLink),
      columns_(settingNumber("columns", columnsOf(form()))), emptyCode_(settingNumber("empty-code", kWaits)),
      faultTail_(parseTranscriptBytes(setting("fault-tail", "00 07 0D")))
{
    restart();
}

void RawMarkReader::restart()
{
    page_ = Page::None;
    waitingForSheet_ = false;
    std::deque<std::string> steps;
    if (!readerGrade())
        steps.push_back(link_ ? "T1" : "A1");
    if (!link_)
        steps.insert(steps.end(), {"S8", "M3"});
    expectSteps(std::move(steps));
}

/// A sheet is under way, and its block comes to whoever is there.
void RawMarkReader::onLeftover()
{
    page_ = Page::UnderWay;
    schedule(feedTime(), [this] { takeSheet(); });
}

void RawMarkReader::onClose()
{
    command_.clear();
    restart();
}

void RawMarkReader::onByte(Byte byte)
{
    if (byte == '\r') {
        const std::string command = std::exchange(command_, {});
        obey(command);
    } else {
        command_ += static_cast<char>(byte);
        if (command_.size() == kLongestCommand + 1)
            fault("no CR after " + transcriptBytes(command_.substr(0, kLongestCommand)));
    }
}

void RawMarkReader::obey(const std::string& command)
{
    const auto is = [&](const char* name, bool known) { return known && command == name; };
    if (is("T1", link_) || is("A1", !link_) || is("S8", !link_) || is("M3", !link_))
        takeStep(command);
    else if (is("T2", link_) || is("S9", !link_))
        endSession(command);
    else if (is("FB", link_))
        begin();
    else if (is("FD", link_) || is("P", !link_))
        startRead(command);
    else if (is("FE", link_))
        done();
    else
        fault("unknown command " + transcriptBytes(command));
}

void RawMarkReader::begin()
{
    demandStepsDone("FB");
    if (page_ != Page::None)
        fault(page_ == Page::Sent ? "command FB though the sheet before it was not done with FE"
                                  : "command FB while a sheet is under way");
    else if (reply("FB"))
        page_ = Page::Begun;
}

void RawMarkReader::startRead(const std::string& command)
{
    demandStepsDone(command);
    if (page_ == Page::UnderWay || isSending()) {
        fault("command " + command + " while a sheet is under way");
        return;
    }
    if (link_ && page_ != Page::Begun)
        fault("command FD without FB before it");
    page_ = Page::UnderWay;
    schedule(feedTime(), [this] { takeSheet(); });
}

void RawMarkReader::done()
{
    if (page_ != Page::Sent || isSending()) {
        fault("command FE before the sheet has been sent");
        return;
    }
    page_ = Page::None;
    note(SheetEvent::Ended);
    if (const Int32 code = fieldNumber("End Code", -1); code >= 0)
        send(std::string(1, static_cast<char>(code)) + faultTail_);
    else
        reply("FE");
}

void RawMarkReader::endSession(const std::string& command)
{
    // Whatever was under way is given up.
    dropPending();
    restart();
    replyAtEnd(command);
}

void RawMarkReader::onSheetPut()
{
    if (std::exchange(waitingForSheet_, false))
        schedule(feedTime(), [this] { takeSheet(); });
}

void RawMarkReader::takeSheet()
{
    const Int32 good = link_ ? kLinkDone : kGradeDone;
    switch (feed()) {
    case Feed::Sheet:
        sendSheet(link_ ? linkBytes() : gradeBytes(fieldOf(sheet(), "Error Code")), fieldNumber("Status", good));
        note(SheetEvent::Read);
        break;
    case Feed::Jam:
        if (link_)
            sendSheet(linkBytes().substr(0, kFirstRowBytes + 3), jamCode());
        else
            sendSheet(gradeBytes(std::to_string(jamCode())), good);
        break;
    case Feed::Empty:
        if (emptyCode_ == kWaits)
            waitingForSheet_ = true;
        else
            sendSheet("", emptyCode_);
        break;
    }
}

void RawMarkReader::sendSheet(const std::string& bytes, Int32 status)
{
    const bool good = status == (link_ ? kLinkDone : kGradeDone);
    page_ = good && link_ ? Page::Sent : Page::None;
    send(bytes + static_cast<char>(status) + (good ? "" : faultTail_));
}

Int32 RawMarkReader::rowCount() const
{
    const auto rows = static_cast<Int32>(sheet().side1.size());
    return form().side1Rows.empty() ? rows : std::max<Int32>(rows, form().side1Rows.front());
}

std::string RawMarkReader::linkBytes() const
{
    std::string bytes;
    for (Int32 row = 1; row <= rowCount(); ++row) {
        for (Int32 column = 1; column <= columns_; ++column)
            bytes += static_cast<char>(std::clamp<Int32>(markAt(sheet().side1, row, column), 0, kLinkDone - 1));
        if (row == 1)
            bytes.resize(kFirstRowBytes, kNoMeaning);
    }
    return bytes;
}

std::string RawMarkReader::gradeBytes(const std::string& errorCode) const
{
    const std::string identifier = sheet().barcodes.empty() ? "" : sheet().barcodes.front();
    const std::string told = !errorCode.empty() ? "Error" : identifier.empty() ? "Blank ID#" : identifier;
    // Without an error, the bytes of the error's number mean nothing.
    return cutOrPadded(told, kIdentifierBytes) + kNoMeaning +
           cutOrPadded(errorCode.empty() ? "206" : errorCode, kErrorNumberBytes) + rowsAsBits();
}

std::string RawMarkReader::rowsAsBits() const
{
    std::string bytes;
    for (Int32 row = 1; row <= rowCount(); ++row) {
        Int32 bits = 0;
        for (Int32 column = 1; column <= kGradeColumns; ++column)
            bits |= markAt(sheet().side1, row, column) != 0 ? 1 << (column - 1) : 0;
        // The upper bits mean nothing and change from row to row, as long as the byte does not end the block.
        const Int32 upper = (row << kGradeColumns) & 0xE0;
        bytes += static_cast<char>((bits | upper) < kGradeDone ? bits | upper : bits);
    }
    return bytes;
}

} // namespace kel
