// SPDX-License-Identifier: MIT
#include "platform/FaultCapture.h"

namespace kel {

namespace {

std::atomic<FaultCapture*> captureInUse{nullptr};

} // namespace

#if !defined(_WIN32)
namespace detail {

constinit thread_local ThreadRuns whatThreadRuns = ThreadRuns::Host;

} // namespace detail
#endif

void setFaultCapture(FaultCapture* capture)
{
    captureInUse = capture;
}

FaultCapture* faultCapture()
{
    return captureInUse;
}

} // namespace kel
