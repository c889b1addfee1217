// SPDX-License-Identifier: MIT
#include "platform/Platform.h"

#include "platform/ThreadPlatform.h"

#include <atomic>
#include <stdexcept>

namespace kel {

namespace {

std::atomic<PlatformFactory> factoryInUse{nullptr};
thread_local Platform* current = nullptr;
thread_local std::unique_ptr<Platform> own;

} // namespace

void setPlatformFactory(PlatformFactory factory)
{
    factoryInUse = factory;
}

Platform& platform()
{
    if (current)
        return *current;
    if (!own) {
        const PlatformFactory factory = factoryInUse;
        if (!factory)
            throw std::logic_error("no platform: neither start-up nor a scope has installed one");
        own = factory();
    }
    return *own;
}

bool threadsShareThisMachine() noexcept
{
    return !current && factoryInUse.load() != nullptr;
}

PlatformScope::PlatformScope(Platform& platform) : previous_(current)
{
    current = &platform;
}

PlatformScope::~PlatformScope()
{
    current = previous_;
}

} // namespace kel
