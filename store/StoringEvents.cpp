// SPDX-License-Identifier: MIT
#include "store/StoringEvents.h"

#include "store/StoreProblem.h"

#include <algorithm>

namespace kel {

namespace {

constexpr Pauses kPauses(std::chrono::milliseconds(200), std::chrono::seconds(5));

} // namespace

std::optional<Int32> sheetsBefore(SheetStore& store, const Origin& origin, const StoreTrouble& trouble)
{
    Int32 last = 0;
    const bool isKnown = untilDone(store, trouble, kPauses, [&] { last = store.lastNumber(origin); });
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
    return untilDone(store_, trouble_, kPauses, [&] { store_.add(entry); });
}

} // namespace kel
