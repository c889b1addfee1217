// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"
#include "platform/TextScreen.h"
#include "platform/posix/PosixMessagePump.h"
#include "platform/posix/PosixOmrApiLoader.h"
#include "platform/posix/PosixProcess.h"
#include "platform/posix/SqliteRegistry.h"

namespace kel {

/// The platform of one thread on a POSIX system.
class PosixPlatform final : public Platform {
public:
    explicit PosixPlatform(RegistryFolders folders = RegistryFolders::fromEnvironment());

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override;
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override;
    [[nodiscard]] PosixMessagePump& pump() override { return *pump_; }
    [[nodiscard]] SqliteRegistry& registry() override { return *registry_; }
    [[nodiscard]] TextScreen& screen() override { return screen_; }
    [[nodiscard]] PosixProcess& process() override { return process_; }
    [[nodiscard]] PosixOmrApiLoader& omrApiLoader() override { return omrApiLoader_; }

private:
    // A control or a timer may outlive its platform, as when a thread ends before its host's objects do.
    std::shared_ptr<PosixMessagePump> pump_;
    std::shared_ptr<SqliteRegistry> registry_;
    TextScreen screen_;
    PosixProcess process_;
    PosixOmrApiLoader omrApiLoader_;
};

/// A platform for the calling thread.
[[nodiscard]] std::unique_ptr<Platform> makePosixPlatform();

} // namespace kel
