// SPDX-License-Identifier: MIT
#include "station/StationReader.h"

#include "profiles/ReaderModels.h"
#include "store/ReaderSetup.h"
#include "store/StoringEvents.h"
#include "types/RuntimeFailure.h"
#include "types/Text.h"

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

constexpr const char* kDeviceAdvice =
    "Connect the reader and switch it on, or correct its \"device\" in the station file.";

/// Whether a port stands for a device that is not there, or is none: the advice is to give the port another one.
bool isAboutDeviceOfPort(const host::Failure& failure)
{
    return failure.type == kErrorTypeRunTime && (failure.number == static_cast<Int32>(FailureCode::InvalidPortNumber) ||
                                                 failure.number == static_cast<Int32>(FailureCode::DeviceNotOpen));
}

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
    Session(StationReader& reader, std::string batch)
        : reader_(reader), origin_{.station = reader.station_, .reader = reader.plan_.name, .batch = std::move(batch)}
    {
    }

    [[nodiscard]] const std::string& batch() const noexcept { return origin_.batch; }

    /// Waits for the store. How many sheets it has of the batch; nothing if the reader is to stop.
    [[nodiscard]] std::optional<Int32> sheetsBefore() { return kel::sheetsBefore(reader_.store_, origin_, trouble()); }

    /// How the reader is set that reads from now on.
    void setup(Setup setup) { storing_.emplace(reader_.store_, origin_, std::move(setup), nobody_, trouble()); }

    void sheet(const host::Sheet& event) override
    {
        storing_->sheet(event);
        if (lost() == 0)
            reader_.stored(event);
    }

    void failure(const host::Failure& event) override
    {
        host::Failure failure = event;
        std::string advice = reader_.calls_.adviceOn(event);
        // A device that the station's file names has no port.
        if (!reader_.plan_.request.device.empty() && isAboutDeviceOfPort(event)) {
            failure.description = replaceAll(event.description, " " + event.remedy, "");
            failure.remedy = advice = kDeviceAdvice;
        }
        keep(failure, host::failureSentence(failure), advice);
    }

    /// A failure that came as an exception.
    void refused(const std::string& sentence)
    {
        keep({.description = sentence, .source = "kelreader station", .title = {}}, sentence, {});
    }

    [[nodiscard]] int lost() const noexcept { return storing_ ? storing_->lost() : 0; }

private:
    void keep(const host::Failure& failure, const std::string& sentence, const std::string& advice)
    {
        if (!reader_.failed(sentence, advice))
            return;
        if (!storing_)
            setup({});
        storing_->failure(failure);
    }

    StoreTrouble trouble()
    {
        return {.tell = [this](const std::string& problem) { reader_.storeFailed(problem); },
                .over = [this](const std::string& sentence) { reader_.storeRecovered(sentence); },
                .pause = [this](std::chrono::milliseconds time) { return reader_.pause(time); }};
    }

    StationReader& reader_;
    Origin origin_;
    host::Events nobody_;
    std::optional<StoringEvents> storing_;
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
    std::unique_lock lock(mutex_);
    become(Activity::Stopped, lock);
    if (!lock.owns_lock())
        lock.lock();
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
    Session session(*this, plan_.batch.empty() ? batchName(std::chrono::system_clock::now()) : plan_.batch);
    try {
        const std::optional<Int32> before = session.sheetsBefore();
        if (!before)
            return;
        if (!reader)
            reader.emplace(plan_.request);
        reader->sheetsBefore(*before);
        reader->connect();
        readWith(*reader, session, pauses);
        return;
    } catch (const host::ReaderFailed& refusal) {
        for (const host::Failure& failure : refusal.failures())
            session.failure(failure);
    } catch (const std::exception& error) {
        session.refused(error.what());
    }
    {
        const std::lock_guard lock(mutex_);
        object_ = nullptr;
    }
    reader.reset();
}

/// One session.
void StationReader::readWith(host::Reader& reader, Session& session, Pauses& pauses)
{
    {
        const std::lock_guard lock(mutex_);
        object_ = &reader.object();
        state_.batch = session.batch();
        state_.model = ReturnReaderName(reader.object().ReaderType());
    }
    const std::int64_t before = state().sheets;
    const std::uint32_t cookie = reader.object().Advise(std::make_shared<Beginning>(*this));
    session.setup(setupOf(reader));
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
    if (stopping_ && !reads_) {
        isNews_ = false; // a start that is given up fails
        return false;
    }
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

void StationReader::storeFailed(const std::string& problem)
{
    std::unique_lock lock(mutex_);
    if (state_.activity != Activity::Storing)
        beforeStoring_ = state_.activity;
    state_.storeProblem = problem;
    become(Activity::Storing, lock);
    if (lock.owns_lock())
        lock.unlock();
    calls_.tellOfStore(problem);
}

void StationReader::storeRecovered(const std::string& sentence)
{
    std::unique_lock lock(mutex_);
    state_.storeProblem.clear();
    become(beforeStoring_, lock);
    if (lock.owns_lock())
        lock.unlock();
    calls_.tellOfStore(sentence);
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

/// The lock is given up where somebody is told.
void StationReader::become(Activity activity, std::unique_lock<std::mutex>& lock)
{
    if (activity == Activity::Idle)
        needsSheet_ = true; // it would go to and fro with each attempt
    if (state_.activity == activity)
        return;
    const bool toldByStore = state_.activity == Activity::Storing && activity != Activity::Stopped;
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
