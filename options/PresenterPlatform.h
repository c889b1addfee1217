// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PlatformAround.h"

namespace kel {

/// A platform whose screen is a window's; everything else is another platform's. Both must outlive it.
class PresenterPlatform final : public PlatformAround {
public:
    PresenterPlatform(Platform& machine, Screen& screen) : PlatformAround(machine), screen_(screen) {}

    [[nodiscard]] Screen& screen() override { return screen_; }

private:
    Screen& screen_;
};

} // namespace kel
