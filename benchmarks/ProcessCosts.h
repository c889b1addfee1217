// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace kel {

/// Processor time that the calling thread has taken so far, in seconds.
[[nodiscard]] double cpuSeconds();

/// Counts the system calls that a child makes between two marks (calls of getppid).
[[nodiscard]] int countSystemCalls(void (*session)());

/// Most memory that a program has held, in megabytes, when it comes to its end. Its process is to be a child that has
/// called `ptrace(PTRACE_TRACEME)` before exec. What the system counts for a child would begin with what its parent
/// held.
[[nodiscard]] double peakMegabytesAtEnd(pid_t child);

} // namespace kel
