// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TurnPump.h"
#include "platform/posix/EventCall.h"

#include <cstdint>
#include <poll.h>
#include <vector>

namespace kel {

class LineInput;

/// The pump of one thread. A turn that blocks does so in one poll of all open lines; one that does not makes no system
/// call for them.
class PosixMessagePump final : public TurnPump {
public:
    using TurnPump::add;
    using TurnPump::remove;
    void add(LineInput& line);
    void remove(LineInput& line);

    [[nodiscard]] std::shared_ptr<WakeCall> wakeCall() override { return wakeCall_; }

    /// What is readable while a call has not been heard; -1 if there is none.
    [[nodiscard]] int calledHandle() const noexcept { return wakeCall_->handle(); }

    /// How often the pump has asked the system about its lines, for tests.
    [[nodiscard]] std::uint64_t polls() const noexcept { return polls_; }

private:
    void fetchInput(Moment atMost) override;
    void sleepUntil(Moment end) override;

    // It may be called when its thread has ended.
    std::shared_ptr<EventCall> wakeCall_ = std::make_shared<EventCall>();
    std::vector<pollfd> handles_;
    std::vector<LineInput*> polled_;
    std::uint64_t polls_ = 0;
};

} // namespace kel
