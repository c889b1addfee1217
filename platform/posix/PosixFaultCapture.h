// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FaultCapture.h"

#include <csignal>
#include <cstdint>
#include <mutex>

namespace kel {

/// The faults that the system reports by SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGTRAP.
///
/// The handlers that the process had before are kept and get what is not the component's, with their flags and masks as
/// the system would have called them: faults outside the component's procedures, and signals that somebody has sent.
/// The default action is what it was. The handlers run on the thread's alternate stack where it has one.
class PosixFaultCapture final : public FaultCapture {
public:
    /// The one of this process.
    [[nodiscard]] static PosixFaultCapture& instance();

    void install(FaultFilter filter) override;

private:
    std::mutex mutex_;
};

/// The code of a fault by its signal: SIGSEGV is 0xC0000005.
[[nodiscard]] std::uint32_t faultCode(int signalNumber, int signalCode);

} // namespace kel
