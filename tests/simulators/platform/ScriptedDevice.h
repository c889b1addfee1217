// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace kel {

/// A device that sends what it was told at the times told, and remembers what it heard and when.
class ScriptedDevice final : public LineDevice {
public:
    struct Heard {
        Moment at;
        Byte byte;
        friend bool operator==(const Heard&, const Heard&) = default;
    };

    /// Bytes that arrive at a moment, all together. Moments are given in their order.
    void sendAt(Moment at, const std::string& bytes)
    {
        for (const char byte : bytes)
            queue_.push_back({at, static_cast<Byte>(byte)});
    }
    void unplugAt(Moment at) { unplugAt_ = at; }

    /// Repeats every byte so long after it was heard.
    void echoAfter(Moment delay) { echo_ = delay; }

    void lineOpened(Moment now, const LineParameters& line) override
    {
        openedAt.push_back(now);
        parameters = line;
    }
    void lineClosed(Moment now) override { closedAt.push_back(now); }
    void byteFromHost(Moment now, Byte byte) override
    {
        heard.push_back({now, byte});
        if (echo_)
            queue_.push_back({now + *echo_, byte});
    }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        if (hungUp_)
            return std::nullopt;
        std::optional<Moment> next = unplugAt_;
        if (!queue_.empty() && (!next || queue_.front().at <= *next))
            next = queue_.front().at;
        return next;
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        if (!queue_.empty() && queue_.front().at <= now) {
            const Byte byte = queue_.front().byte;
            queue_.pop_front();
            return byte;
        }
        hungUp_ = hungUp_ || (unplugAt_ && *unplugAt_ <= now);
        return std::nullopt;
    }
    [[nodiscard]] bool hungUp() const override { return hungUp_; }

    std::vector<Heard> heard;
    std::vector<Moment> openedAt;
    std::vector<Moment> closedAt;
    LineParameters parameters;

private:
    std::deque<Heard> queue_;
    std::optional<Moment> unplugAt_;
    std::optional<Moment> echo_;
    bool hungUp_ = false;
};

} // namespace kel
