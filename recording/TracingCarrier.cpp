// SPDX-License-Identifier: MIT
#include "recording/TracingCarrier.h"

#include "platform/Platform.h"

namespace kel {

namespace {

Moment now()
{
    return platform().pump().now();
}

} // namespace

TracingCarrier::TracingCarrier(Reference<Carrier> traced, const TraceLog::Head& head, TraceLog::Write write)
    : traced_(std::move(traced)), control_(*this, std::move(write))
{
    for (const auto& [key, value] : head)
        control_.log().head(key, value);
    // The pauses are those of a real host, not of a script.
    control_.log().head("times", "recorded");
}

/// A setting that is refused ends the session before it begins; the head says so.
template <class Action>
void TracingCarrier::Control::setting(const char* member, Action action)
{
    try {
        action();
    } catch (const RuntimeFailure& failure) {
        log_.head("refused", std::string(member) + " " + std::to_string(failure.number()) + " " + failure.text());
        throw;
    }
}

void TracingCarrier::Control::CommPort(Int16 value)
{
    setting("CommPort", [&] { inner().CommPort(value); });
}

void TracingCarrier::Control::Settings(const std::string& value)
{
    setting("Settings", [&] { inner().Settings(value); });
}

void TracingCarrier::Control::Handshaking(Int32 value)
{
    setting("Handshaking", [&] { inner().Handshaking(value); });
}

void TracingCarrier::Control::PortOpen(Boolean value)
{
    if (!value) {
        if (inner().PortOpen()) {
            keepUntaken();
            log_.closed(now());
        }
        inner().PortOpen(value);
        noteLineErrors();
        kept_.clear();
        return;
    }
    if (!lineWritten_) {
        log_.head("line", inner().Settings());
        log_.head("handshaking", std::to_string(inner().Handshaking()));
        lineWritten_ = true;
    }
    setting("PortOpen", [&] { inner().PortOpen(value); });
    kept_.clear();
    deathWritten_ = false;
    log_.opened(now());
}

/// What the host knows of and has not taken: nobody will tell any more what it is.
void TracingCarrier::Control::keepUntaken()
{
    if (log_.known() == 0)
        return;
    const Int32 inputLen = inner().InputLen();
    try {
        inner().InputLen(0);
        const std::string bytes = inner().Input();
        log_.took(now(), bytes);
        kept_ += bytes;
    } catch (const RuntimeFailure&) {
        // They are lost with the line.
    }
    inner().InputLen(inputLen);
}

/// After a reply, or what should have been one.
void TracingCarrier::Control::noteLineErrors()
{
    const LineErrors errors = lineErrors();
    if (errors == noted_)
        return;
    noted_ = errors;
    log_.wentWrong(lineErrorsText(errors));
}

template <class Action>
auto TracingCarrier::Control::watching(Action action)
{
    try {
        return action();
    } catch (const RuntimeFailure& failure) {
        if (failure.code() == FailureCode::ErrorReadingDevice && !deathWritten_) {
            deathWritten_ = true;
            keepUntaken();
            log_.hungUp(failure.text());
        }
        throw;
    }
}

Int32 TracingCarrier::Control::InBufferCount()
{
    const Int32 count = watching([&] { return inner().InBufferCount(); });
    log_.looked(now(), static_cast<std::size_t>(count));
    return count;
}

std::string TracingCarrier::Control::Input()
{
    if (!kept_.empty()) {
        const Int32 most = inner().InputLen();
        std::string bytes = kept_.substr(0, most == 0 ? kept_.size() : static_cast<std::size_t>(most));
        kept_.erase(0, bytes.size());
        return bytes;
    }
    std::string bytes = watching([&] { return inner().Input(); });
    log_.took(now(), bytes);
    return bytes;
}

void TracingCarrier::Control::Output(std::string_view bytes)
{
    noteLineErrors();
    const Moment before = now();
    watching([&] { inner().Output(bytes); });
    log_.sent(before, bytes);
}

} // namespace kel
