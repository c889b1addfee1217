// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the component's library exports to hosts; everything else stays hidden. What only the component's own
/// modules and programs see, of the same version as the library, is marked as internal.
#if defined(_WIN32)
#define KEL_PUBLIC
#define KEL_INTERNAL
#else
#define KEL_PUBLIC __attribute__((visibility("default")))
#define KEL_INTERNAL __attribute__((visibility("default")))
#endif
