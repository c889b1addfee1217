// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

#include <array>

namespace kel {

/// The settings of a terminal device, with its speed as a number, so that any speed can be said: the classic
/// interface of the C library knows a fixed list only, without 14400, 56000, 128000 and 256000.
class TerminalAttributes {
public:
    /// Reads or writes those of an open terminal; false leaves the cause in `errno`. Writing takes effect at once and
    /// waits for nothing.
    [[nodiscard]] bool readFrom(int terminal);
    [[nodiscard]] bool writeTo(int terminal) const;

    /// Bytes pass as they stand in both directions, a read gives what is there, and the receiver is on. The modem
    /// lines neither matter nor change when the line is closed.
    void makeRaw();

    /// Has characters with a wrong parity bit marked (FF 00 in front, and FF FF for FF), or takes them as they are.
    void markParity(bool value);

    /// Speed, parity, data bits, stop bits and handshaking. One and a half stop bits are what two are with 5 data
    /// bits.
    void set(const LineParameters& line);

    /// How the terminal is set. A pseudo-terminal always has 8 data bits and no parity.
    [[nodiscard]] LineParameters line() const;

    /// Whether closing the line drops its modem lines.
    [[nodiscard]] bool hangsUpOnClose() const;
    void hangUpOnClose(bool value);

    friend bool operator==(const TerminalAttributes&, const TerminalAttributes&) = default;

private:
    static constexpr std::size_t kControlCharacters = 19;

    std::uint32_t input_ = 0;
    std::uint32_t output_ = 0;
    std::uint32_t control_ = 0;
    std::uint32_t local_ = 0;
    std::uint8_t discipline_ = 0;
    std::array<std::uint8_t, kControlCharacters> characters_{};
    std::uint32_t inputSpeed_ = 0;
    std::uint32_t outputSpeed_ = 0;
};

} // namespace kel
