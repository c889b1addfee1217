// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "tests/support/Patience.h"

#include <future>

namespace kel::test {

/// A device that says when its line was closed or hung up: until then the host's last bytes may be on the wire.
class WatchedDevice final : public LineDevice {
public:
    explicit WatchedDevice(LineDevice& device) : device_(device) {}

    void lineOpened(Moment now, const LineParameters& line) override { device_.lineOpened(now, line); }
    void lineClosed(Moment now) override
    {
        device_.lineClosed(now);
        tellEnd();
    }
    void byteFromHost(Moment now, Byte byte) override { device_.byteFromHost(now, byte); }
    [[nodiscard]] std::optional<Moment> nextEvent() const override { return device_.nextEvent(); }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        const std::optional<Byte> byte = device_.takeByte(now);
        if (device_.hungUp())
            tellEnd();
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return device_.hungUp(); }

    void waitForEnd() { ended_.get_future().wait_for(kPatience); }

private:
    void tellEnd()
    {
        if (!told_)
            ended_.set_value();
        told_ = true;
    }

    LineDevice& device_;
    std::promise<void> ended_;
    bool told_ = false;
};

} // namespace kel::test
