// SPDX-License-Identifier: MIT
#include "pictures/MarkScale.h"

#include "profiles/clsKELReaderProfiles.h"
#include "types/ModelTable.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

// What the Advantage Link sends for the darkest mark; its threshold is on another scale.
constexpr Int16 kDarkestOfAdvantageLink = 199;

/// Readers that say of a position only whether it is marked: the driver gives each mark the value of the threshold,
/// or the next one.
bool saysMarkedOnly(kelReaderType model)
{
    return Wire("GradeMaster").isOf(model) || Wire("VMR138").isOf(model) || Wire("EZData").isOf(model) ||
           Wire("Chatsworth").isOf(model);
}

} // namespace

MarkScale markScale(kelReaderType model, Int16 threshold)
{
    if (model == kelReaderTypeAppersonAdvantageLink)
        return {.highest = kDarkestOfAdvantageLink, .threshold = threshold, .hasShades = true};
    const Reference<clsKELReaderProfile> profile = clsKELReaderProfiles().Item(CStr(model));
    const Int16 highest = profile ? profile->RecognitionThresholdMaximum() : Int16{0};
    if (highest < 1 || saysMarkedOnly(model))
        return {.highest = std::max<Int16>(threshold, 1), .threshold = threshold, .hasShades = false};
    return {.highest = highest, .threshold = threshold, .hasShades = true};
}

} // namespace kel
