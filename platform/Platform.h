// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/MessagePump.h"
#include "platform/OmrApi.h"
#include "platform/Process.h"
#include "platform/Registry.h"
#include "platform/Screen.h"
#include "types/Export.h"

#include <memory>

namespace kel {

/// Everything that the component needs of the system that it runs on, for one thread.
class Platform {
public:
    virtual ~Platform() = default;

    /// A new serial control and a new timer, closed and off; the pump of this platform serves them.
    [[nodiscard]] virtual std::unique_ptr<SerialControl> newSerialControl() = 0;
    [[nodiscard]] virtual std::unique_ptr<ScanTimer> newScanTimer() = 0;

    [[nodiscard]] virtual MessagePump& pump() = 0;
    [[nodiscard]] virtual Registry& registry() = 0;
    [[nodiscard]] virtual Screen& screen() = 0;
    [[nodiscard]] virtual Process& process() = 0;
    [[nodiscard]] virtual OmrApiLoader& omrApiLoader() = 0;
};

/// The platform of the calling thread: the innermost PlatformScope, or else one made at the first use by the factory
/// that start-up has installed.
[[nodiscard]] KEL_INTERNAL Platform& platform();

/// Installs what makes a thread's platform. Called once at start-up.
using PlatformFactory = std::unique_ptr<Platform> (*)();
void setPlatformFactory(PlatformFactory factory);

/// Makes a platform the calling thread's for as long as the scope lives; the platform must outlive it.
class KEL_INTERNAL PlatformScope {
public:
    explicit PlatformScope(Platform& platform);
    ~PlatformScope();
    PlatformScope(const PlatformScope&) = delete;
    PlatformScope& operator=(const PlatformScope&) = delete;

private:
    Platform* previous_;
};

/// Lets events run, and blocks the thread: the platform's calls under the names that the dialogues use.
inline void DoEvents()
{
    platform().pump().DoEvents();
}

inline void Sleep(Int32 milliseconds)
{
    platform().pump().Sleep(milliseconds);
}

} // namespace kel
