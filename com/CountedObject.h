// SPDX-License-Identifier: MIT
#pragma once

#include "com/Server.h"

#include <atomic>
#include <typeindex>
#include <typeinfo>

namespace kel::com {

/// An object of this server that hosts hold: the count of its references, and its identity. While it lives, the same
/// native object always gives the same object here, so that hosts can compare references.
class CountedObject {
public:
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;

    ULONG acquire() noexcept { return ++references_; }
    /// The last reference deletes the object.
    ULONG release() noexcept;

    /// The living object of a native one, with a new reference; nothing if there is none.
    [[nodiscard]] static CountedObject* find(const void* native, const std::type_info& kind);

protected:
    /// The object that stands for a native one, or that stands for itself. It has its first reference.
    explicit CountedObject(const void* native, const std::type_info& kind);
    CountedObject();
    virtual ~CountedObject();

private:
    std::atomic<ULONG> references_{1};
    const void* native_ = nullptr;
    std::type_index kind_;
};

} // namespace kel::com
