// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ErrorReport.h"

#include <functional>
#include <vector>

namespace kel::test {

/// An error object that keeps the reports, and may act on each.
class KeptReports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        reports.push_back(report);
        if (onReport)
            onReport();
        return 0;
    }

    std::vector<ErrorReport> reports;
    std::function<void()> onReport;
};

} // namespace kel::test
