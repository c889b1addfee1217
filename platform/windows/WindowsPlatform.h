// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"
#include "platform/windows/WindowsMessagePump.h"
#include "platform/windows/WindowsOmrApiLoader.h"
#include "platform/windows/WindowsProcess.h"
#include "platform/windows/WindowsRegistry.h"
#include "platform/windows/WindowsScreen.h"

namespace kel {

/// The platform of one thread on Windows.
class WindowsPlatform final : public Platform {
public:
    /// With the user's desktop, or another screen.
    explicit WindowsPlatform(std::unique_ptr<Screen> screen = std::make_unique<WindowsScreen>());

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override;
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override;
    [[nodiscard]] WindowsMessagePump& pump() override { return *pump_; }
    [[nodiscard]] WindowsRegistry& registry() override { return registry_; }
    [[nodiscard]] Screen& screen() override { return *screen_; }
    [[nodiscard]] WindowsProcess& process() override { return process_; }
    [[nodiscard]] WindowsOmrApiLoader& omrApiLoader() override { return omrApiLoader_; }

private:
    // A control or a timer may outlive its platform, as when a thread ends before its host's objects do.
    std::shared_ptr<WindowsMessagePump> pump_;
    WindowsRegistry registry_;
    std::unique_ptr<Screen> screen_;
    WindowsProcess process_;
    WindowsOmrApiLoader omrApiLoader_;
};

/// A platform for the calling thread.
[[nodiscard]] std::unique_ptr<Platform> makeWindowsPlatform();

} // namespace kel
