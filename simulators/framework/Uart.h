// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

#include <deque>
#include <optional>

namespace kel {

/// One wire of a line between two ends that are not set alike. The sender's bits are levels in time. The receiver waits
/// for the level of a start bit and looks into the middle of each bit, as long as it takes bits to be. Where a stop bit
/// should be and is none, there is a byte all the same.
class Uart {
public:
    struct Received {
        Moment at;
        Byte byte;
        bool parityError = false;
        bool framingError = false;
    };

    Uart() = default;
    Uart(const LineParameters& sender, const LineParameters& receiver) : sender_(sender), receiver_(receiver) {}

    /// The sender's port has a byte to send, or has just sent it: its last bit is through at `end` or, if the wire is
    /// taken till then, as soon as it can be.
    void send(Moment end, Byte byte);

    /// How many bytes are on the wire, or wait for it.
    [[nodiscard]] std::size_t onTheWire() const noexcept { return frames_.size(); }

    /// When the next byte is complete, whatever else is sent. nullopt while the wire is idle.
    [[nodiscard]] std::optional<Moment> due() const;

    /// The next complete byte.
    [[nodiscard]] std::optional<Received> receive(Moment now);

private:
    struct Frame {
        Moment begin;
        unsigned bits; ///< the first in the lowest bit
        int count;     ///< of bits before the stop bit
    };

    [[nodiscard]] std::optional<Moment> nextStart() const;
    [[nodiscard]] bool levelAt(Moment moment) const;
    [[nodiscard]] Moment lastLook(Moment start) const;
    [[nodiscard]] Received sample(Moment start) const;
    void forget(Moment before);

    LineParameters sender_;
    LineParameters receiver_;
    std::deque<Frame> frames_;
    Moment wireFree_ = Moment::min();
    Moment lookFrom_ = Moment::min();
};

} // namespace kel
