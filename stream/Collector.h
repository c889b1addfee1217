// SPDX-License-Identifier: MIT
#pragma once

#include "store/Pauses.h"
#include "store/SheetStore.h"
#include "stream/StreamLink.h"
#include "stream/StreamNews.h"

#include <functional>
#include <string>
#include <vector>

namespace kel {

/// The calls of a collector.
struct CollectorCalls {
    StreamNews::Tell tell;
    /// Waits before the next attempt, or for no time at all; false if the collector is to end.
    std::function<bool(std::chrono::milliseconds pause)> pause;
};

/// Collects messages from a stream in a store: each is acknowledged when it is safe on the disk. One that comes twice
/// is one row; one without a sheet or a report is set aside.
class Collector {
public:
    Collector(SheetStore& store, StreamAddress address, std::string durable, Pauses pauses, CollectorCalls calls,
              StreamOpener& opener);

    /// Collects until it is to end, over any outage of the stream and of the store.
    void run();

private:
    void collectOnce();
    [[nodiscard]] bool keep(const std::vector<StreamDelivery>& deliveries);
    void store(const std::vector<StreamDelivery>& deliveries);
    [[nodiscard]] bool isGoingOn() const { return calls_.pause({}); }

    SheetStore& store_;
    StreamAddress address_;
    std::string durable_;
    Pauses pauses_;
    CollectorCalls calls_;
    StreamNews news_;
    StreamOpener& opener_;
};

} // namespace kel
