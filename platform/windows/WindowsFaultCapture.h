// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FaultCapture.h"

#include <mutex>
#include <windows.h>

namespace kel {

/// The faults that the system reports as exceptions of its own, of whatever code.
///
/// A vectored handler takes what fails in this module, or at an address that is no code. A fault in any other module
/// may be its own affair, which it handles in its own way; only if nobody between it and the component does, a handler
/// at the way back takes it (`withWayBack`), and last of all the filter for unhandled exceptions. What is not the
/// component's goes to the handlers that were there before.
///
/// What is taken is thrown as if the failing statement had thrown it. Where that cannot be, it is thrown from the way
/// back: in 32 bits from within another module, whose frames no table describes, and everywhere from a function that
/// throws nothing and from a stack that is full.
class WindowsFaultCapture final : public FaultCapture {
public:
    /// The one of this process.
    [[nodiscard]] static WindowsFaultCapture& instance();

    WindowsFaultCapture(const WindowsFaultCapture&) = delete;
    WindowsFaultCapture& operator=(const WindowsFaultCapture&) = delete;

    void install(FaultFilter filter) override;

private:
    WindowsFaultCapture() = default;
    /// The module may be unloaded: nothing of the process points to it any more.
    ~WindowsFaultCapture() override;

    std::mutex mutex_;
    void* vectored_ = nullptr;
};

} // namespace kel
