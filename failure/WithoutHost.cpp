// SPDX-License-Identifier: MIT
#include "failure/WithoutHost.h"

#include <utility>

namespace kel {

namespace {

thread_local WithoutHost* innermost = nullptr;

} // namespace

WithoutHost::WithoutHost(std::shared_ptr<ErrorObject> reports)
    : reports_(std::move(reports)), previous_(std::exchange(innermost, this))
{
}

WithoutHost::~WithoutHost()
{
    innermost = previous_;
}

std::shared_ptr<ErrorObject> WithoutHost::reports()
{
    return innermost ? innermost->reports_ : nullptr;
}

} // namespace kel
