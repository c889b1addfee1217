// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// Holds the host's end of a simulated reader's line by hand: bytes in, time passes, bytes out.
class DeviceBench {
public:
    struct TimedByte {
        Moment at;
        Byte byte;
    };

    explicit DeviceBench(LineDevice& device, LineParameters line = {}) : device_(device)
    {
        device_.lineOpened(now_, line);
    }

    /// The host's bytes, all there at this moment.
    void send(std::string_view bytes)
    {
        for (const char byte : bytes)
            device_.byteFromHost(now_, static_cast<Byte>(byte));
    }

    /// Lets time pass, and answers what has arrived meanwhile.
    std::string wait(Moment time)
    {
        const Moment end = now_ + time;
        std::string bytes;
        while (const std::optional<Moment> next = device_.nextEvent()) {
            if (*next > end)
                break;
            now_ = std::max(now_, *next);
            if (const std::optional<Byte> byte = device_.takeByte(now_)) {
                bytes += static_cast<char>(*byte);
                arrivals_.push_back({now_, *byte});
            }
        }
        now_ = end;
        return bytes;
    }

    /// Sends, and answers what arrives within the time.
    std::string ask(std::string_view bytes, Moment time = std::chrono::seconds(10))
    {
        send(bytes);
        return wait(time);
    }

    void close() { device_.lineClosed(now_); }
    void open(LineParameters line = {}) { device_.lineOpened(now_, line); }

    [[nodiscard]] Moment now() const { return now_; }

    /// Every byte that has arrived, with its time.
    [[nodiscard]] const std::vector<TimedByte>& arrivals() const { return arrivals_; }

private:
    LineDevice& device_;
    Moment now_{};
    std::vector<TimedByte> arrivals_;
};

} // namespace kel
