// SPDX-License-Identifier: MIT
#include "cli/ScanStore.h"

#include "cli/Interrupt.h"
#include "cli/Notice.h"
#include "cli/UsageError.h"
#include "store/ReaderSetup.h"
#include "store/StoreProblem.h"
#include "store/StoringEvents.h"

#include <chrono>
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
    State(const StoreNames& names, host::Reader& reader, host::Events& output)
        : store(names.file, "'kelreader scan'"),
          events(store, originOf(names), setupOf(reader), output, {.tell = &notice, .pause = &pauseUnlessInterrupted})
    {
    }

    SheetStore store;
    StoringEvents events;
};

ScanStore::ScanStore(const StoreNames& names, host::Reader& reader, host::Events& output)
    : state_(std::make_unique<State>(names, reader, output))
{
}

ScanStore::~ScanStore() = default;

host::Events& ScanStore::events()
{
    return state_->events;
}

void ScanStore::demandAll() const
{
    if (state_->events.lost() > 0)
        throw CommandFailure("The store " + state_->store.file().string() +
                             " does not have the last sheet; feed it again.");
}

} // namespace kel
