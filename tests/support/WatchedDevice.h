// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "tests/support/Patience.h"

#include <algorithm>
#include <future>

namespace kel::test {

/// A device that says when its line was closed or hung up: until then the host's last bytes may be on the wire.
///
/// A dialogue that has lost something may wait for it without end. So a device that was open for too long hangs up,
/// which the host reports.
class WatchedDevice final : public LineDevice {
public:
    explicit WatchedDevice(LineDevice& device, Moment patience = kPatience) : device_(device), patience_(patience) {}

    void lineOpened(Moment now, const LineParameters& line) override
    {
        end_ = now + patience_;
        device_.lineOpened(now, line);
    }
    void lineClosed(Moment now) override
    {
        end_.reset();
        device_.lineClosed(now);
        tellEnd();
    }
    void byteFromHost(Moment now, Byte byte) override { device_.byteFromHost(now, byte); }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        const std::optional<Moment> next = device_.nextEvent();
        return next && end_ ? std::min(*next, *end_) : next ? next : end_;
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        tooLong_ = tooLong_ || (end_ && *end_ <= now);
        const std::optional<Byte> byte = tooLong_ ? std::nullopt : device_.takeByte(now);
        if (hungUp())
            tellEnd();
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return tooLong_ || device_.hungUp(); }

    void waitForEnd() { ended_.get_future().wait_for(kPatience); }

private:
    void tellEnd()
    {
        if (!told_)
            ended_.set_value();
        told_ = true;
    }

    LineDevice& device_;
    Moment patience_;
    std::optional<Moment> end_;
    bool tooLong_ = false;
    std::promise<void> ended_;
    bool told_ = false;
};

} // namespace kel::test
