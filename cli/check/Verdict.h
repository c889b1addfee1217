// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/CheckResult.h"

#include <span>
#include <string>

namespace kel {

/// What all results of a check come to.
struct Verdict {
    bool usable = true;   ///< whether nothing failed
    Cause cause{};        ///< what is wrong; none if nothing is
    std::string sentence; ///< for the operator: whether the reader can be used, and what is wrong
    std::string advice;   ///< what to do; empty if nothing is wrong

    friend bool operator==(const Verdict&, const Verdict&) = default;
};

/// Of the causes that the results name, the one that explains the others.
[[nodiscard]] Verdict judge(std::span<const CheckResult> results);

/// The exit status: 0 all pass or warn, 1 something failed, 130 stopped.
[[nodiscard]] int exitStatus(std::span<const CheckResult> results);

} // namespace kel
