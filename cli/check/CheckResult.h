// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/Causes.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The parts of a check, in their order.
enum class CheckStage { Line, Answers, Session, Sheets, Confirm, After };

inline constexpr CheckStage kCheckStages[] = {CheckStage::Line,   CheckStage::Answers, CheckStage::Session,
                                              CheckStage::Sheets, CheckStage::Confirm, CheckStage::After};

enum class CheckStatus { Pass, Warn, Fail, Skipped, NotApplicable };

/// "line", "answers" and so on; "pass", "not applicable" and so on. And back; the first of all for a name that is none.
[[nodiscard]] std::string_view nameOf(CheckStage stage);
[[nodiscard]] std::string_view nameOf(CheckStatus status);
[[nodiscard]] CheckStage stageNamed(std::string_view name);
[[nodiscard]] CheckStatus statusNamed(std::string_view name);

/// The result of one check.
struct CheckResult {
    CheckStage stage{};
    std::string name{};
    CheckStatus status{};
    std::string expected{};
    std::string seen{};
    double milliseconds = 0;
    std::string advice{}; ///< what to do, a sentence; may be empty
    Cause cause{};        ///< what is wrong, as far as this check can say

    friend bool operator==(const CheckResult&, const CheckResult&) = default;
};

using CheckResults = std::vector<CheckResult>;

} // namespace kel
