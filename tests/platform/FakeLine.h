// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineControl.h"
#include "platform/ReceivedInput.h"
#include "platform/SteadyTime.h"
#include "platform/TurnPump.h"
#include "platform/WakeCall.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kel::test {

/// A clock that moves when it is told to. It begins at the real one's present.
struct FakeTime {
    Moment begin = steadyTime();
    Moment now = begin;

    [[nodiscard]] Moment passed() const { return now - begin; }
};

/// A line whose bytes come at the moments that a test lays out, or without end.
class FakeLine final : public ReceivedInput {
public:
    explicit FakeLine(FakeTime& time) : ReceivedInput("Port 1 (a line)", 4096), time_(time) {}

    /// Counted from the beginning of the time.
    void arrives(Moment at, const std::string& bytes) { coming_[time_.begin + at] += bytes; }

    /// From now on every read is filled by this.
    void endless(std::function<char()> next) { endless_ = std::move(next); }

    [[nodiscard]] std::optional<Moment> nextArrival() const
    {
        if (endless_)
            return time_.now;
        return coming_.empty() ? std::nullopt : std::optional(coming_.begin()->first);
    }

    [[nodiscard]] std::size_t given() const { return given_; }
    [[nodiscard]] LineErrors errors() override { return {}; }

private:
    [[nodiscard]] Fetched read(char* into, std::size_t room) override
    {
        time_.now += endless_ ? std::chrono::microseconds(1000) : std::chrono::microseconds(1);
        std::size_t count = 0;
        for (; endless_ && count < room; ++count)
            into[count] = endless_();
        while (count < room && !coming_.empty() && coming_.begin()->first <= time_.now) {
            std::string& bytes = coming_.begin()->second;
            const std::size_t part = bytes.copy(into + count, room - count);
            bytes.erase(0, part);
            count += part;
            if (bytes.empty())
                coming_.erase(coming_.begin());
        }
        given_ += count;
        return {.count = count, .more = count == room};
    }

    void awaitInput(Moment until) override
    {
        time_.now = std::max(time_.now, std::min(until, nextArrival().value_or(until)));
    }

    [[nodiscard]] Moment time() const noexcept override { return time_.now; }

    FakeTime& time_;
    std::map<Moment, std::string> coming_;
    std::function<char()> endless_;
    std::size_t given_ = 0;
};

/// A pump on the fake clock with the order of turns of the real ones.
class FakePump final : public TurnPump {
public:
    explicit FakePump(FakeTime& time) : time_(time) {}

    using TurnPump::add;
    using TurnPump::remove;
    void add(FakeLine& line) { TurnPump::add(line); }
    void remove(FakeLine& line) { TurnPump::remove(line); }

    /// Another thread calls while this one waits.
    void calledAt(Moment at) { callAt_ = time_.begin + at; }

    /// The process is stopped from a moment on, for a time.
    void stoppedAt(Moment at, Moment lasts) { stops_[time_.begin + at] = lasts; }

    /// What waits would have lasted if nothing had come.
    [[nodiscard]] const std::vector<Moment>& waits() const { return waits_; }

    [[nodiscard]] std::shared_ptr<WakeCall> wakeCall() override { return nullptr; }

private:
    void fetchInput(Moment atMost) override
    {
        const Moment longest = longestWait(atMost, lines().empty() ? Watched::Nothing : Watched::All);
        waits_.push_back(longest);
        Moment end = longest == Moment::max() ? longest : time_.now + std::max(longest, Moment::zero());
        if (callAt_) {
            end = std::min(end, std::max(*callAt_, time_.now));
            callAt_.reset();
        }
        for (ReceivedInput* line : lines()) {
            if (line->canBringMore())
                end = std::min(end, std::max(static_cast<FakeLine*>(line)->nextArrival().value_or(end), time_.now));
        }
        pass(end);
        for (ReceivedInput* line : lines())
            line->fetch();
    }

    void sleepUntil(Moment end) override { pass(end); }

    void pass(Moment end)
    {
        while (!stops_.empty() && stops_.begin()->first <= end) {
            const auto [at, lasts] = *stops_.begin();
            stops_.erase(stops_.begin());
            time_.now = std::max(time_.now, at) + lasts;
        }
        time_.now = std::max(time_.now, end);
    }

    [[nodiscard]] Moment time() const noexcept override { return time_.now; }

    FakeTime& time_;
    std::optional<Moment> callAt_;
    std::map<Moment, Moment> stops_;
    std::vector<Moment> waits_;
};

} // namespace kel::test
