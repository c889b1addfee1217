// SPDX-License-Identifier: MIT
#include "cli/ScanStore.h"

#include "cli/Interrupt.h"
#include "cli/Notice.h"
#include "cli/UsageError.h"
#include "store/ReaderSetup.h"
#include "store/StoreProblem.h"
#include "store/StoringEvents.h"

#include <chrono>
#include <optional>
#include <thread>

namespace kel {

namespace {

Origin originOf(const StoreNames& names)
{
    return {.station = stationName(),
            .reader = names.reader,
            .batch = names.batch.empty() ? batchName(std::chrono::system_clock::now()) : names.batch};
}

bool pauseUnlessInterrupted(std::chrono::milliseconds pause)
{
    constexpr std::chrono::milliseconds kLook{50};
    for (auto left = pause; left.count() > 0 && !InterruptNote::came(); left -= kLook)
        std::this_thread::sleep_for(kLook);
    return !InterruptNote::came();
}

} // namespace

struct ScanStore::State {
    explicit State(const StoreNames& names) : store(names.file, "'kelreader scan'"), origin(originOf(names)) {}

    SheetStore store;
    Origin origin;
    StoreTrouble trouble{.tell = &notice, .over = &notice, .pause = &pauseUnlessInterrupted};
    std::optional<StoringEvents> events;
};

ScanStore::ScanStore(const StoreNames& names) : state_(std::make_unique<State>(names)) {}

ScanStore::~ScanStore() = default;

Int32 ScanStore::sheetsBefore()
{
    // Whoever gives up here has pressed Ctrl-C, and no sheet is read.
    return kel::sheetsBefore(state_->store, state_->origin, state_->trouble).value_or(0);
}

host::Events& ScanStore::events(host::Reader& reader, host::Events& output)
{
    return state_->events.emplace(state_->store, state_->origin, setupOf(reader), output, state_->trouble);
}

void ScanStore::demandAll() const
{
    if (state_->events && state_->events->lost() > 0)
        throw CommandFailure("The store " + state_->store.file().string() +
                             " does not have the last sheet; feed it again.");
}

} // namespace kel
