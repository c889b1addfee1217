// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace kel {

/// How many entries a list of what has happened in a simulated reader comes to have at most.
inline constexpr std::size_t kMostEntries = 10'000;

/// Adds an entry. A list that is full forgets its older half, so that a session of any length takes the same room.
template <class Entry>
void addKeepingLatest(std::vector<Entry>& list, Entry entry)
{
    if (list.size() == kMostEntries)
        list.erase(list.begin(), list.begin() + kMostEntries / 2);
    list.push_back(std::move(entry));
}

/// Adds an entry to a list of which the first entries say most.
template <class Entry>
void addKeepingFirst(std::vector<Entry>& list, Entry entry)
{
    if (list.size() < kMostEntries)
        list.push_back(std::move(entry));
}

} // namespace kel
