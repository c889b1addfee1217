// SPDX-License-Identifier: MIT
#pragma once

#include "failure/Variant.h"
#include "options/Form.h"

#include <string>
#include <vector>

namespace kel {

// Forms and their controls in a dump of variables: objects by the name of their kind.

[[nodiscard]] inline Variant toVariant(const Form&)
{
    return ObjectValue{"Form"};
}
[[nodiscard]] inline Variant toVariant(const Control& control)
{
    return ObjectValue{std::string(control.TypeName())};
}
[[nodiscard]] inline Variant toVariant(const PowerCombo& control)
{
    return toVariant(static_cast<const Control&>(control));
}
[[nodiscard]] inline Variant toVariant(const PowerEdit& control)
{
    return toVariant(static_cast<const Control&>(control));
}
[[nodiscard]] inline Variant toVariant(const Control* control)
{
    return control ? toVariant(*control) : Variant(ObjectValue{});
}

} // namespace kel
