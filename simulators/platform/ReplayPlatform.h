// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PlatformAround.h"
#include "recording/ReplayLibrary.h"
#include "simulators/platform/ReplayCarrier.h"
#include "simulators/platform/SimulatedOmrApiLoader.h"

namespace kel {

/// A platform on which the time of a replay passes and whose USB library is the replay's; everything else is another
/// platform's. That one, the carrier and the library must outlive it.
class ReplayPlatform final : public PlatformAround {
public:
    ReplayPlatform(Platform& machine, ReplayCarrier& replay, ReplayLibrary& library)
        : PlatformAround(machine), replay_(replay)
    {
        loader_.set(&library);
    }

    [[nodiscard]] MessagePump& pump() override { return replay_.pump(); }
    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return loader_; }

private:
    ReplayCarrier& replay_;
    SimulatedOmrApiLoader loader_;
};

} // namespace kel
