// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace kel {

/// Tells the system's service manager about this process, if one has started it as a service that tells: a datagram to
/// the socket that the environment names. "READY=1", "STOPPING=1", "WATCHDOG=1".
void tellServiceManager(const std::string& state);

/// How often the service manager wants to hear "WATCHDOG=1", at half the time after which it ends a silent process;
/// nothing if it does not.
[[nodiscard]] std::optional<std::chrono::milliseconds> watchdogPeriod();

} // namespace kel
