// SPDX-License-Identifier: MIT
#include "station/StationReader.h"

#include "profiles/ReaderModels.h"
#include "store/ReaderSetup.h"
#include "store/StoringEvents.h"

#include <exception>
#include <sys/prctl.h>
#include <utility>

namespace kel {

namespace {

// What is to be stopped may just be about to begin.
constexpr std::chrono::milliseconds kAskAgain{20};

// How much later a sleep of this thread may end, so that those of many readers end together: waking a processor up
// takes longer than what a reader then does. A byte ends a wait at once all the same.
constexpr std::chrono::nanoseconds kSlackOfSleeps = std::chrono::milliseconds(1);

std::string_view toldAs(Activity activity)
{
    switch (activity) {
    case Activity::Reading: return "reads";
    case Activity::Idle: return "has no more sheets; the station tries it again";
    case Activity::Stopped: return "is stopped";
    default: return {};
    }
}

} // namespace

std::string_view nameOf(Activity activity)
{
    switch (activity) {
    case Activity::Starting: return "starting";
    case Activity::Reading: return "reading";
    case Activity::Idle: return "idle";
    case Activity::Failed: return "failed";
    case Activity::Storing: return "storing";
    case Activity::Stopped: break;
    }
    return "stopped";
}

/// Sees that a session comes to its first sheet.
class StationReader::Beginning final : public ReaderEvents {
public:
    explicit Beginning(StationReader& reader) : reader_(reader) {}
    void BeforeSheet(Boolean&) override { reader_.begun(); }

private:
    StationReader& reader_;
};

/// The events of a session on their way: a failure that is already reported is not stored again and again, and a sheet
/// counts once the store has it.
class StationReader::Session final : public host::Events {
public:
    Session(StationReader& reader, host::Reader& host, const std::string& batch)
        : reader_(reader),
          storing_(reader.store_, {.station = reader.station_, .reader = reader.plan_.name, .batch = batch},
                   setupOf(host), nobody_, trouble())
    {
    }

    void sheet(const host::Sheet& event) override
    {
        storing_.sheet(event);
        if (lost() == 0)
            reader_.stored(event);
    }

    void failure(const host::Failure& event) override
    {
        if (!reader_.failed(host::failureSentence(event), reader_.calls_.adviceOn(event)))
            return;
        storing_.failure(event);
        reader_.become(Activity::Failed);
    }

    [[nodiscard]] int lost() const noexcept { return storing_.lost(); }

private:
    StoreTrouble trouble()
    {
        return {.tell = [this](const std::string& sentence) { reader_.calls_.tellOfStore(sentence); },
                .pause =
                    [this](std::chrono::milliseconds time) {
                        reader_.become(Activity::Storing);
                        return reader_.pause(time);
                    }};
    }

    StationReader& reader_;
    host::Events nobody_;
    StoringEvents storing_;
};

StationReader::StationReader(std::string station, ReaderPlan plan, Pauses pauses, SheetStore& store,
                             const StationCalls& calls)
    : station_(std::move(station)), plan_(std::move(plan)), pauses_(pauses), store_(store), calls_(calls)
{
    state_.name = plan_.name;
    state_.since = std::chrono::system_clock::now();
    if (plan_.request.model)
        state_.model = ReturnReaderName(*plan_.request.model);
    thread_ = std::thread([this] { run(); });
}

StationReader::~StationReader()
{
    stop();
    join();
}

ReaderState StationReader::state() const
{
    const std::lock_guard lock(mutex_);
    ReaderState state = state_;
    state.sheetsPerMinute = speed_.perMinute(std::chrono::steady_clock::now());
    return state;
}

bool StationReader::stopping() const
{
    const std::lock_guard lock(mutex_);
    return stopping_;
}

void StationReader::stop()
{
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    if (object_)
        object_->CancelScan(True);
    changed_.notify_all();
}

void StationReader::join()
{
    if (!thread_.joinable())
        return;
    {
        std::unique_lock lock(mutex_);
        while (!changed_.wait_for(lock, kAskAgain, [this] { return ended_; })) {
            if (object_)
                object_->CancelScan(True);
        }
    }
    thread_.join();
}

void StationReader::run()
{
    ::prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(kSlackOfSleeps.count()));
    std::optional<host::Reader> reader;
    Pauses pauses = pauses_;
    do
        readOnce(reader, pauses);
    while (pause(pauses.next()));
    reader.reset();
    become(Activity::Stopped);
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
}

