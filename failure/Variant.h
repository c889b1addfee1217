// SPDX-License-Identifier: MIT
#pragma once

#include "types/Arrays.h"
#include "types/Boolean.h"
#include "types/Numbers.h"
#include "types/Text.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace kel {

class Variant;

/// The values that hold nothing: a variable that nobody has set, a value that is not known, and an optional argument
/// that was left out, which has no text.
struct EmptyValue {};
struct NullValue {};
struct MissingValue {};

/// A reference to an object, or to nothing.
struct ObjectValue {
    std::string typeName{}; ///< empty for nothing
    /// Gives what is in it, if the object can be enumerated; an empty function if not.
    std::function<std::vector<Variant>()> elements{};
};

/// An object that is known by its data alone.
struct DataObjectValue {
    bool isNothing = false;
};

/// A structure of fields.
struct RecordValue {
    std::string typeName{};
};

/// Lowest and highest index of a dimension. A highest below the lowest stands for a dimension without bounds.
struct DimensionBounds {
    Int32 lower = 0;
    Int32 upper = -1;
};

/// An array of any number of dimensions; of none, if it has never been dimensioned.
class ArrayValue {
public:
    using Element = std::function<Variant(std::span<const Int32> indexes)>;

    ArrayValue() = default;
    ArrayValue(std::vector<DimensionBounds> bounds, Element element)
        : bounds_(std::move(bounds)), element_(std::move(element))
    {
    }

    /// Bounds of a dimension, counted from 1; failure 9 for one that the array does not have.
    [[nodiscard]] DimensionBounds bounds(Int32 dimension) const;

    /// An element; failure 9 if there are not as many indexes as dimensions, or one is out of bounds.
    [[nodiscard]] Variant at(std::span<const Int32> indexes) const;

private:
    std::vector<DimensionBounds> bounds_;
    Element element_;
};

/// A value of any kind, as a dump of variables sees it. Whole numbers and broken ones have one width each.
class Variant : public std::variant<EmptyValue, NullValue, MissingValue, Boolean, std::int64_t, double, std::string,
                                    ObjectValue, DataObjectValue, RecordValue, ArrayValue> {
public:
    using variant::variant;
};

/// A value that is no array, no object and no record as text: empty gives an empty text, a number its decimals, a truth
/// value "True" or "False". Failure 13 "Type mismatch" for all others.
[[nodiscard]] std::string valueText(const Variant& value);

} // namespace kel
