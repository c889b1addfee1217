// SPDX-License-Identifier: MIT
#include "recording/ReplayCarrier.h"

#include "platform/FaultCapture.h"
#include "platform/LineSettings.h"
#include "types/RuntimeFailure.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

// A host that looks at its line so often without a pause waits for time to pass all the same.
constexpr int kMostVainLooks = 1000;

// A host that waits so often for what never comes waits for ever; one that does it twice as often takes no notice of
// being stopped.
constexpr int kPatience = 100;

// The same for one that waits where the recorded host had gone on; a yield or two are no waiting.
constexpr int kPatienceBehindHost = 5;

// A dead line tells so often how many bytes are left on it.
constexpr int kLooksAtDeadLine = 3;

// How long a turn lasts in which nothing happens.
constexpr Moment kTurn = std::chrono::milliseconds(20);

} // namespace

ReplayCarrier::ReplayCarrier(Transcript transcript)
    : player_(std::move(transcript)), timer_(player_), pump_(player_, timer_), control_(player_)
{
}

// --- The timer

void ReplayCarrier::Timer::Interval(Int32 milliseconds)
{
    if (milliseconds < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    interval_ = milliseconds;
    started_ = player_.now();
}

void ReplayCarrier::Timer::Enabled(Boolean value)
{
    enabled_ = value ? True : False;
    started_ = player_.now();
}

std::optional<Moment> ReplayCarrier::Timer::end() const
{
    if (!enabled_ || interval_ == 0)
        return std::nullopt;
    return started_ + std::chrono::milliseconds(interval_);
}

// --- The pump

void ReplayCarrier::Pump::DoEvents()
{
    if (const auto pump = hostPump_) {
        const HostCode host;
        pump();
    }
    if (inputInvites())
        vainTurns_ = 0;
    else
        moveOn();
    arrivalsSeen_ = player_.arrivals();
    takingsSeen_ = player_.takings();
}

/// Whether there is work for the host: bytes wait that are news, or that it takes one by one.
bool ReplayCarrier::Pump::inputInvites()
{
    return player_.waiting() > 0 && (player_.arrivals() != arrivalsSeen_ || player_.takings() != takingsSeen_);
}

/// Time passes up to what happens next. Of two things at once the reader's comes first, and then the timer. Bytes that
/// the recorded host knew of only after the end of its timer are no reason to let it go on.
void ReplayCarrier::Pump::moveOn()
{
    const std::optional<Moment> reader = player_.nextOfReader();
    const std::optional<Moment> timer = timer_.end();
    const std::optional<Moment> host = player_.nextOfHost();
    const Moment turnEnd = player_.now() + kTurn;
    if (player_.hungUp() && (!timer || turnEnd < *timer)) {
        player_.moveTo(turnEnd);
    } else if (reader && (!timer || *reader <= *timer)) {
        player_.moveTo(*reader);
        vainTurns_ = 0;
    } else if (timer && (!host || *timer <= *host || stopped_)) {
        player_.moveTo(*timer);
        timer_.fire();
        vainTurns_ = 0;
    } else if (host && player_.now() < *host) {
        player_.moveTo(std::min(*host, turnEnd));
    } else {
        waitInVain(host.has_value());
        player_.moveTo(turnEnd);
    }
}

/// Nothing will ever come. If it is told when the recorded host went on, this one should have done so by now.
void ReplayCarrier::Pump::waitInVain(bool hostWentOn)
{
    ++vainTurns_;
    stopped_ = stopped_ || vainTurns_ >= (hostWentOn ? kPatienceBehindHost : kPatience);
    if (vainTurns_ > 2 * kPatience)
        player_.hangUp();
}

void ReplayCarrier::Pump::Sleep(Int32 milliseconds)
{
    if (milliseconds > 0)
        player_.moveTo(player_.now() + std::chrono::milliseconds(milliseconds));
}

// --- The line

/// "PortOpen 8005 Port already open: ..." in the head: so it went when the session was recorded.
void ReplayCarrier::Control::refuseAsRecorded(const std::string& member) const
{
    const std::optional<std::string> refused = player_.transcript().value("refused");
    if (!refused || !refused->starts_with(member + " "))
        return;
    const std::string rest = refused->substr(member.size() + 1);
    throw RuntimeFailure(static_cast<std::int32_t>(Val(rest)), rest.substr(std::min(rest.find(' ') + 1, rest.size())));
}

void ReplayCarrier::Control::CommPort(Int16 value)
{
    refuseAsRecorded("CommPort");
    SerialProperties::CommPort(value);
}

void ReplayCarrier::Control::Settings(const std::string& value)
{
    refuseAsRecorded("Settings");
    SerialProperties::Settings(value);
}

void ReplayCarrier::Control::Handshaking(Int32 value)
{
    refuseAsRecorded("Handshaking");
    SerialProperties::Handshaking(value);
}

void ReplayCarrier::Control::PortOpen(Boolean value)
{
    if (!value) {
        open_ = False;
        player_.closed();
        return;
    }
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    refuseAsRecorded("PortOpen");
    if (const auto line = player_.transcript().value("line");
        line && lineSettingsText(parseLineSettings(*line)) != lineSettingsText(parameters()))
        player_.differ("The line is set to " + Settings() + "; in the transcript it was " + *line + ".");
    open_ = True;
    player_.opened();
}

void ReplayCarrier::Control::demandOpen() const
{
    if (!open_)
        throw RuntimeFailure(FailureCode::PortNotOpen);
}

void ReplayCarrier::Control::failHungUp() const
{
    const std::string& text = player_.hangUpText();
    throw RuntimeFailure(FailureCode::ErrorReadingDevice,
                         text.empty() ? failureText(FailureCode::ErrorReadingDevice) : text);
}

Int32 ReplayCarrier::Control::InBufferCount()
{
    demandOpen();
    ++vainLooks_;
    if (player_.hungUp() && (player_.waiting() == 0 || vainLooks_ >= kLooksAtDeadLine))
        failHungUp();
    if (vainLooks_ > kMostVainLooks) {
        vainLooks_ = 0;
        if (const std::optional<Moment> next = player_.nextOfReader())
            player_.moveTo(*next);
        else
            player_.moveTo(player_.now() + kTurn);
    }
    const auto count = static_cast<Int32>(player_.waiting());
    player_.seen();
    return count;
}

std::string ReplayCarrier::Control::Input()
{
    demandOpen();
    std::string bytes = player_.take(mostOfInput());
    player_.seen();
    if (bytes.empty() && player_.hungUp())
        failHungUp();
    vainLooks_ = 0;
    return bytes;
}

void ReplayCarrier::Control::Output(std::string_view bytes)
{
    demandOpen();
    vainLooks_ = 0;
    if (!player_.send(bytes))
        failHungUp();
}

} // namespace kel
