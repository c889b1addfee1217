// SPDX-License-Identifier: MIT
#pragma once

#include "reader/ReaderEvents.h"

#include "platform/FaultCapture.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

namespace kel {

/// The listeners of a reader object's events. A listener may leave, or another come, while an event is under way: one
/// that has left hears nothing more, one that has come hears the next event. A listener that fails stops no other; its
/// failure comes out when all have been called.
class EventSource {
public:
    using Cookie = std::uint32_t;

    Cookie add(std::shared_ptr<ReaderEvents> listener);
    bool remove(Cookie cookie);

    template <class Raise>
    void raise(Raise&& raiseOn)
    {
        const HostCode host;
        std::exception_ptr firstFailure;
        const std::vector<std::shared_ptr<Entry>> present = entries_;
        for (const auto& entry : present) {
            const std::shared_ptr<ReaderEvents> listener = entry->listener;
            if (!listener)
                continue;
            try {
                raiseOn(*listener);
            } catch (const std::exception&) {
                if (!firstFailure)
                    firstFailure = std::current_exception();
            }
        }
        if (firstFailure)
            std::rethrow_exception(firstFailure);
    }

private:
    struct Entry {
        Cookie cookie;
        std::shared_ptr<ReaderEvents> listener; // empty once it has left
    };

    std::vector<std::shared_ptr<Entry>> entries_;
    Cookie lastCookie_ = 0;
};

} // namespace kel
