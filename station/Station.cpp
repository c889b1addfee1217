// SPDX-License-Identifier: MIT
#include "station/Station.h"

#include "store/StoreProblem.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr int kNoPatience = 0;

std::int64_t sizeOf(const std::filesystem::path& file)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    return error ? 0 : static_cast<std::int64_t>(size);
}

} // namespace

Station::Station(StationPlan plan, Tell tell, Advice advice)
    : plan_(std::move(plan)), tell_(std::move(tell)), since_(std::chrono::system_clock::now()),
      store_(plan_.store, "station " + plan_.station, &std::chrono::system_clock::now, WhenBusy::OpenLater),
      calls_{.tell = tell_,
             .tellOfStore = [this](const std::string& sentence) { tellOfStore(sentence); },
             .adviceOn = std::move(advice)}
{
    openStore();
}

void Station::begin()
{
    if (plan_.readers.empty())
        tell_("The station has no readers; it sends what its store holds.");
    startSending();
    const std::lock_guard lock(mutex_);
    for (ReaderPlan& reader : std::exchange(plan_.readers, {}))
        start(std::move(reader));
}

/// Sheets that the stream is to have are not forgotten before it has them.
void Station::openStore()
{
    try {
        store_.open();
        SentMark(plan_.store, kNoPatience).want(plan_.stream.has_value());
    } catch (const StoreBusy& problem) {
        tellOfStore(problem.what());
    }
}

void Station::startSending()
{
    if (!plan_.stream)
        return;
    plan_.stream->client = "kelreader station " + plan_.station;
    sender_.emplace(plan_.store, *plan_.stream, Pauses(plan_.firstPause, plan_.longestPause), tell_);
}

Station::~Station()
{
    end(std::exchange(readers_, {}));
}

void Station::start(ReaderPlan plan)
{
    readers_.push_back(std::make_unique<StationReader>(plan_.station, std::move(plan),
                                                       Pauses(plan_.firstPause, plan_.longestPause), store_, calls_));
}

/// All are asked before one is waited for.
void Station::end(std::vector<std::unique_ptr<StationReader>> readers)
{
    for (const auto& reader : readers)
        reader->stop();
    for (const auto& reader : readers)
        reader->join();
    readers.clear();
}

void Station::change(StationPlan plan)
{
    if (plan.content != plan_.content)
        tell_("Settings of the station as a whole have changed; they take effect at the next start.");
    std::vector<std::unique_ptr<StationReader>> gone;
    {
        const std::lock_guard lock(mutex_);
        for (auto& reader : readers_) {
            const auto same = std::find_if(plan.readers.begin(), plan.readers.end(), [&](const ReaderPlan& wanted) {
                return wanted.name == reader->plan().name && wanted.content == reader->plan().content;
            });
            if (same == plan.readers.end())
                gone.push_back(std::move(reader));
            else
                plan.readers.erase(same);
        }
        std::erase(readers_, nullptr);
    }
    end(std::move(gone));
    const std::lock_guard lock(mutex_);
    for (ReaderPlan& reader : plan.readers)
        start(std::move(reader));
}

StationState Station::state() const
{
    StationState state;
    if (sender_)
        state.stream = sender_->state();
    const std::lock_guard lock(mutex_);
    state.station = plan_.station;
    state.since = since_;
    state.store = store_.file().string();
    state.storeBytes = sizeOf(store_.file()) + sizeOf(store_.file().string() + "-wal");
    for (const auto& reader : readers_)
        state.readers.push_back(reader->state());
    const auto waiting = std::find_if(state.readers.begin(), state.readers.end(),
                                      [](const ReaderState& reader) { return !reader.storeProblem.empty(); });
    if (waiting != state.readers.end())
        state.storeProblem = waiting->storeProblem;
    return state;
}

/// What several readers find out at the same time is reported once.
void Station::tellOfStore(const std::string& sentence)
{
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(toldOfStore_, sentence) == sentence)
            return;
    }
    tell_(sentence);
}

} // namespace kel
