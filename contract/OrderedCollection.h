// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"
#include "types/Reference.h"

#include <optional>
#include <vector>

namespace kel {

/// Objects in an order of their own, addressed by their 1-based position.
template <class T>
class OrderedCollection {
public:
    [[nodiscard]] Int32 Count() const { return static_cast<Int32>(items_.size()); }

    /// Failure 9 for a position that is not there.
    [[nodiscard]] Reference<T> Item(Int32 position, SourceLocation where = SourceLocation::current()) const
    {
        return items_[index(position, where)];
    }

    /// Before or after a position that is there (failure 9 if it is not), or at the end; both at once is failure 5.
    void Add(Reference<T> item, std::optional<Int32> before, std::optional<Int32> after,
             SourceLocation where = SourceLocation::current())
    {
        if (before && after)
            throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
        std::size_t at = items_.size();
        if (before)
            at = index(*before, where);
        else if (after)
            at = index(*after, where) + 1;
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), std::move(item));
    }

    void Remove(Int32 position, SourceLocation where = SourceLocation::current())
    {
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index(position, where)));
    }

private:
    [[nodiscard]] std::size_t index(Int32 position, SourceLocation where) const
    {
        if (position < 1 || position > Count())
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        return static_cast<std::size_t>(position) - 1;
    }

    std::vector<Reference<T>> items_;
};

} // namespace kel
