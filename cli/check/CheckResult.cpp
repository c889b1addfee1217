// SPDX-License-Identifier: MIT
#include "cli/check/CheckResult.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

constexpr std::string_view kStageNames[] = {"line", "answers", "session", "sheets", "confirm", "after"};
constexpr std::string_view kStatusNames[] = {"pass", "warn", "fail", "skipped", "not applicable"};

template <class Enum, std::size_t count>
Enum named(const std::string_view (&names)[count], std::string_view name)
{
    const auto* const found = std::ranges::find(names, name);
    return found == std::end(names) ? Enum{} : static_cast<Enum>(found - std::begin(names));
}

} // namespace

std::string_view nameOf(CheckStage stage)
{
    return kStageNames[static_cast<std::size_t>(stage)];
}

std::string_view nameOf(CheckStatus status)
{
    return kStatusNames[static_cast<std::size_t>(status)];
}

CheckStage stageNamed(std::string_view name)
{
    return named<CheckStage>(kStageNames, name);
}

CheckStatus statusNamed(std::string_view name)
{
    return named<CheckStatus>(kStatusNames, name);
}

} // namespace kel
