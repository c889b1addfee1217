// SPDX-License-Identifier: MIT
#include "store/StoringEvents.h"

#include "store/StoreProblem.h"

#include <algorithm>

namespace kel {

namespace {

constexpr std::chrono::milliseconds kFirstPause{200};
constexpr std::chrono::milliseconds kLongestPause{5000};

/// Does something with the store until it succeeds; false if somebody gave up.
bool untilDone(const SheetStore& store, const StoreTrouble& trouble, const std::function<void()>& work)
{
    std::string told;
    for (std::chrono::milliseconds pause = kFirstPause;; pause = std::min(2 * pause, kLongestPause)) {
        try {
            work();
            if (!told.empty())
                trouble.over("The store " + store.file().string() + " takes sheets again.");
            return true;
        } catch (const StoreProblem& problem) {
            if (told != problem.what())
                trouble.tell(problem.what());
            told = problem.what();
        }
        if (!trouble.pause(pause))
            return false;
    }
}

} // namespace

std::optional<Int32> sheetsBefore(SheetStore& store, const Origin& origin, const StoreTrouble& trouble)
{
    Int32 last = 0;
    const bool isKnown = untilDone(store, trouble, [&] { last = store.lastNumber(origin); });
    return isKnown ? std::optional(last) : std::nullopt;
}

void StoringEvents::sheet(const host::Sheet& event)
{
    Entry entry{.origin = origin_, .what = ReadSheetEntry{.setup = setup_, .sheet = event}};
    const bool isKept = keep(entry);
    if (!isKept)
        ++lost_;
    next_.sheet(isKept ? std::get<ReadSheetEntry>(entry.what).sheet
                       : event); // what is kept has the number of the batch
}

void StoringEvents::failure(const host::Failure& event)
{
    Entry entry{.origin = origin_, .what = ReportEntry{.failure = event}};
    static_cast<void>(keep(entry));
    next_.failure(event);
}

bool StoringEvents::keep(Entry& entry)
{
    return untilDone(store_, trouble_, [&] { store_.add(entry); });
}

} // namespace kel
