// SPDX-License-Identifier: MIT
#include "cli/WaitableCall.h"

#include "platform/windows/SystemHandle.h"

namespace kel {

class WaitableCall::Event {
public:
    SystemHandle handle{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};
};

WaitableCall::WaitableCall() : event_(std::make_unique<Event>()) {}

WaitableCall::~WaitableCall() = default;

void WaitableCall::call() noexcept
{
    ::SetEvent(event_->handle.get());
}

void WaitableCall::wait(std::optional<std::chrono::milliseconds> atMost)
{
    ::WaitForSingleObject(event_->handle.get(), atMost ? static_cast<DWORD>(atMost->count()) : INFINITE);
}

} // namespace kel
