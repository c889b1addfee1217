// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "simulators/framework/SiteFault.h"
#include "simulators/framework/Uart.h"

#include <deque>
#include <optional>

namespace kel {

/// What lies between a simulated reader and its host when something is wrong there: two wires, the ports at their ends
/// and an adapter.
///
///     host -> handshaking -> XON/XOFF -> UART -> reader
///     reader -> handshaking -> XON/XOFF -> UART -> overrun -> adapter -> host
class Cable {
public:
    /// `reader` is how the reader's end would be set if nothing were wrong.
    Cable() = default;
    Cable(const SiteFaults& faults, const LineParameters& reader);

    /// Whether nothing is wrong: bytes need not go through it.
    [[nodiscard]] bool isStraight() const noexcept { return straight_; }

    /// How the reader's end is set; the host's, where nothing is wrong with that.
    [[nodiscard]] LineParameters readerLine() const { return misset_ ? reader_ : host_; }

    void opened(const LineParameters& host);

    /// A byte is through at one end.
    void fromHost(Moment now, Byte byte);
    void fromReader(Moment now, Byte byte);

    /// The next byte that has arrived at the other.
    [[nodiscard]] std::optional<Byte> forReader(Moment now);
    [[nodiscard]] std::optional<Byte> forHost(Moment now);

    /// What the host's port has counted since it was opened.
    [[nodiscard]] const LineErrors& errors() const noexcept { return errors_; }

    /// A reader that is on raises them all; without the wires for handshaking DSR alone gets through.
    [[nodiscard]] ModemLines modemLines() const;

    /// Whether so much is on its way to the host that the reader has to wait with more.
    [[nodiscard]] bool isFull() const;

    /// When something arrives at either end.
    [[nodiscard]] std::optional<Moment> nextEvent() const;

    /// The reader is switched off after so many bytes more.
    void cutAfter(Int32 bytes) { bytesLeft_ = bytes; }

private:
    struct Arrival {
        Moment at;
        Byte byte;
    };

    [[nodiscard]] bool isOff() const { return bytesLeft_ == 0; }
    [[nodiscard]] bool swallows(Byte byte) const;
    void settle(Moment now);
    void deliver(Moment at, Byte byte);
    [[nodiscard]] bool overruns(Moment at);

    bool straight_ = true;
    bool misset_ = false; // the reader's end is set by itself, and the wires are looked at bit by bit
    bool unwired_ = false;
    bool swallowing_ = false;
    bool echoing_ = false;
    std::optional<Int32> overrunBehind_;
    std::optional<Moment> adapterTime_;
    std::optional<Int32> bytesLeft_;

    LineParameters reader_;
    LineParameters host_;
    Uart toReader_;
    Uart toHost_;
    std::deque<Arrival> atReader_;
    std::deque<Arrival> atHost_;
    Moment lastAt_ = Moment::min();
    Int32 stretch_ = 0;
    LineErrors errors_;
};

} // namespace kel
