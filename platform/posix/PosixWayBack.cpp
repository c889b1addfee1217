// SPDX-License-Identifier: MIT
#include "platform/WayBackPlace.h"

namespace kel::detail {

namespace {

[[gnu::tls_model("initial-exec")]] constinit thread_local WayBack* waysBack = nullptr;

} // namespace

WayBack* readWaysBack() noexcept
{
    return waysBack;
}

void writeWaysBack(WayBack* innermost) noexcept
{
    waysBack = innermost;
}

SystemsWay::SystemsWay(WayBack& place) noexcept : place_(place) {}

SystemsWay::~SystemsWay() = default;

void SystemsWay::call(void (*run)(void*), void* what)
{
    run(what);
}

void SystemsWay::leave(WayBack&) noexcept {}

} // namespace kel::detail
