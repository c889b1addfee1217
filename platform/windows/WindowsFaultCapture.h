#pragma once

#include "platform/FaultCapture.h"

#include <mutex>
#include <windows.h>

namespace kel {

/// The faults that the system tells as exceptions of its own.
///
/// A vectored handler takes what fails in this module, or at an address that is no code. A fault in any other module
/// may be its own affair, which it handles in its own way; only if nobody does, the filter for unhandled exceptions
/// takes it. What is not the component's goes to the handlers that were there before. A fault in a function of the C
/// run time that is declared to throw nothing, such as `memcpy`, still ends the process.
///
/// A thread is sent on at a stub whose frame looks like that of an interrupt, with the failing statement below it: what
/// the filter throws from there unwinds as if the statement had called the filter.
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
