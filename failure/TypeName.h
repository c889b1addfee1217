// SPDX-License-Identifier: MIT
#pragma once

#include "failure/Variant.h"

#include <string>
#include <type_traits>
#include <typeinfo>

namespace kel {

/// An object that stands for one from elsewhere, whose type has a name of its own.
class StandsForAnother {
public:
    virtual ~StandsForAnother() = default;
    /// The name of the other one's type.
    [[nodiscard]] virtual std::string TypeName() const = 0;
};

/// The name of a C++ class without what it lies in: "frmComm".
[[nodiscard]] std::string className(const std::type_info& type);

/// An object of a class that may be the host's, as a dump shows it: by the name of what it is.
template <class T>
requires std::is_polymorphic_v<T>
[[nodiscard]] Variant byTypeName(const T* object)
{
    if (!object)
        return ObjectValue{};
    const auto* const other = dynamic_cast<const StandsForAnother*>(object);
    return ObjectValue{other ? other->TypeName() : className(typeid(*object))};
}

} // namespace kel
