// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TurnPump.h"

#include <cstdint>
#include <windows.h>

namespace kel {

class EventObjectCall;
class WatchedInput;

/// The pump of one thread, on the message loop of its apartment.
///
/// Each turn runs the messages that wait: the host's windows, and calls to the objects of the apartment. A turn that
/// has run none, and has no other reason to return, blocks until a message comes, a byte arrives or a timer is due.
///
/// The event of a timer runs in the host's own message loop too, while none of our procedures waits.
class WindowsMessagePump final : public TurnPump {
public:
    WindowsMessagePump();
    ~WindowsMessagePump() override;

    void DoEvents() override;

    using TurnPump::add;
    using TurnPump::remove;
    void add(WatchedInput& line);
    void remove(WatchedInput& line);

    [[nodiscard]] std::shared_ptr<WakeCall> wakeCall() override;

    /// How often the pump has waited, for tests.
    [[nodiscard]] std::uint64_t waits() const noexcept { return waits_; }

private:
    bool runMessages() override;
    void fetchInput(Moment atMost) override;
    void sleepUntil(Moment end) override;
    void timersChanged() override;

    void endLoopTimer() noexcept;
    static void CALLBACK loopTimerRuns(HWND window, UINT message, UINT_PTR timer, DWORD time);

    std::shared_ptr<EventObjectCall> wakeCall_; // it may be called when its thread has ended
    UINT_PTR loopTimer_ = 0;
    int turns_ = 0;           // that are under way, one within another
    bool threadEnds_ = false; // the host's loop is to end, and is told so again and again
    std::uint64_t waits_ = 0;
};

} // namespace kel
