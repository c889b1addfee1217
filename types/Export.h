#pragma once

/// Marks what a host sees of the component's library; everything else stays hidden.
#if defined(_WIN32)
#define KEL_PUBLIC
#else
#define KEL_PUBLIC __attribute__((visibility("default")))
#endif
