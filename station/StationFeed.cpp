// SPDX-License-Identifier: MIT
#include "station/StationFeed.h"

#include "station/PageJson.h"
#include "store/StoreProblem.h"
#include "store/StoredSheets.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr int kMostWatchers = 16;
constexpr std::size_t kLastSheets = 24;

constexpr std::chrono::milliseconds kBetweenLooks{300};

// A watcher that has gone is noticed after this time; the others get at least a sign this often.
constexpr std::chrono::seconds kBetweenProofs{1};
constexpr int kProofsBetweenSigns = 15;

std::string eventText(const char* name, const std::string& data)
{
    return std::string("event: ") + name + "\ndata: " + data + "\n\n";
}

} // namespace

StationFeed::StationFeed(std::function<std::string()> state, std::filesystem::path store)
    : state_(std::move(state)), store_(std::move(store)), thread_([this] { run(); })
{
}

StationFeed::~StationFeed()
{
    end();
    thread_.join();
}

void StationFeed::end()
{
    const std::lock_guard lock(mutex_);
    ending_ = true;
    changed_.notify_all();
}

int StationFeed::watchers() const
{
    const std::lock_guard lock(mutex_);
    return watchers_;
}

std::function<void(WebClient&)> StationFeed::watch()
{
    {
        const std::lock_guard lock(mutex_);
        if (watchers_ == kMostWatchers)
            return {};
        ++watchers_;
        changed_.notify_all();
    }
    const std::shared_ptr<StationFeed> watcher(this, [](StationFeed* feed) {
        const std::lock_guard lock(feed->mutex_);
        --feed->watchers_;
    });
    return [watcher](WebClient& client) { watcher->tell(client); };
}

void StationFeed::run()
{
    std::unique_lock lock(mutex_);
    while (!ending_) {
        if (watchers_ == 0) {
            changed_.wait(lock);
            continue;
        }
        lock.unlock();
        look();
        lock.lock();
        changed_.wait_for(lock, kBetweenLooks, [this] { return ending_; });
    }
}

void StationFeed::look()
{
    std::string state = eventText("state", state_());
    lookAtStore();
    const std::lock_guard lock(mutex_);
    ++looks_;
    if (stateNews_.text != state)
        stateNews_ = {.number = stateNews_.number + 1, .text = std::move(state)};
    changed_.notify_all();
}

/// The store is opened each time, since another one may have taken its place.
void StationFeed::lookAtStore()
{
    std::vector<std::string> texts;
    try {
        StoredSheets store(store_);
        const std::int64_t last = store.lastId();
        if (last < lastId_)
            lastId_ = 0;
        if (last == lastId_)
            return;
        const FoundSheets found = store.find({}, 0, kLastSheets);
        for (auto entry = found.sheets.rbegin(); entry != found.sheets.rend(); ++entry) {
            if (entry->id > lastId_)
                texts.push_back(eventText("sheet", pageRow(*entry).dump()));
        }
        // What has come since the query for the last one is sent, too.
        lastId_ = found.sheets.empty() ? last : std::max(last, found.sheets.front().id);
    } catch (const StoreProblem&) {
        return; // the state says it
    }
    const std::lock_guard lock(mutex_);
    for (std::string& text : texts)
        sheets_.push_back({.number = ++sheetNumber_, .text = std::move(text)});
    while (sheets_.size() > kLastSheets)
        sheets_.pop_front();
}

void StationFeed::tell(WebClient& client)
{
    std::uint64_t toldState = 0;
    std::uint64_t toldSheet = 0;
    int silent = 0;
    std::unique_lock lock(mutex_);
    // What was kept since the last watcher went is old.
    const std::uint64_t first = looks_ + 1;
    changed_.wait(lock, [&] { return ending_ || looks_ > first; });
    for (;;) {
        const auto isNews = [&] { return ending_ || stateNews_.number > toldState || sheetNumber_ > toldSheet; };
        const bool came = changed_.wait_for(lock, kBetweenProofs, isNews);
        if (ending_)
            return;
        std::string text;
        if (std::exchange(toldState, stateNews_.number) != stateNews_.number)
            text += stateNews_.text;
        for (const News& sheet : sheets_) {
            if (sheet.number > toldSheet)
                text += sheet.text;
        }
        toldSheet = sheetNumber_;
        silent = came ? 0 : silent + 1;
        if (silent == kProofsBetweenSigns) {
            text = ":\n\n";
            silent = 0;
        }
        lock.unlock();
        if (text.empty() ? !client.isThere() : !client.send(text))
            return;
        lock.lock();
    }
}

} // namespace kel
