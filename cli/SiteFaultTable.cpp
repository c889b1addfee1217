// SPDX-License-Identifier: MIT
#include "cli/SiteFaultTable.h"

#include "formats/Columns.h"

#include <algorithm>

namespace kel {

namespace {

constexpr std::size_t kFaultWidth = 27;

std::string familiesOf(const SiteFaultEntry& entry)
{
    const auto applies = [&](SimulatedFamily family) { return entry.appliesTo(family); };
    const auto isSerial = [](SimulatedFamily family) { return family != SimulatedFamily::SekonicUsb; };
    if (std::ranges::all_of(kSimulatedFamilies, applies))
        return "all";
    if (std::ranges::all_of(kSimulatedFamilies, [&](auto family) { return applies(family) == isSerial(family); }))
        return "all on a serial line";
    std::string names;
    for (const SimulatedFamily family : kSimulatedFamilies)
        if (applies(family))
            names += (names.empty() ? "" : ", ") + std::string(nameOf(family));
    return names;
}

} // namespace

std::string siteFaultTable(std::optional<SimulatedFamily> family)
{
    std::string text;
    for (const SiteFaultEntry& entry : siteFaults()) {
        if (family && !entry.appliesTo(*family))
            continue;
        std::string name(entry.name);
        if (!entry.argument.empty())
            name += "[:" + std::string(entry.argument) + "]";
        text += padded(name, kFaultWidth) + " " + familiesOf(entry) + "\n    " + std::string(entry.sentence) + "\n";
    }
    return text;
}

} // namespace kel