void StationReader::readOnce(std::optional<host::Reader>& reader, Pauses& pauses)
{
    {
        const std::lock_guard lock(mutex_);
        reads_ = false;
        failedNow_ = false;
    }
    try {
        if (!reader)
            reader.emplace(plan_.request);
        reader->connect();
        readWith(*reader, pauses);
    } catch (const std::exception& error) {
        {
            const std::lock_guard lock(mutex_);
            object_ = nullptr;
        }
        reader.reset();
        static_cast<void>(failed(error.what(), {}));
    }
}

/// One session.
void StationReader::readWith(host::Reader& reader, Pauses& pauses)
{
    const std::string batch = plan_.batch.empty() ? batchName(std::chrono::system_clock::now()) : plan_.batch;
    {
        const std::lock_guard lock(mutex_);
        object_ = &reader.object();
        state_.batch = batch;
        state_.model = ReturnReaderName(reader.object().ReaderType());
    }
    const std::int64_t before = state().sheets;
    const std::uint32_t cookie = reader.object().Advise(std::make_shared<Beginning>(*this));
    Session session(*this, reader, batch);
    static_cast<void>(reader.read(
        session, [this] { return stopping(); }, host::StopAsked::AtEachSheet));
    reader.object().Unadvise(cookie);

    if (session.lost() > 0)
        calls_.tell(plan_.name + ": The store does not have its last sheet; feed that again.");
    std::unique_lock lock(mutex_);
    object_ = nullptr;
    if (state_.sheets > before)
        pauses.reset();
    if (!failedNow_ && !stopping_)
        become(Activity::Idle, lock);
}

void StationReader::begun()
{
    std::unique_lock lock(mutex_);
    if (!std::exchange(reads_, true) && !needsSheet_)
        become(Activity::Reading, lock);
}

/// Whether it is news. The first failure of a session says what is wrong, and the others come of it.
bool StationReader::failed(const std::string& problem, const std::string& advice)
{
    std::unique_lock lock(mutex_);
    if (std::exchange(failedNow_, true))
        return isNews_;
    isNews_ = state_.activity != Activity::Failed || state_.problem != problem;
    needsSheet_ = reads_;
    if (!isNews_)
        return false;
    state_.problem = problem;
    state_.advice = advice;
    ++state_.failures;
    state_.activity = Activity::Failed;
    state_.since = std::chrono::system_clock::now();
    lock.unlock();
    calls_.tell(plan_.name + ": " + problem + (advice.empty() ? "" : " " + advice));
    return true;
}

void StationReader::stored(const host::Sheet& sheet)
{
    std::unique_lock lock(mutex_);
    ++state_.sheets;
    if (sheet.rejected)
        ++state_.rejected;
    state_.lastSheet = std::chrono::system_clock::now();
    speed_.count(std::chrono::steady_clock::now());
    needsSheet_ = false;
    failedNow_ = false;
    become(Activity::Reading, lock);
}

void StationReader::become(Activity activity)
{
    std::unique_lock lock(mutex_);
    become(activity, lock);
}

/// The lock is released during a report.
void StationReader::become(Activity activity, std::unique_lock<std::mutex>& lock)
{
    if (activity == Activity::Idle)
        needsSheet_ = true; // it would go to and fro with each attempt
    if (state_.activity == activity)
        return;
    const bool toldByStore = state_.activity == Activity::Storing || activity == Activity::Storing;
    state_.activity = activity;
    state_.since = std::chrono::system_clock::now();
    lock.unlock();
    if (const std::string_view told = toldAs(activity); !told.empty() && !toldByStore)
        calls_.tell(plan_.name + ": " + std::string(told) + ".");
}

/// Waits; false if it is to stop.
bool StationReader::pause(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex_);
    return !changed_.wait_for(lock, time, [this] { return stopping_; });
}

} // namespace kel
