#pragma once

#include "platform/MessagePump.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <poll.h>
#include <vector>

namespace kel {

class LineInput;
class PosixScanTimer;

/// The pump of one thread: its open lines and its running timers.
///
/// `DoEvents` runs the host's pump and the timers that are due. Then it returns at once if a line has input that the
/// caller takes bit by bit, or has not been told of yet, and makes no system call for it. Otherwise it blocks in one
/// poll of all open lines, until a byte arrives or a timer is due, for 20 milliseconds at most. What arrives is
/// fetched into the line's buffer right there. So a waiting loop sees a byte within microseconds and takes next to no
/// processor time.
///
/// Input that comes together with the end of a timer goes first: the timer's event runs one turn later.
class PosixMessagePump final : public MessagePump {
public:
    PosixMessagePump();
    PosixMessagePump(const PosixMessagePump&) = delete;
    PosixMessagePump& operator=(const PosixMessagePump&) = delete;

    void DoEvents() override;
    void Sleep(Int32 milliseconds) override;
    [[nodiscard]] Moment now() const override;
    void hostPump(std::function<void()> pump) override;

    /// A line is among the open ones, and a timer among the running ones, as long as it is not removed.
    void add(LineInput& line) { lines_.push_back(&line); }
    void remove(LineInput& line) { std::erase(lines_, &line); }
    void add(PosixScanTimer& timer) { timers_.push_back(&timer); }
    void remove(PosixScanTimer& timer) { std::erase(timers_, &timer); }

    /// How often the pump has asked the system about its lines, for tests.
    [[nodiscard]] std::uint64_t polls() const noexcept { return polls_; }

private:
    void runHostPump();
    [[nodiscard]] std::optional<Moment> nextTimer() const;
    [[nodiscard]] bool timerIsDue() const;
    void fireTimers();
    [[nodiscard]] bool inputInvites() const;
    void fetchInput(Moment atMost);
    void endTurn();

    Moment begin_;
    std::shared_ptr<const std::function<void()>> hostPump_;
    std::vector<LineInput*> lines_;
    std::vector<PosixScanTimer*> timers_;
    std::vector<pollfd> handles_;
    std::vector<LineInput*> polled_;
    std::uint64_t polls_ = 0;
};

} // namespace kel
