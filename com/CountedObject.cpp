// SPDX-License-Identifier: MIT
#include "com/CountedObject.h"

#include <map>
#include <mutex>
#include <utility>

namespace kel::com {

namespace {

/// The living objects by their native ones. Two apartments may make and release objects at once.
struct LivingObjects {
    std::mutex mutex;
    std::map<std::pair<const void*, std::type_index>, CountedObject*> objects;
};

LivingObjects& living()
{
    static auto* const place = new LivingObjects; // objects may be released until the very end
    return *place;
}

} // namespace

CountedObject::CountedObject(const void* native, const std::type_info& kind) : native_(native), kind_(kind)
{
    {
        const std::lock_guard lock(living().mutex);
        living().objects.emplace(std::pair(native_, kind_), this);
    }
    objectCreated();
}

CountedObject::CountedObject() : kind_(typeid(void))
{
    objectCreated();
}

CountedObject::~CountedObject()
{
    objectDestroyed();
}

ULONG CountedObject::release() noexcept
{
    ULONG before = references_;
    while (before > 1) {
        if (references_.compare_exchange_weak(before, before - 1))
            return before - 1;
    }
    {
        // Whoever finds the object gets it with a new reference, or no longer finds it.
        const std::lock_guard lock(living().mutex);
        if (--references_ > 0)
            return references_;
        if (native_)
            living().objects.erase(std::pair(native_, kind_));
    }
    references_ = 1; // for those who take a reference while it ends
    delete this;
    return 0;
}

CountedObject* CountedObject::find(const void* native, const std::type_info& kind)
{
    const std::lock_guard lock(living().mutex);
    const auto found = living().objects.find(std::pair(native, std::type_index(kind)));
    if (found == living().objects.end())
        return nullptr;
    found->second->acquire();
    return found->second;
}

} // namespace kel::com
