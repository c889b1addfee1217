// SPDX-License-Identifier: MIT
#include "cli/WaitableCall.h"

#include "platform/posix/EventCall.h"

#include <poll.h>

namespace kel {

class WaitableCall::Event {
public:
    EventCall call;
};

WaitableCall::WaitableCall() : event_(std::make_unique<Event>()) {}

WaitableCall::~WaitableCall() = default;

void WaitableCall::call() noexcept
{
    event_->call.call();
}

void WaitableCall::wait(std::optional<std::chrono::milliseconds> atMost)
{
    pollfd handle{event_->call.handle(), POLLIN, 0};
    ::poll(&handle, 1, atMost ? static_cast<int>(atMost->count()) : -1);
    event_->call.answer();
}

} // namespace kel
