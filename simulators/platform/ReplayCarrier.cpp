// SPDX-License-Identifier: MIT
#include "simulators/platform/ReplayCarrier.h"

#include "platform/FaultCapture.h"
#include "types/RuntimeFailure.h"
#include "types/Text.h"

#include <algorithm>
#include <limits>

namespace kel {

namespace {

// A host that waits so often for what never comes waits for ever; one that does it twice as often takes no notice of
// being stopped.
constexpr int kPatience = 100;

// The same for one that waits where the recorded host had gone on; a yield or two are no waiting.
constexpr int kPatienceAfterHost = 5;

// A dead line shows so often how many bytes are left on it.
constexpr int kLooksAtDeadLine = 3;

// How long a turn lasts in which nothing happens.
constexpr Moment kTurn = std::chrono::milliseconds(20);

// The timer of a carrier, as the reader's own has it.
constexpr Int32 kTimerAtFirst = 10000;

} // namespace

ReplayCarrier::ReplayCarrier(const Transcript& transcript) : device_(transcript), control_(*this, transcript)
{
    line_.attach(device_);
    line_.hostPace(HostPace::Instant);
    line_.forgetActions();
    simulated_.add(line_);
    // A session may last for days; `stopped` ends one that comes to nothing.
    constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
    simulated_.clock().limits(Moment::max(), kNoLimit, kNoLimit);
    timer_.Interval(kTimerAtFirst);
}

// --- The pump

void ReplayCarrier::Pump::DoEvents()
{
    if (const auto pump = hostPump_) {
        const HostCode host;
        pump();
    }
    replay_.device_.hostLooks(now());
    const bool news = replay_.line_.hasNews();
    if (!news && !somethingComes()) {
        waitInVain();
        return;
    }
    vainTurns_ = 0;
    if (!news)
        replay_.simulated_.DoEvents();
}

/// Whether the reader says something or the timer ends, before the recorded host went on.
bool ReplayCarrier::Pump::somethingComes() const
{
    const std::optional<Moment> timer = replay_.timer_.due();
    const std::optional<Moment> host = replay_.device_.nextOfHost();
    return replay_.line_.nextEvent() || (timer && (!host || *timer <= *host || stopped_));
}

/// Nothing will ever come. If it is recorded when the host went on, this one should have done so by now.
void ReplayCarrier::Pump::waitInVain()
{
    const std::optional<Moment> host = replay_.device_.nextOfHost();
    Moment turnEnd = now() + kTurn;
    if (host && now() < *host) {
        turnEnd = std::min(turnEnd, *host);
    } else if (!replay_.device_.hungUp()) {
        ++vainTurns_;
        stopped_ = stopped_ || vainTurns_ >= (host ? kPatienceAfterHost : kPatience);
        if (vainTurns_ > 2 * kPatience)
            replay_.device_.hangUp();
    }
    replay_.simulated_.clock().advanceTo(turnEnd);
}

void ReplayCarrier::Pump::Sleep(Int32 milliseconds)
{
    if (milliseconds > 0)
        replay_.simulated_.clock().advanceTo(now() + std::chrono::milliseconds(milliseconds));
}

// --- The line

/// "PortOpen 8005 Port already open: ..." in the head: so it went when the session was recorded.
void ReplayCarrier::Control::refuseAsRecorded(const std::string& member) const
{
    if (!refused_.starts_with(member + " "))
        return;
    const std::string rest = refused_.substr(member.size() + 1);
    throw RuntimeFailure(static_cast<std::int32_t>(Val(rest)), rest.substr(std::min(rest.find(' ') + 1, rest.size())));
}

void ReplayCarrier::Control::CommPort(Int16 value)
{
    refuseAsRecorded("CommPort");
    inner().CommPort(inner().CommPort()); // fails if it is open
    port_ = value;
}

void ReplayCarrier::Control::Settings(const std::string& value)
{
    refuseAsRecorded("Settings");
    inner().Settings(value);
}

void ReplayCarrier::Control::Handshaking(Int32 value)
{
    refuseAsRecorded("Handshaking");
    inner().Handshaking(value);
}

void ReplayCarrier::Control::PortOpen(Boolean value)
{
    if (value && !PortOpen())
        refuseAsRecorded("PortOpen");
    inner().PortOpen(value);
}

/// What a look at this moment shows is on the line.
void ReplayCarrier::Control::bringWhatIsDue()
{
    replay_.device_.hostLooks(replay_.pump_.now());
    replay_.line_.settle();
}

template <class Use>
auto ReplayCarrier::Control::failingAsRecorded(Use use)
{
    try {
        return use();
    } catch (const RuntimeFailure& failure) {
        const std::string& text = replay_.device_.hangUpText();
        if (failure.code() == FailureCode::ErrorReadingDevice && !text.empty())
            throw RuntimeFailure(FailureCode::ErrorReadingDevice, text);
        throw;
    }
}

Int32 ReplayCarrier::Control::InBufferCount()
{
    bringWhatIsDue();
    ++vainLooks_;
    const Int32 count = failingAsRecorded([&] {
        if (PortOpen() && replay_.device_.hungUp() && vainLooks_ >= kLooksAtDeadLine)
            throw RuntimeFailure(FailureCode::ErrorReadingDevice);
        return inner().InBufferCount();
    });
    replay_.device_.hostKnows(replay_.pump_.now());
    return count;
}

std::string ReplayCarrier::Control::Input()
{
    bringWhatIsDue();
    vainLooks_ = 0;
    std::string bytes = failingAsRecorded([&] { return inner().Input(); });
    replay_.device_.hostKnows(replay_.pump_.now());
    return bytes;
}

void ReplayCarrier::Control::Output(std::string_view bytes)
{
    bringWhatIsDue();
    vainLooks_ = 0;
    if (PortOpen()) {
        replay_.device_.hostSends(replay_.pump_.now(), bytes);
        replay_.line_.settle();
    }
    failingAsRecorded([&] { inner().Output(bytes); });
}

} // namespace kel
