// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"

namespace kel {

/// Another platform, which must outlive it, but for what a class of its own puts in its place.
class PlatformAround : public Platform {
public:
    explicit PlatformAround(Platform& machine) : machine_(machine) {}

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override { return machine_.newSerialControl(); }
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override { return machine_.newScanTimer(); }
    [[nodiscard]] MessagePump& pump() override { return machine_.pump(); }
    [[nodiscard]] Registry& registry() override { return machine_.registry(); }
    [[nodiscard]] Screen& screen() override { return machine_.screen(); }
    [[nodiscard]] Process& process() override { return machine_.process(); }
    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return machine_.omrApiLoader(); }

private:
    Platform& machine_;
};

} // namespace kel
