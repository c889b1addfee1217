// SPDX-License-Identifier: MIT
#include "cli/check/PaperGuard.h"

#include "dispatch/PaperCommands.h"
#include "platform/Platform.h"
#include "recording/Transcript.h"
#include "types/RuntimeFailure.h"

#include <chrono>

namespace kel {

namespace {

// A session that is asked to stop has so long to do it by itself.
constexpr Moment kGrace = std::chrono::seconds(2);

} // namespace

void PaperGuard::endIfStopped()
{
    if (!rules_.stopped || !rules_.stopped())
        return;
    const Moment now = platform().pump().now();
    stoppedAt_ = stoppedAt_.value_or(now);
    if (now - *stoppedAt_ > kGrace)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, "The check has ended this wait.");
}

Int32 PaperGuard::Control::InBufferCount()
{
    const Int32 count = inner().InBufferCount();
    if (count == 0)
        guard_.endIfStopped();
    return count;
}

void PaperGuard::Control::Output(std::string_view bytes)
{
    if (!guard_.rules_.paperMayMove && !movesNoPaper(guard_.rules_.model, bytes, guard_.before_)) {
        if (guard_.withheld_.empty())
            guard_.withheld_ = transcriptBytes(bytes);
        throw RuntimeFailure(FailureCode::InvalidProcedureCall,
                             "Withheld until sheets may move: " + transcriptBytes(bytes));
    }
    guard_.before_ = bytes;
    inner().Output(bytes);
}

} // namespace kel
