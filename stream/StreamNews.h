// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <string>

namespace kel {

/// Whether a stream can be reached, for the people in charge of it: each change is reported once, and each reason,
/// however often the connection is tried again. Any thread may ask.
class StreamNews {
public:
    using Tell = std::function<void(const std::string& sentence)>;

    /// The sentence when the stream can be reached, and the one that follows the first reason why not.
    StreamNews(std::string up, std::string meanwhile, Tell tell)
        : upText_(std::move(up)), meanwhile_(std::move(meanwhile)), tell_(std::move(tell))
    {
    }

    void up();
    void down(const std::string& problem);

    [[nodiscard]] bool isUp() const;
    /// Why not; empty while it can be reached.
    [[nodiscard]] std::string problem() const;

private:
    std::string upText_;
    std::string meanwhile_;
    Tell tell_;
    mutable std::mutex mutex_;
    bool isUp_ = false;
    std::string problem_;
    std::set<std::string> told_; ///< since it could be reached
};

} // namespace kel
