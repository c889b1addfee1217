#include "platform/FaultCapture.h"

namespace kel {

namespace {

std::atomic<FaultCapture*> captureInUse{nullptr};

} // namespace

namespace detail {

constinit thread_local bool componentRunsOnThread = false;

} // namespace detail

void setFaultCapture(FaultCapture* capture)
{
    captureInUse = capture;
}

FaultCapture* faultCapture()
{
    return captureInUse;
}

} // namespace kel
