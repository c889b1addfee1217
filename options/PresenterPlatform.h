#pragma once

#include "platform/Platform.h"

namespace kel {

/// A platform whose screen is a window's; everything else is another platform's. Both must outlive it.
class PresenterPlatform final : public Platform {
public:
    PresenterPlatform(Platform& machine, Screen& screen) : machine_(machine), screen_(screen) {}

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override { return machine_.newSerialControl(); }
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override { return machine_.newScanTimer(); }
    [[nodiscard]] MessagePump& pump() override { return machine_.pump(); }
    [[nodiscard]] Registry& registry() override { return machine_.registry(); }
    [[nodiscard]] Screen& screen() override { return screen_; }
    [[nodiscard]] Process& process() override { return machine_.process(); }
    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return machine_.omrApiLoader(); }

private:
    Platform& machine_;
    Screen& screen_;
};

} // namespace kel
