// SPDX-License-Identifier: MIT
#include "failure/WithoutHost.h"

#include <utility>

namespace kel {

namespace {

thread_local int living = 0;

} // namespace

WithoutHost::WithoutHost(std::shared_ptr<ErrorObject> reports) : reports_(std::move(reports))
{
    ++living;
}

WithoutHost::~WithoutHost()
{
    --living;
}

bool WithoutHost::isHere() noexcept
{
    return living > 0;
}

} // namespace kel
