// SPDX-License-Identifier: MIT
#include "host/ReaderAdvice.h"

#include "host/ReaderAdviceRows.h"

#include <algorithm>
#include <string_view>

namespace kel::host {

namespace {

bool isAbout(const AdviceRow& row, const Failure& failure)
{
    const std::string_view module = row.module;
    if (!module.empty() && failure.source.find(std::string(module) + ".") == std::string::npos)
        return false;
    if (failure.type == kErrorTypeRunTime)
        return row.failure != 0 && row.failure == failure.number;
    return row.failure == 0 && row.text == failure.text;
}

} // namespace

const AdviceRow* adviceOn(const Failure& failure)
{
    const AdviceRow* const end = kAdviceRows + kAdviceCount;
    const AdviceRow* const found =
        std::find_if(kAdviceRows, end, [&](const AdviceRow& row) { return isAbout(row, failure); });
    return found == end ? nullptr : found;
}

} // namespace kel::host
