// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"

#include <cstdint>
#include <optional>

namespace kel {

/// How the host has set its end of a line.
struct LineParameters {
    Int32 baudRate = 9600;
    char parity = 'N';
    Int32 dataBits = 8;
    double stopBits = 1;
    Int32 handshaking = 0;

    /// How long one character takes on the wire: start bit, data bits, parity bit and stop bits.
    [[nodiscard]] Moment characterTime() const
    {
        const double bits = 1 + dataBits + (parity == 'N' ? 0 : 1) + stopBits;
        return Moment(static_cast<Moment::rep>(bits * 1e9 / (baudRate > 0 ? baudRate : 9600)));
    }
};

/// The far end of a serial line: a reader, or something that plays one. It never waits and has no thread: whoever
/// drives it gives it the time, hands it the bytes of the host and takes its own when they are due. The same object so
/// serves a line in memory under a virtual clock and a pseudo-terminal under the real one.
class LineDevice {
public:
    virtual ~LineDevice() = default;

    /// The host has opened or closed its end.
    virtual void lineOpened(Moment now, const LineParameters& line) = 0;
    virtual void lineClosed(Moment now) = 0;

    /// A byte of the host has arrived completely at `now`. Times never go backwards.
    virtual void byteFromHost(Moment now, Byte byte) = 0;

    /// When the device has its next byte complete on the host's side, does something by itself, or hangs up;
    /// nothing when it is waiting for the host.
    [[nodiscard]] virtual std::optional<Moment> nextEvent() const = 0;

    /// Does what is due at or before `now`; the next byte if one is due, nothing otherwise.
    /// The caller repeats the call until nothing comes.
    [[nodiscard]] virtual std::optional<Byte> takeByte(Moment now) = 0;

    /// Whether the device is unplugged: the line has hung up after the bytes taken so far.
    [[nodiscard]] virtual bool hungUp() const = 0;
};

} // namespace kel
