// SPDX-License-Identifier: MIT
#include "cli/SearchReports.h"

#include "cli/Notice.h"

namespace kel {

SearchReports::SearchReports() : reports_([this](const host::Failure& failure) { failures_.push_back(failure); }) {}

void SearchReports::tell() const
{
    for (const host::Failure& failure : failures_)
        notice(host::failureSentence(failure));
}

void SearchReports::tellOfDevices() const
{
    for (const host::Failure& failure : failures_) {
        if (!failure.device.empty())
            notice(host::failureSentence(failure));
    }
}

} // namespace kel
