// SPDX-License-Identifier: MIT
#include "reader/EventSource.h"

#include <algorithm>
#include <utility>

namespace kel {

EventSource::Cookie EventSource::add(std::shared_ptr<ReaderEvents> listener)
{
    entries_.push_back(std::make_shared<Entry>(Entry{++lastCookie_, std::move(listener)}));
    return lastCookie_;
}

bool EventSource::remove(Cookie cookie)
{
    const auto at =
        std::find_if(entries_.begin(), entries_.end(), [&](const auto& entry) { return entry->cookie == cookie; });
    if (at == entries_.end())
        return false;
    (*at)->listener.reset();
    entries_.erase(at);
    return true;
}

} // namespace kel
