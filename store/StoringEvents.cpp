// SPDX-License-Identifier: MIT
#include "store/StoringEvents.h"

#include "store/StoreProblem.h"

#include <algorithm>

namespace kel {

namespace {

constexpr std::chrono::milliseconds kFirstPause{200};
constexpr std::chrono::milliseconds kLongestPause{5000};

} // namespace

void StoringEvents::sheet(const host::Sheet& event)
{
    if (!keep({.origin = origin_, .what = ReadSheetEntry{.setup = setup_, .sheet = event}}))
        ++lost_;
    next_.sheet(event);
}

void StoringEvents::failure(const host::Failure& event)
{
    static_cast<void>(keep({.origin = origin_, .what = ReportEntry{.failure = event}}));
    next_.failure(event);
}

/// Whether the store has it; if not, somebody has given up.
bool StoringEvents::keep(Entry entry)
{
    std::string told;
    for (std::chrono::milliseconds pause = kFirstPause;; pause = std::min(2 * pause, kLongestPause)) {
        try {
            store_.add(entry);
            if (!told.empty())
                trouble_.tell("The store " + store_.file().string() + " takes sheets again.");
            return true;
        } catch (const StoreProblem& problem) {
            if (told != problem.what())
                trouble_.tell(problem.what());
            told = problem.what();
        }
        if (!trouble_.pause(pause))
            return false;
    }
}

} // namespace kel
