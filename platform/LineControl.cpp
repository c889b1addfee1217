// SPDX-License-Identifier: MIT
#include "platform/LineControl.h"

#include "platform/ReceivedInput.h"
#include "types/RuntimeFailure.h"

namespace kel {

void LineControl::setLine(const LineParameters& wanted)
{
    if (!open_)
        return;
    try {
        open_->set(wanted);
    } catch (const RuntimeFailure& refused) {
        // A device may have taken half of what was asked for. If it is gone, the next access will tell.
        try {
            open_->set(parameters());
        } catch (const RuntimeFailure&) {
        }
        throw refused;
    }
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
    open_ = open(CommPort(), parameters());
    open_->input().dropUntilSilent();
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
    return line().input().take(InputLen());
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
