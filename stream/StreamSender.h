// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/EventCall.h"
#include "store/Pauses.h"
#include "store/SentMark.h"
#include "stream/StreamLink.h"
#include "stream/StreamNews.h"

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace kel {

/// The state of the stream that a store is sent to.
struct StreamState {
    bool isUp = false;
    std::string problem{};   ///< why not, a sentence; or why it refuses some messages, while it accepts others
    std::int64_t unsent = 0; ///< entries of the store that the stream does not have yet; -1 if nobody can say
};

/// Sends what a store holds to a stream, in a thread of its own: from where it stopped, and on as sheets come. While
/// the stream cannot be reached the store keeps them.
class StreamSender {
public:
    using Opener = std::function<StreamOpener&()>;

    /// Begins at once. The store exists. `tell` may be called in any thread. What `opener` throws is a stream that
    /// cannot be reached. What does not go into the stream is tried again on each new connection, and now and then.
    StreamSender(std::filesystem::path store, StreamAddress address, Pauses pauses, StreamNews::Tell tell,
                 Opener opener = &streamOpener);
    ~StreamSender();
    StreamSender(const StreamSender&) = delete;
    StreamSender& operator=(const StreamSender&) = delete;

    [[nodiscard]] StreamState state() const;

private:
    class Sending;

    void run();
    void sendOnce();
    [[nodiscard]] bool pause(std::chrono::milliseconds time);
    [[nodiscard]] bool stopping() const;

    std::filesystem::path store_;
    StreamAddress address_;
    Pauses pauses_;
    StreamNews::Tell tell_;
    StreamNews news_;
    Opener opener_;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool stopping_ = false;
    EventCall stop_;
    std::thread thread_;
};

} // namespace kel
