#pragma once

namespace kel {

/// Processor time that the calling thread has taken so far, in seconds.
[[nodiscard]] double cpuSeconds();

/// Counts the system calls that a child makes between two marks (calls of getppid).
[[nodiscard]] int countSystemCalls(void (*session)());

} // namespace kel
