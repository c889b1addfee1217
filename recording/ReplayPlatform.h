// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PlatformAround.h"
#include "recording/ReplayCarrier.h"
#include "recording/ReplayLibrary.h"

namespace kel {

/// A platform on which the time of a replay passes and whose USB library is the replay's; everything else is another
/// platform's. That one, the carrier and the library must outlive it.
class ReplayPlatform final : public PlatformAround {
public:
    ReplayPlatform(Platform& machine, ReplayCarrier& replay, ReplayLibrary& library)
        : PlatformAround(machine), replay_(replay), loader_(library)
    {
    }

    [[nodiscard]] MessagePump& pump() override { return replay_.pump(); }
    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return loader_; }

private:
    class Loader final : public OmrApiLoader {
    public:
        explicit Loader(ReplayLibrary& library) : library_(library) {}
        [[nodiscard]] OmrApi& omrApi() override { return library_; }

    private:
        ReplayLibrary& library_;
    };

    ReplayCarrier& replay_;
    Loader loader_;
};

} // namespace kel
