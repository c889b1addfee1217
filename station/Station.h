// SPDX-License-Identifier: MIT
#pragma once

#include "station/ReaderState.h"
#include "station/StationFile.h"
#include "station/StationReader.h"
#include "store/SheetStore.h"
#include "stream/StreamSender.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace kel {

/// A station at a moment.
struct StationState {
    std::string station{};
    ReaderState::Time since{};
    std::string store{};
    std::string storeProblem{};  ///< empty while the store accepts sheets
    std::int64_t storeBytes = 0; ///< with what is not in the file itself yet
    int watchers = 0;            ///< pages that watch the station
    std::optional<StreamState> stream{};
    std::vector<ReaderState> readers{};
};

/// All readers of a station's file, each in a thread of its own, and the store that keeps what they read.
class Station {
public:
    using Tell = std::function<void(const std::string& sentence)>;
    using Advice = std::function<std::string(const host::Failure& failure)>;

    /// Takes the store. StoreProblem if that cannot be had for another reason than that it is full or locked; then the
    /// readers wait for it. `tell` and `advice` may be called in any thread.
    Station(StationPlan plan, Tell tell, Advice advice);
    /// Ends every session in order.
    ~Station();
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    /// Starts the readers. To be called once.
    void begin();

    /// Goes over to another plan: stops the readers that are gone or changed, starts those that are new or changed, and
    /// leaves the others alone. What concerns the station as a whole stays as it is.
    void change(StationPlan plan);

    [[nodiscard]] StationState state() const;

private:
    void start(ReaderPlan plan);
    void openStore();
    void startSending();
    void tellOfStore(const std::string& sentence);
    static void end(std::vector<std::unique_ptr<StationReader>> readers);

    StationPlan plan_;
    Tell tell_;
    ReaderState::Time since_;
    SheetStore store_;
    StationCalls calls_;
    mutable std::mutex mutex_;
    std::string toldOfStore_; ///< the last sentence
    std::vector<std::unique_ptr<StationReader>> readers_;
    std::optional<StreamSender> sender_;
};

} // namespace kel
