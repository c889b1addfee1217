// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"
#include "types/Reference.h"

#include "types/SourceLocation.h"
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel {

/// Objects in the order in which they were added, each under a key of its own. An object is found by its key or by
/// its 1-based position; the key is what it was added under, whatever becomes of the object.
/// An unknown key is failure 5, a position that is not there failure 9.
template <class T>
class KeyedCollection {
public:
    [[nodiscard]] Int32 Count() const { return static_cast<Int32>(entries_.size()); }

    /// At the end; failure 457 for a key that is already taken.
    void Add(Reference<T> item, std::string key, SourceLocation where = SourceLocation::current())
    {
        if (find(key) != Count())
            throw RuntimeFailure(FailureCode::KeyAlreadyUsed, where);
        entries_.push_back({std::move(key), std::move(item)});
    }

    template <class Index>
    [[nodiscard]] Reference<T> Item(Index index, SourceLocation where = SourceLocation::current()) const
    {
        return entries_[static_cast<std::size_t>(offset(index, where))].Item;
    }

    template <class Index>
    void Remove(Index index, SourceLocation where = SourceLocation::current())
    {
        entries_.erase(entries_.begin() + offset(index, where));
    }

private:
    struct Entry {
        std::string Key;
        Reference<T> Item;
    };

    [[nodiscard]] Int32 find(std::string_view key) const
    {
        const auto entry = std::ranges::find(entries_, key, &Entry::Key);
        return static_cast<Int32>(entry - entries_.begin());
    }

    [[nodiscard]] Int32 offset(std::string_view key, SourceLocation where) const
    {
        const Int32 found = find(key);
        if (found == Count())
            throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
        return found;
    }

    [[nodiscard]] Int32 offset(Int32 position, SourceLocation where) const
    {
        if (position < 1 || position > Count())
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        return position - 1;
    }

    std::vector<Entry> entries_;
};

} // namespace kel
