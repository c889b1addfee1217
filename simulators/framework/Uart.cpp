// SPDX-License-Identifier: MIT
#include "simulators/framework/Uart.h"

#include <algorithm>
#include <bit>

namespace kel {

namespace {

Moment bitTime(const LineParameters& line)
{
    return Moment(static_cast<Moment::rep>(1e9 / (line.baudRate > 0 ? line.baudRate : 9600)));
}

int bitsBeforeStop(const LineParameters& line)
{
    return 1 + line.dataBits + (line.parity == 'N' ? 0 : 1);
}

bool parityBit(const LineParameters& line, unsigned data)
{
    const bool odd = std::popcount(data) % 2 != 0;
    switch (line.parity) {
    case 'E': return odd;
    case 'O': return !odd;
    default: return line.parity == 'M';
    }
}

unsigned dataOf(const LineParameters& line, unsigned byte)
{
    return byte & ((1U << line.dataBits) - 1U);
}

} // namespace

void Uart::send(Moment end, Byte byte)
{
    const unsigned data = dataOf(sender_, byte);
    unsigned bits = data << 1U; // after a start bit of 0
    if (sender_.parity != 'N')
        bits |= static_cast<unsigned>(parityBit(sender_, data)) << (1 + sender_.dataBits);
    const Moment begin = std::max(end - sender_.characterTime(), wireFree_);
    wireFree_ = begin + sender_.characterTime();
    frames_.push_back({begin, bits, bitsBeforeStop(sender_)});
}

bool Uart::levelAt(Moment moment) const
{
    const Moment bit = bitTime(sender_);
    for (const Frame& frame : frames_) {
        if (moment < frame.begin)
            return true;
        const auto place = (moment - frame.begin) / bit;
        if (place < frame.count)
            return (frame.bits >> static_cast<unsigned>(place) & 1U) != 0;
    }
    return true;
}

std::optional<Moment> Uart::nextStart() const
{
    const Moment bit = bitTime(sender_);
    for (const Frame& frame : frames_)
        for (int place = 0; place < frame.count; ++place) {
            const Moment begin = frame.begin + place * bit;
            if (begin + bit > lookFrom_ && (frame.bits >> static_cast<unsigned>(place) & 1U) == 0)
                return std::max(begin, lookFrom_);
        }
    return std::nullopt;
}

/// The middle of the first stop bit.
Moment Uart::lastLook(Moment start) const
{
    const Moment bit = bitTime(receiver_);
    return start + bitsBeforeStop(receiver_) * bit + bit / 2;
}

std::optional<Moment> Uart::due() const
{
    const std::optional<Moment> start = nextStart();
    // What is on the wire then is known once it is through.
    return start ? std::optional(lastLook(*start) + sender_.characterTime()) : std::nullopt;
}

Uart::Received Uart::sample(Moment start) const
{
    const Moment bit = bitTime(receiver_);
    const auto look = [&](int place) { return levelAt(start + place * bit + bit / 2); };
    unsigned data = 0;
    for (int place = 0; place < receiver_.dataBits; ++place)
        data |= static_cast<unsigned>(look(1 + place)) << static_cast<unsigned>(place);
    Received found{.at = lastLook(start), .byte = static_cast<Byte>(data)};
    if (receiver_.parity != 'N')
        found.parityError = look(1 + receiver_.dataBits) != parityBit(receiver_, data);
    found.framingError = !look(bitsBeforeStop(receiver_));
    return found;
}

std::optional<Uart::Received> Uart::receive(Moment now)
{
    for (std::optional<Moment> start = nextStart(); start && *due() <= now; start = nextStart()) {
        const Moment middle = *start + bitTime(receiver_) / 2;
        if (levelAt(middle)) { // too short for a start bit
            lookFrom_ = middle;
            continue;
        }
        const Received found = sample(*start);
        // A stop bit that was none is through before a start bit is looked for.
        lookFrom_ = found.at + (found.framingError ? bitTime(receiver_) / 2 : Moment{});
        forget(lookFrom_);
        return found;
    }
    return std::nullopt;
}

void Uart::forget(Moment before)
{
    while (!frames_.empty() && frames_.front().begin + sender_.characterTime() <= before)
        frames_.pop_front();
}

} // namespace kel
