// SPDX-License-Identifier: MIT
#pragma once

#include "station/WebServer.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace kel {

/// What happens in a station, for pages that watch it, as server-sent events: "state" with the state when it changes,
/// "sheet" with each sheet. It checks the state and the store itself, and only while there is a watcher, so that no
/// reader ever waits for it. A slow watcher misses sheets: only the last ones are kept, once for all watchers.
class StationFeed {
public:
    /// `state` returns the state as JSON; it is called in the feed's thread.
    StationFeed(std::function<std::string()> state, std::filesystem::path store);
    ~StationFeed();
    StationFeed(const StationFeed&) = delete;
    StationFeed& operator=(const StationFeed&) = delete;

    /// Sends a watcher all news until it disconnects, or the feed ends. It counts as a watcher from the moment when it
    /// is returned; empty if there are too many.
    [[nodiscard]] std::function<void(WebClient& client)> watch();

    /// Ends the news for all watchers.
    void end();

    [[nodiscard]] int watchers() const;

private:
    struct News {
        std::uint64_t number = 0;
        std::string text{};
    };

    void run();
    void look();
    void lookAtStore();
    void tell(WebClient& client);

    std::function<std::string()> state_;
    std::filesystem::path store_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool ending_ = false;
    int watchers_ = 0;
    std::uint64_t looks_ = 0;
    News stateNews_;          // the last state
    std::deque<News> sheets_; // the last sheets
    std::uint64_t sheetNumber_ = 0;
    std::int64_t lastId_ = 0; // of the store; the feed's thread alone uses it
    std::thread thread_;
};

} // namespace kel
