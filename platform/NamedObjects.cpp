// SPDX-License-Identifier: MIT
#include "platform/NamedObjects.h"

#include "platform/FaultCapture.h"

#include <map>
#include <mutex>
#include <utility>

namespace kel {

namespace {

/// Never destroyed by the end of the process: failures come until then.
struct Registered {
    std::mutex mutex;
    std::map<std::string, ErrorLibraryFactory> factories;
    ObjectCreator creator = nullptr;
};

Registered& registered()
{
    static auto* const place = new Registered;
    return *place;
}

} // namespace

void registerErrorLibrary(const std::string& className, ErrorLibraryFactory factory)
{
    const std::lock_guard lock(registered().mutex);
    // What was registered before is let go when `factory` ends, outside the lock.
    registered().factories[className].swap(factory);
}

void setObjectCreator(ObjectCreator creator)
{
    const std::lock_guard lock(registered().mutex);
    registered().creator = creator;
}

std::shared_ptr<ErrorLibraryObject> createErrorLibrary(const std::string& className)
{
    ErrorLibraryFactory factory;
    ObjectCreator creator = nullptr;
    {
        const std::lock_guard lock(registered().mutex);
        factory = registered().factories[className];
        creator = registered().creator;
    }
    const HostCode host;
    try {
        if (factory)
            return factory();
        return creator ? creator(className) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace kel
