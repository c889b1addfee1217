#pragma once

#include "platform/MessagePump.h"

#include <memory>
#include <optional>
#include <vector>

namespace kel {

class ReceivedInput;
class TurnTimer;

/// What the pumps of all systems have in common: the order in which one turn goes, for the open lines and the running
/// timers of one thread.
///
/// `DoEvents` runs the host's pump, the system's messages and the timers that are due. Then it returns at once if a
/// line has input that the caller takes bit by bit, or has not been told of yet. Otherwise it blocks until a byte
/// arrives, a timer is due or a message comes, for 20 milliseconds at most. What arrives is fetched into the line's
/// buffer right there. So a waiting loop sees a byte at once and takes next to no processor time.
///
/// Input that comes in the turn in which a timer ends goes first: the timer's event runs one turn later. The event of a
/// timer that has ended before, in a pause for example, runs in the next turn, whatever has come meanwhile.
class TurnPump : public MessagePump {
public:
    TurnPump(const TurnPump&) = delete;
    TurnPump& operator=(const TurnPump&) = delete;

    void DoEvents() override;
    void Sleep(Int32 milliseconds) override;
    [[nodiscard]] Moment now() const override;
    void hostPump(std::function<void()> pump) override;

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

    /// How long a wait for input may last: as long as the turn may, and so long at most.
    [[nodiscard]] static Moment longestWait(Moment atMost, bool anyLine);

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
