// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/CheckRun.h"
#include "cli/check/ReportText.h"

#include <string>

namespace kel {

/// The head of a report: versions, the system, and all that it takes to check again.
[[nodiscard]] std::string reportHead(const CheckPlan& plan, bool masked);

/// What the check of a report was asked to do. UsageError for a head that does not fit.
[[nodiscard]] CheckPlan planOfReport(const CheckReport& report, const std::string& fileName);

} // namespace kel
