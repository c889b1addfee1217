// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsMessagePump.h"

#include "platform/FaultCapture.h"
#include "platform/SteadyTime.h"
#include "platform/WakeCall.h"
#include "platform/windows/SystemHandle.h"
#include "platform/windows/WatchedInput.h"

#include <algorithm>
#include <limits>
#include <map>
#include <vector>

namespace kel {

namespace {

/// Whose loop timers they are.
thread_local std::map<UINT_PTR, WindowsMessagePump*> pumpsByTimer;

/// Up to the next whole millisecond, as the system counts.
DWORD wholeMilliseconds(Moment time)
{
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(std::max(time, Moment::zero())).count();
    return static_cast<DWORD>(std::min<std::int64_t>(count, std::numeric_limits<Int32>::max()));
}

// How long a wait lasts at most: a driver may miss the byte that comes while the watch over a port begins.
constexpr Moment kLongestWatch = std::chrono::milliseconds(250);

} // namespace

/// Calls through an event object, which a wait resets.
class EventObjectCall final : public WakeCall {
public:
    EventObjectCall() : event_(::CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

    void call() noexcept override { ::SetEvent(event_.get()); }
    void answer() noexcept override { ::ResetEvent(event_.get()); }
    [[nodiscard]] HANDLE handle() const noexcept { return event_.get(); }

private:
    SystemHandle event_;
};

WindowsMessagePump::WindowsMessagePump() : wakeCall_(std::make_shared<EventObjectCall>()) {}

std::shared_ptr<WakeCall> WindowsMessagePump::wakeCall()
{
    return wakeCall_;
}

WindowsMessagePump::~WindowsMessagePump()
{
    endLoopTimer();
}

void WindowsMessagePump::add(WatchedInput& line)
{
    TurnPump::add(line);
}

void WindowsMessagePump::remove(WatchedInput& line)
{
    TurnPump::remove(line);
}

void WindowsMessagePump::DoEvents()
{
    struct Turn {
        explicit Turn(int& turns) : turns_(++turns) {}
        ~Turn() { --turns_; }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        int& turns_;
    };
    const Turn turn(turns_);
    TurnPump::DoEvents();
}

/// The message that ends the thread's loop is for the host: it is put back, and no reason to hurry.
bool WindowsMessagePump::runMessages()
{
    const HostCode host;
    bool any = false;
    threadEnds_ = false;
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            ::PostQuitMessage(static_cast<int>(message.wParam));
            threadEnds_ = true;
            break;
        }
        any = true;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return any;
}

void WindowsMessagePump::fetchInput(Moment atMost)
{
    // A message may begin a turn within this one, and close lines: what is waited for is this turn's own.
    std::vector<HANDLE> events;
    std::vector<WatchedInput*> watched;
    std::vector<WatchedInput*> unwatched;
    for (ReceivedInput* each : lines()) {
        auto* line = static_cast<WatchedInput*>(each); // `add` takes no others
        if (!line->canBringMore())
            continue;
        const HANDLE event = line->arrival();
        if (event && events.size() < MAXIMUM_WAIT_OBJECTS - 2) {
            events.push_back(event);
            watched.push_back(line);
        } else {
            unwatched.push_back(line);
        }
    }
    // A line that cannot be watched is looked at often.
    const bool often = watched.empty() || !unwatched.empty();
    const bool all = watched.size() == lines().size();
    const Moment longest = std::min(longestWait(atMost, often ? Watched::Nothing
                                                        : all ? Watched::All
                                                              : Watched::Some),
                                    kLongestWatch);
    events.push_back(wakeCall_->handle());
    const auto count = static_cast<DWORD>(events.size());
    ++waits_;
    const DWORD ended = ::MsgWaitForMultipleObjectsEx(count, events.data(), wholeMilliseconds(longest),
                                                      threadEnds_ ? 0 : QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    for (std::size_t i = 0; i < watched.size(); ++i) {
        if (::WaitForSingleObject(events[i], 0) == WAIT_OBJECT_0) {
            watched[i]->arrived();
            watched[i]->fetch();
        }
    }
    for (WatchedInput* line : unwatched)
        line->fetch();
    if (ended == WAIT_OBJECT_0 + count)
        runMessages();
}

void WindowsMessagePump::sleepUntil(Moment end)
{
    for (Moment left = end - steadyTime(); left > Moment::zero(); left = end - steadyTime())
        ::Sleep(wholeMilliseconds(left));
}

/// The host's loop is told when the next timer is due.
void WindowsMessagePump::timersChanged()
{
    endLoopTimer();
    if (const std::optional<Moment> next = nextTimer()) {
        loopTimer_ = ::SetTimer(nullptr, 0, wholeMilliseconds(*next - now()), &loopTimerRuns);
        if (loopTimer_ != 0)
            pumpsByTimer[loopTimer_] = this;
    }
}

void WindowsMessagePump::endLoopTimer() noexcept
{
    if (loopTimer_ == 0)
        return;
    ::KillTimer(nullptr, loopTimer_);
    pumpsByTimer.erase(loopTimer_);
    loopTimer_ = 0;
}

/// A turn of ours looks after the timers itself, and after the input first.
void CALLBACK WindowsMessagePump::loopTimerRuns(HWND, UINT, UINT_PTR timer, DWORD)
{
    const auto found = pumpsByTimer.find(timer);
    if (found != pumpsByTimer.end() && found->second->turns_ == 0)
        found->second->fireTimers();
}

} // namespace kel
