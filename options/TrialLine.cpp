// SPDX-License-Identifier: MIT
#include "options/TrialLine.h"

#include "dispatch/PaperCommands.h"
#include "types/RuntimeFailure.h"

namespace kel {

void TrialLine::Control::PortOpen(Boolean value)
{
    inner().PortOpen(value);
    if (!value)
        return;
    line_.hasOpened_ = true;
    line_.hasAsked_ = false;
    line_.whenOpen_();
}

Int32 TrialLine::Control::InBufferCount()
{
    const Int32 count = inner().InBufferCount();
    line_.hasHeard_ = line_.hasHeard_ || count > 0;
    return count;
}

std::string TrialLine::Control::Input()
{
    std::string bytes = inner().Input();
    if (!bytes.empty()) {
        line_.hasHeard_ = true;
        line_.isAnswered_ = line_.isAnswered_ || line_.hasAsked_;
    }
    return bytes;
}

void TrialLine::Control::Output(std::string_view bytes)
{
    if (!movesNoPaper(line_.model_, bytes, line_.before_)) {
        line_.hasWithheld_ = true;
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, "Withheld: a sheet would move.");
    }
    line_.before_ = bytes;
    line_.hasAsked_ = true;
    inner().Output(bytes);
}

} // namespace kel
