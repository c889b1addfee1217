// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

namespace kel {

/// A device whose bytes come in bursts, as those of a serial adapter do: what has come over the wire leaves it once
/// each so much time.
class Bursts final : public LineDevice {
public:
    Bursts(LineDevice& device, Moment each) : device_(device), each_(each) {}

    void lineOpened(Moment now, const LineParameters& line) override { device_.lineOpened(now, line); }
    void lineClosed(Moment now) override { device_.lineClosed(now); }
    void byteFromHost(Moment now, Byte byte) override { device_.byteFromHost(now, byte); }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        const std::optional<Moment> next = device_.nextEvent();
        return next ? std::optional((*next + each_ - Moment(1)) / each_ * each_) : std::nullopt;
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override { return device_.takeByte(now); }
    [[nodiscard]] bool hungUp() const override { return device_.hungUp(); }

private:
    LineDevice& device_;
    Moment each_;
};

} // namespace kel
