// SPDX-License-Identifier: MIT
#include "platform/windows/LineInProcess.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kel {

namespace {

thread_local std::vector<const LineInProcess*> lines;

} // namespace

LineInProcess::LineInProcess(std::string name, Opening opening) : name_(std::move(name)), opening_(std::move(opening))
{
    lines.push_back(this);
}

LineInProcess::~LineInProcess()
{
    std::erase(lines, this);
}

const LineInProcess* LineInProcess::named(const std::string& name)
{
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const auto* line) { return line->name_ == name; });
    return found == lines.end() ? nullptr : *found;
}

} // namespace kel
