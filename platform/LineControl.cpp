// SPDX-License-Identifier: MIT
#include "platform/LineControl.h"

#include "platform/LineSettings.h"
#include "platform/ReceivedInput.h"
#include "types/RuntimeFailure.h"

namespace kel {

void LineControl::CommPort(Int16 value)
{
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    port_ = value;
}

void LineControl::Settings(const std::string& value)
{
    LineParameters wanted = parseLineSettings(value);
    if (wanted.dataBits < leastDataBits_)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue,
                             failureText(FailureCode::InvalidPropertyValue) + ": \"" + value + "\"; lines have " +
                                 std::to_string(leastDataBits_) + " to 8 data bits on this system");
    wanted.handshaking = parameters_.handshaking;
    change(wanted);
    settings_ = value;
}

void LineControl::Handshaking(Int32 value)
{
    if (value < 0 || value > 3)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue, failureText(FailureCode::InvalidPropertyValue) +
                                                                    ": handshaking " + std::to_string(value) +
                                                                    " is not 0 to 3");
    LineParameters wanted = parameters_;
    wanted.handshaking = value;
    change(wanted);
}

void LineControl::change(const LineParameters& wanted)
{
    if (open_) {
        try {
            open_->set(wanted);
        } catch (const RuntimeFailure& refused) {
            // A device may have taken half of what was asked for. If it is gone, the next access will tell.
            try {
                open_->set(parameters_);
            } catch (const RuntimeFailure&) {
            }
            throw refused;
        }
    }
    parameters_ = wanted;
}

void LineControl::PortOpen(Boolean value)
{
    if (!value) {
        errorsBefore_ = lineErrors();
        open_.reset();
        return;
    }
    if (open_)
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    open_ = open(port_, parameters_);
    open_->input().dropUntilSilent();
}

void LineControl::InputLen(Int32 value)
{
    if (value < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    inputLen_ = value;
}

OpenLine& LineControl::line()
{
    if (!open_)
        throw RuntimeFailure(FailureCode::PortNotOpen);
    return *open_;
}

Int32 LineControl::InBufferCount()
{
    return line().input().count();
}

std::string LineControl::Input()
{
    return line().input().take(inputLen_);
}

LineErrors LineControl::lineErrors()
{
    return open_ ? errorsBefore_ + open_->input().errors() : errorsBefore_;
}

std::optional<ModemLines> LineControl::modemLines()
{
    return open_ ? open_->modemLines() : std::nullopt;
}

void LineControl::Output(std::string_view bytes)
{
    line().send(bytes);
}

} // namespace kel
