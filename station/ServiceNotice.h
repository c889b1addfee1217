// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace kel {

/// Reports the state of this process to the system's service manager, if it was started as a service that reports it: a
/// datagram to the socket that the environment names. "READY=1", "RELOADING=1", "STOPPING=1".
void tellServiceManager(const std::string& state);

/// The same with "WATCHDOG=1". A manager that has not read its last notices yet gets none, and nobody waits for it.
void feedWatchdog();

/// How often the service manager expects "WATCHDOG=1": half the time after which it ends a silent process; nullopt if
/// it does not.
[[nodiscard]] std::optional<std::chrono::milliseconds> watchdogPeriod();

} // namespace kel
