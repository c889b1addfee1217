// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "store/Entry.h"
#include "store/SheetStore.h"
#include "store/StoreTrouble.h"

#include <optional>

namespace kel {

/// Waits until the store can be written to, and returns how many sheets it has of a batch: the next one gets the number
/// after that. Nothing if somebody gave up.
[[nodiscard]] std::optional<Int32> sheetsBefore(SheetStore& store, const Origin& origin, const StoreTrouble& trouble);

/// Keeps each event of a batch in a store, and only then hands it on. While the store takes nothing, an event does not
/// return, so that no further sheet is fed.
class StoringEvents final : public host::Events {
public:
    StoringEvents(SheetStore& store, Origin origin, Setup setup, host::Events& next, StoreTrouble trouble)
        : store_(store), origin_(std::move(origin)), setup_(std::move(setup)), next_(next), trouble_(std::move(trouble))
    {
    }

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override { next_.end(event); }

    /// How many sheets the store has not taken before somebody gave up.
    [[nodiscard]] int lost() const noexcept { return lost_; }

private:
    [[nodiscard]] bool keep(Entry& entry);

    SheetStore& store_;
    Origin origin_;
    Setup setup_;
    host::Events& next_;
    StoreTrouble trouble_;
    int lost_ = 0;
};

} // namespace kel
