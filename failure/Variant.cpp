// SPDX-License-Identifier: MIT
#include "failure/Variant.h"

namespace kel {

namespace {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace

DimensionBounds ArrayValue::bounds(Int32 dimension) const
{
    if (dimension < 1 || static_cast<std::size_t>(dimension) > bounds_.size())
        throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
    return bounds_[static_cast<std::size_t>(dimension) - 1];
}

Variant ArrayValue::at(std::span<const Int32> indexes) const
{
    if (indexes.size() != bounds_.size() || indexes.empty())
        throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        if (indexes[i] < bounds_[i].lower || indexes[i] > bounds_[i].upper)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
    }
    return element_(indexes);
}

std::string valueText(const Variant& value)
{
    const Overloaded text{
        [](const EmptyValue&) { return std::string(); },
        [](const Boolean& truth) { return CStr(truth); },
        [](const std::int64_t& number) { return CStr(number); },
        [](const double& number) { return CStr(number); },
        [](const std::string& characters) { return characters; },
        [](const auto&) -> std::string { throw RuntimeFailure(FailureCode::TypeMismatch); },
    };
    return std::visit(text, static_cast<const Variant::variant&>(value));
}

} // namespace kel
