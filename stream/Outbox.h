// SPDX-License-Identifier: MIT
#pragma once

#include "stream/StreamLink.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace kel {

/// What is on its way from a store into a stream. Each subject has one message under way at a time: the next one
/// follows when the stream has acknowledged it, so that those of a reader are in the stream in their order whatever is
/// lost on the way. Many readers have many messages under way.
class Outbox {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `last`: the stream has everything up to this id.
    explicit Outbox(std::int64_t last) : loaded_(last) {}

    /// Adds the next message of the store.
    void add(std::int64_t id, std::string line, StreamMessage message);
    /// Adds one that was left out before; the others do not wait for it.
    void addAgain(std::int64_t id, std::string line, StreamMessage message);

    /// Leaves the next message of the store out.
    void pass(std::int64_t id) { loaded_ = id; }

    /// The id of the last one that was added or left out.
    [[nodiscard]] std::int64_t loaded() const noexcept { return loaded_; }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// A message that may be sent now.
    struct Due {
        std::int64_t id = 0;
        const StreamMessage* message = nullptr;
    };

    /// Returns the next one, once; nullopt if all that may be sent are under way.
    [[nodiscard]] std::optional<Due> next(Time now);

    /// The stream has a message, or will not get it.
    void acknowledge(std::int64_t id);

    /// How many messages are under way, and since when the oldest of them.
    [[nodiscard]] std::size_t underWay() const noexcept { return underWay_.size(); }
    [[nodiscard]] std::optional<Time> oldest();

    /// The stream has everything up to this id.
    [[nodiscard]] std::int64_t last() const { return open_.empty() ? loaded_ : *open_.begin() - 1; }

private:
    struct Waiting {
        std::int64_t id = 0;
        StreamMessage message{};
    };
    using Line = std::deque<Waiting>;

    void queue(std::int64_t id, std::string line, StreamMessage message);

    std::int64_t loaded_;
    std::size_t size_ = 0;
    std::map<std::string, Line> lines_;
    std::deque<Line*> ready_; ///< with a first message that is not under way
    std::map<std::int64_t, Line*> underWay_;
    std::deque<std::pair<Time, std::int64_t>> sent_; ///< in their order; the first may be acknowledged already
    std::set<std::int64_t> open_;
};

} // namespace kel
