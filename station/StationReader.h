// SPDX-License-Identifier: MIT
#pragma once

#include "host/Reader.h"
#include "station/ReaderState.h"
#include "station/Speed.h"
#include "station/StationFile.h"
#include "store/SheetStore.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace kel {

/// What a station does for its readers. May be called in any thread.
struct StationCalls {
    std::function<void(const std::string& sentence)> tell;             ///< to the people in charge of it
    std::function<void(const std::string& sentence)> tellOfStore;      ///< the same, once for all readers
    std::function<std::string(const host::Failure& failure)> adviceOn; ///< what to do about it, may be empty
};

/// One reader of a station, in a thread of its own: it reads session after session, with growing pauses while no sheet
/// comes. It reports each change of its state once.
class StationReader {
public:
    /// Begins at once. The store and the calls outlive it.
    StationReader(std::string station, ReaderPlan plan, Pauses pauses, SheetStore& store, const StationCalls& calls);
    ~StationReader();
    StationReader(const StationReader&) = delete;
    StationReader& operator=(const StationReader&) = delete;

    [[nodiscard]] const ReaderPlan& plan() const noexcept { return plan_; }
    [[nodiscard]] ReaderState state() const;

    /// Asks it to end: the sheet that it reads comes out and is stored, the session is closed.
    void stop();

    /// Waits until it has ended; to be called after `stop`.
    void join();

private:
    class Session;
    class Beginning;

    void run();
    void readOnce(std::optional<host::Reader>& reader, Pauses& pauses);
    void readWith(host::Reader& reader, Session& session, Pauses& pauses);
    void begun();
    [[nodiscard]] bool failed(const std::string& problem, const std::string& advice);
    void storeFailed(const std::string& problem);
    void storeRecovered(const std::string& sentence);
    void stored(const host::Sheet& sheet);
    void become(Activity activity, std::unique_lock<std::mutex>& lock);
    [[nodiscard]] bool pause(std::chrono::milliseconds time);
    [[nodiscard]] bool stopping() const;

    std::string station_;
    ReaderPlan plan_;
    Pauses pauses_;
    SheetStore& store_;
    const StationCalls& calls_;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    ReaderState state_;
    Speed speed_;
    bool stopping_ = false;
    bool ended_ = false;
    bool reads_ = false; ///< the session has come to its first sheet
    Activity beforeStoring_ = Activity::Starting;
    bool needsSheet_ = false; ///< what failed is over with a sheet, and not with a beginning
    bool failedNow_ = false;  ///< in this session, since its last sheet
    bool isNews_ = false;     ///< what failed then was not the same as before
    clsKELReader* object_ = nullptr;

    std::thread thread_;
};

} // namespace kel
