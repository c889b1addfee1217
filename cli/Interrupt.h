// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// Exit status of a command that the person at the keyboard has stopped.
inline constexpr int kInterruptedStatus = 130;

/// While one exists, Ctrl-C (or a request to terminate) only leaves a note the first time; the second one ends the
/// process at once. One at a time.
class InterruptNote {
public:
    /// What to do besides, in the signal handler: nothing but what such a handler may.
    using Action = void (*)(void* context);

    explicit InterruptNote(Action action = nullptr, void* context = nullptr);
    ~InterruptNote();
    InterruptNote(const InterruptNote&) = delete;
    InterruptNote& operator=(const InterruptNote&) = delete;

    /// Whether an interrupt has come.
    [[nodiscard]] static bool came();
};

} // namespace kel
