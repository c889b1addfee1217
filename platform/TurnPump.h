// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"

#include <memory>
#include <optional>
#include <vector>

namespace kel {

class ReceivedInput;
class TurnTimer;
class WakeCall;

/// What the pumps of all systems have in common: the order in which one turn goes, for the open lines and the running
/// timers of one thread.
///
/// `DoEvents` runs the host's pump, the system's messages and the timers that are due. Then it returns at once if a
/// line has input that the caller takes bit by bit, or does not know of yet. Otherwise it blocks until a byte arrives,
/// a timer is due, a message or a signal comes, or another thread calls. What arrives is fetched into the line's buffer
/// right there. So a waiting loop sees a byte at once and takes next to no processor time. Only what cannot be waited
/// for has a clock: a host's pump, a line of the host, a timer of the host.
///
/// Input that comes in the turn in which a timer ends goes first: the timer's event runs one turn later. The event of a
/// timer that has ended before, in a pause for example, runs in the next turn, whatever has come meanwhile.
///
/// While a process is stopped (Ctrl-Z), or gets no processor for long, no time passes for a dialogue: a pause lasts as
/// much longer, and a timer that ended meanwhile goes on once, since a reader in the same job was stopped too.
class TurnPump : public MessagePump {
public:
    TurnPump(const TurnPump&) = delete;
    TurnPump& operator=(const TurnPump&) = delete;

    void DoEvents() override;
    void Sleep(Int32 milliseconds) override;
    [[nodiscard]] Moment now() const override { return time() - begin_; }
    void hostPump(std::function<void()> pump) override;

    /// Ends a wait of this pump's thread; null where none can be had.
    [[nodiscard]] virtual std::shared_ptr<WakeCall> wakeCall() = 0;

    /// A timer is among the running ones as long as it is not removed.
    void add(TurnTimer& timer);
    void remove(TurnTimer& timer);

protected:
    TurnPump();

    /// A line is among the open ones as long as it is not removed.
    void add(ReceivedInput& line) { lines_.push_back(&line); }
    void remove(ReceivedInput& line) { std::erase(lines_, &line); }
    [[nodiscard]] const std::vector<ReceivedInput*>& lines() const noexcept { return lines_; }

    /// When the next running timer is due.
    [[nodiscard]] std::optional<Moment> nextTimer() const;

    /// Runs the events of the timers that are due.
    void fireTimers();

    /// What ends a wait: no line at all, some of the open ones, or all of them and calls of other threads.
    enum class Watched { Nothing, Some, All };

    /// How long a wait for input may last that is to end after a time at the latest.
    [[nodiscard]] Moment longestWait(Moment atMost, Watched watched) const;

    /// The steady clock.
    [[nodiscard]] virtual Moment time() const noexcept;

private:
    /// Runs what waits in the system's queue of this thread; whether there was anything.
    virtual bool runMessages() { return false; }

    /// Waits for input, so long at most, and fetches it.
    virtual void fetchInput(Moment atMost) = 0;

    /// Blocks the thread up to a moment of the steady clock.
    virtual void sleepUntil(Moment end) = 0;

    /// The running timers have changed.
    virtual void timersChanged() {}

    void runHostPump();
    void waitForInput();
    void makeUpForStop(Moment lost);
    [[nodiscard]] bool timerIsDue() const;
    [[nodiscard]] bool inputInvites() const;
    void endTurn();

    Moment begin_;
    Moment turnBegan_{};
    std::shared_ptr<const std::function<void()>> hostPump_;
    std::vector<ReceivedInput*> lines_;
    std::vector<TurnTimer*> timers_;
};

} // namespace kel
