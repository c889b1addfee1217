// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// Whether the calling thread's platform is one that each thread has of its own, so that another thread is on the same
/// machine. Not so within a `PlatformScope`.
[[nodiscard]] bool threadsShareThisMachine() noexcept;

} // namespace kel
