// SPDX-License-Identifier: MIT
#include "cli/SearchReports.h"

#include <iostream>

namespace kel {

SearchReports::SearchReports(clsKELReader& reader)
    : reports_(reader, [this](const host::Failure& failure) { failures_.push_back(failure); })
{
}

void SearchReports::tell() const
{
    for (const host::Failure& failure : failures_)
        std::cerr << "kelreader: " << host::failureSentence(failure) << std::endl;
}

void SearchReports::tellOfDevices() const
{
    for (const host::Failure& failure : failures_) {
        if (!failure.device.empty())
            std::cerr << "kelreader: " << host::failureSentence(failure) << std::endl;
    }
}

} // namespace kel
