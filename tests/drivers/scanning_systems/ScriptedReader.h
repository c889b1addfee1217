// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"

#include <deque>
#include <string>
#include <utility>

namespace kel::scanning_systems_test {

/// A far end that answers commands as it was told: each command must come in its turn, byte for byte.
class ScriptedReader final : public LineDevice {
public:
    /// The next command and what is sent upon it, nothing if that is empty.
    ScriptedReader& on(std::string command, std::string reply = {}, Moment delay = std::chrono::milliseconds(1))
    {
        steps_.push_back({std::move(command), {{delay, std::move(reply)}}});
        return *this;
    }

    /// More of the last reply, so much later.
    ScriptedReader& then(Moment delay, std::string reply)
    {
        steps_.back().replies.emplace_back(delay, std::move(reply));
        return *this;
    }

    /// Sends without being asked.
    void sendUnasked(Moment at, const std::string& bytes) { send(at, bytes); }

    /// Pulls the plug with the next command.
    ScriptedReader& unplugOn(std::string command)
    {
        steps_.push_back({std::move(command), {}, true});
        return *this;
    }

    /// What has not been asked yet, and what has come out of turn.
    [[nodiscard]] std::size_t stepsLeft() const { return steps_.size(); }
    [[nodiscard]] const std::string& notUnderstood() const { return heard_; }

    void lineOpened(Moment, const LineParameters&) override {}
    void lineClosed(Moment) override {}

    void byteFromHost(Moment now, Byte byte) override
    {
        heard_ += static_cast<char>(byte);
        if (steps_.empty() || heard_ != steps_.front().command)
            return;
        heard_.clear();
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        for (const auto& [delay, reply] : step.replies)
            send(now += delay, reply);
        hungUp_ = step.unplug;
    }

    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return sent_.empty() ? std::nullopt : std::optional(sent_.front().first);
    }

    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        if (sent_.empty() || sent_.front().first > now)
            return std::nullopt;
        const Byte byte = sent_.front().second;
        sent_.pop_front();
        return byte;
    }

    [[nodiscard]] bool hungUp() const override { return hungUp_; }

private:
    struct Step {
        std::string command;
        std::deque<std::pair<Moment, std::string>> replies;
        bool unplug = false;
    };

    void send(Moment at, const std::string& bytes)
    {
        for (const char byte : bytes)
            sent_.emplace_back(at, static_cast<Byte>(byte));
    }

    std::deque<Step> steps_;
    std::string heard_;
    std::deque<std::pair<Moment, Byte>> sent_;
    bool hungUp_ = false;
};

} // namespace kel::scanning_systems_test
