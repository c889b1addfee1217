// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/Verdict.h"
#include "host/TextOutput.h"

#include <string>

namespace kel {

/// A result as a line for the eye, with a line below it for what to do.
[[nodiscard]] std::string tableText(const CheckResult& result);
/// The verdict at the end of the table.
[[nodiscard]] std::string tableText(const Verdict& verdict);

/// The verdict as a line of JSON, without its end.
[[nodiscard]] std::string verdictJson(const Verdict& verdict);

/// Writes results as they come, as a table or as lines of JSON, and the verdict after them.
class CheckOutput {
public:
    explicit CheckOutput(bool json) : json_(json) {}

    void result(const CheckResult& result);
    void verdict(const Verdict& verdict);

    [[nodiscard]] const std::string& problem() const { return output_.problem(); }

private:
    bool json_;
    CheckStage stage_ = CheckStage::Line;
    bool begun_ = false;
    host::TextOutput output_;
};

} // namespace kel
