// SPDX-License-Identifier: MIT
#include "cli/check/Verdict.h"

#include "cli/Commands.h"
#include "cli/Interrupt.h"

#include <algorithm>

namespace kel {

namespace {

bool isWrong(const CheckResult& result)
{
    return result.status == CheckStatus::Warn || result.status == CheckStatus::Fail;
}

bool failed(std::span<const CheckResult> results)
{
    return std::ranges::any_of(results, [](const CheckResult& result) { return result.status == CheckStatus::Fail; });
}

/// The result whose cause explains the others; nothing if none has one.
const CheckResult* chief(std::span<const CheckResult> results)
{
    const CheckResult* found = nullptr;
    for (const CheckResult& result : results) {
        if (isWrong(result) && result.cause != Cause::None && (!found || result.cause < found->cause))
            found = &result;
    }
    return found;
}

bool sheetsWereRead(std::span<const CheckResult> results)
{
    return std::ranges::any_of(results, [](const CheckResult& result) {
        return result.stage == CheckStage::Sheets &&
               (result.status == CheckStatus::Pass || result.status == CheckStatus::Warn);
    });
}

} // namespace

Verdict judge(std::span<const CheckResult> results)
{
    Verdict verdict{.usable = !failed(results), .cause = {}, .sentence = {}, .advice = {}};
    const CheckResult* const wrong = chief(results);
    if (verdict.usable)
        verdict.sentence = sheetsWereRead(results) ? "The reader can be used."
                                                   : "The reader answers; no sheet was read (--sheets N reads some).";
    else
        verdict.sentence = "The reader cannot be used.";
    if (!wrong)
        return verdict;
    verdict.cause = wrong->cause;
    verdict.sentence += " " + std::string(entryOf(wrong->cause).sentence);
    verdict.advice = wrong->advice.empty() ? std::string(entryOf(wrong->cause).advice) : wrong->advice;
    return verdict;
}

int exitStatus(std::span<const CheckResult> results)
{
    const bool stopped =
        std::ranges::any_of(results, [](const CheckResult& result) { return result.cause == Cause::Interrupted; });
    return stopped ? kInterruptedStatus : failed(results) ? kFailedStatus : kDoneStatus;
}

} // namespace kel
