// SPDX-License-Identifier: MIT
#include "station/Station.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

std::int64_t sizeOf(const std::filesystem::path& file)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    return error ? 0 : static_cast<std::int64_t>(size);
}

} // namespace

Station::Station(StationPlan plan, Tell tell, Advice advice)
    : plan_(std::move(plan)), tell_(std::move(tell)), since_(std::chrono::system_clock::now()),
      store_(plan_.store, "station " + plan_.station), calls_{.tell = tell_,
                                                              .tellOfStore =
                                                                  [this](const std::string& sentence) {
                                                                      tellOfStore(sentence);
                                                                  },
                                                              .adviceOn = std::move(advice)}
{
    startSending();
    for (ReaderPlan& reader : std::exchange(plan_.readers, {}))
        start(std::move(reader));
}

/// Sheets that the stream is to have are not forgotten before it has them.
void Station::startSending()
{
    SentMark(plan_.store).want(plan_.stream.has_value());
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
    const std::lock_guard lock(mutex_);
    StationState state;
    state.station = plan_.station;
    state.since = since_;
    state.store = store_.file().string();
    state.storeBytes = sizeOf(store_.file()) + sizeOf(store_.file().string() + "-wal");
    for (const auto& reader : readers_)
        state.readers.push_back(reader->state());
    const bool isStoring = std::any_of(state.readers.begin(), state.readers.end(),
                                       [](const ReaderState& reader) { return reader.activity == Activity::Storing; });
    if (isStoring)
        state.storeProblem = toldOfStore_;
    if (sender_)
        state.stream = sender_->state();
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
