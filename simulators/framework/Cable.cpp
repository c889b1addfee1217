// SPDX-License-Identifier: MIT
#include "simulators/framework/Cable.h"

#include "platform/ReceivedInput.h"

#include <algorithm>

namespace kel {

namespace {

using Kind = SiteFault::Kind;

constexpr Byte kXon = 0x11;
constexpr Byte kXoff = 0x13;
constexpr Byte kWrongParity = '?'; // what a port reads instead of such a byte

constexpr Int32 kHardware = 2; // and 3, which is both

Int32 otherSpeed(Int32 usual)
{
    return usual == 9600 ? 19200 : 9600;
}

char otherParity(char usual)
{
    return usual == 'E' ? 'N' : 'E';
}

LineParameters missetLine(const SiteFaults& faults, LineParameters line)
{
    line.baudRate = faults.value(Kind::WrongSpeed, otherSpeed(line.baudRate)).value_or(line.baudRate);
    line.parity = static_cast<char>(faults.value(Kind::WrongParity, otherParity(line.parity)).value_or(line.parity));
    line.dataBits = faults.value(Kind::WrongDataBits, line.dataBits == 8 ? 7 : 8).value_or(line.dataBits);
    if (const std::optional<Int32> stop = faults.value(Kind::WrongStopBits, line.stopBits == 2 ? 1 : 2))
        line.stopBits = *stop;
    const Int32 percent = faults.value(Kind::ClockOff, 2).value_or(0);
    line.baudRate += line.baudRate / 100 * percent;
    return line;
}

} // namespace

Cable::Cable(const SiteFaults& faults, const LineParameters& reader)
    : unwired_(faults.has(Kind::HandshakingUnwired)), swallowing_(faults.has(Kind::XonXoffSwallowed)),
      echoing_(faults.has(Kind::Echo)), overrunBehind_(faults.value(Kind::HandshakingOff, 16)),
      reader_(missetLine(faults, reader))
{
    for (const Kind kind : {Kind::WrongSpeed, Kind::WrongParity, Kind::WrongDataBits, Kind::WrongStopBits,
                            Kind::ClockOff, Kind::OtherModel})
        misset_ = misset_ || faults.has(kind);
    if (const std::optional<Int32> time = faults.value(Kind::Lumps, 16))
        adapterTime_ = std::chrono::milliseconds(*time);
    if (faults.value(Kind::SwitchedOff, 1) == 0)
        cutAfter(0);
    straight_ = !misset_ && !unwired_ && !swallowing_ && !echoing_ && !overrunBehind_ && !adapterTime_ &&
                !faults.has(Kind::SwitchedOff);
}

void Cable::opened(const LineParameters& host)
{
    host_ = host;
    toReader_ = Uart(host_, reader_);
    toHost_ = Uart(reader_, host_);
    atReader_.clear();
    atHost_.clear();
    lastAt_ = Moment::min();
    errors_ = {};
}

ModemLines Cable::modemLines() const
{
    if (isOff())
        return {};
    return {.clearToSend = !unwired_, .dataSetReady = true, .carrierDetect = !unwired_};
}

bool Cable::swallows(Byte byte) const
{
    return swallowing_ && (byte == kXon || byte == kXoff);
}

void Cable::fromHost(Moment now, Byte byte)
{
    if (unwired_ && host_.handshaking >= kHardware)
        return;
    if (echoing_)
        deliver(now, byte);
    if (isOff() || swallows(byte))
        return;
    if (misset_)
        toReader_.send(now, byte);
    else
        atReader_.push_back({now, byte});
}

void Cable::fromReader(Moment now, Byte byte)
{
    if (unwired_ || isOff())
        return;
    if (bytesLeft_)
        --*bytesLeft_;
    if (swallows(byte))
        return;
    if (misset_)
        toHost_.send(now, byte);
    else
        deliver(now, byte);
}

void Cable::settle(Moment now)
{
    while (const std::optional<Uart::Received> found = toReader_.receive(now))
        atReader_.push_back({found->at, found->byte});
    while (const std::optional<Uart::Received> found = toHost_.receive(now)) {
        errors_.parity += found->parityError ? 1 : 0;
        errors_.framing += found->framingError ? 1 : 0;
        deliver(found->at, found->parityError ? kWrongParity : found->byte);
    }
}

/// A byte has come through the wire to the host's port.
void Cable::deliver(Moment at, Byte byte)
{
    if (overruns(at)) {
        ++errors_.overrun;
        return;
    }
    if (adapterTime_)
        at = (at / *adapterTime_ + 1) * *adapterTime_;
    atHost_.push_back({atHost_.empty() ? at : std::max(at, atHost_.back().at), byte});
}

bool Cable::overruns(Moment at)
{
    const bool pause = lastAt_ == Moment::min() || at > lastAt_ + 2 * readerLine().characterTime();
    lastAt_ = at;
    stretch_ = pause ? 1 : stretch_ + 1;
    return overrunBehind_ && stretch_ > *overrunBehind_ && stretch_ % 2 == 0;
}

std::optional<Byte> Cable::forReader(Moment now)
{
    settle(now);
    if (atReader_.empty() || atReader_.front().at > now)
        return std::nullopt;
    const Byte byte = atReader_.front().byte;
    atReader_.pop_front();
    return byte;
}

std::optional<Byte> Cable::forHost(Moment now)
{
    settle(now);
    if (atHost_.empty() || atHost_.front().at > now)
        return std::nullopt;
    const Byte byte = atHost_.front().byte;
    atHost_.pop_front();
    return byte;
}

bool Cable::isFull() const
{
    return atHost_.size() + toHost_.onTheWire() >= ReceivedInput::kRoom;
}

std::optional<Moment> Cable::nextEvent() const
{
    std::optional<Moment> next;
    const auto consider = [&next](std::optional<Moment> moment) {
        if (moment && (!next || *moment < *next))
            next = moment;
    };
    consider(atReader_.empty() ? std::nullopt : std::optional(atReader_.front().at));
    consider(atHost_.empty() ? std::nullopt : std::optional(atHost_.front().at));
    consider(toReader_.due());
    consider(toHost_.due());
    return next;
}

} // namespace kel
