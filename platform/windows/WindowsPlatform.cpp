// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsPlatform.h"

#include "platform/TurnTimer.h"
#include "platform/windows/WindowsSerialControl.h"

namespace kel {

WindowsPlatform::WindowsPlatform(std::unique_ptr<Screen> screen)
    : pump_(std::make_shared<WindowsMessagePump>()), screen_(std::move(screen)),
      omrApiLoader_(process_.ComponentFolder())
{
}

std::unique_ptr<SerialControl> WindowsPlatform::newSerialControl()
{
    return std::make_unique<WindowsSerialControl>(pump_);
}

std::unique_ptr<ScanTimer> WindowsPlatform::newScanTimer()
{
    return std::make_unique<TurnTimer>(pump_);
}

std::unique_ptr<Platform> makeWindowsPlatform()
{
    return std::make_unique<WindowsPlatform>();
}

} // namespace kel
