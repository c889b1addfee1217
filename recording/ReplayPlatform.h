#pragma once

#include "platform/Platform.h"
#include "recording/ReplayCarrier.h"

namespace kel {

/// A platform on which the time of a replay passes; everything else is another platform's. Both that one and the
/// carrier must outlive it.
class ReplayPlatform final : public Platform {
public:
    ReplayPlatform(Platform& machine, ReplayCarrier& replay) : machine_(machine), replay_(replay) {}

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override { return machine_.newSerialControl(); }
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override { return machine_.newScanTimer(); }
    [[nodiscard]] MessagePump& pump() override { return replay_.pump(); }
    [[nodiscard]] Registry& registry() override { return machine_.registry(); }
    [[nodiscard]] Screen& screen() override { return machine_.screen(); }
    [[nodiscard]] Process& process() override { return machine_.process(); }
    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return machine_.omrApiLoader(); }

private:
    Platform& machine_;
    ReplayCarrier& replay_;
};

} // namespace kel
