// SPDX-License-Identifier: MIT
#include "platform/posix/PosixPlatform.h"

#include "platform/TurnTimer.h"
#include "platform/posix/PosixSerialControl.h"

namespace kel {

PosixPlatform::PosixPlatform(RegistryFolders folders)
    : pump_(std::make_shared<PosixMessagePump>()), registry_(std::make_shared<SqliteRegistry>(std::move(folders))),
      omrApiLoader_(process_.ComponentFolder())
{
}

std::unique_ptr<SerialControl> PosixPlatform::newSerialControl()
{
    return std::make_unique<PosixSerialControl>(pump_, registry_);
}

std::unique_ptr<ScanTimer> PosixPlatform::newScanTimer()
{
    return std::make_unique<TurnTimer>(pump_);
}

std::unique_ptr<Platform> makePosixPlatform()
{
    return std::make_unique<PosixPlatform>();
}

} // namespace kel
