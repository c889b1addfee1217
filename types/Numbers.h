// SPDX-License-Identifier: MIT
#pragma once

#include "types/RuntimeFailure.h"

#include "types/SourceLocation.h"
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace kel {

/// Whole numbers of the interface: with a sign in 16 and 32 bits, and a byte from 0 to 255.
using Int16 = std::int16_t;
using Int32 = std::int32_t;
using Byte = std::uint8_t;

/// Rounds to the nearest whole number, halves to the even neighbour: 2.5 gives 2, 3.5 gives 4.
[[nodiscard]] inline double roundHalfEven(double value) noexcept
{
    // The default rounding direction of the floating point environment is to nearest, ties to even.
    return std::nearbyint(value);
}

/// Narrows a number to a whole number type, halves to even.
/// Fails with 6 "Overflow" when the rounded value does not fit, a NaN included.
template <std::signed_integral To, class From>
requires std::is_arithmetic_v<From>
[[nodiscard]] To narrow(From value, SourceLocation where = SourceLocation::current())
{
    if constexpr (std::is_floating_point_v<From>) {
        const double rounded = roundHalfEven(static_cast<double>(value));
        // The lowest number is a power of two and so exact as a double; the highest of 64 bits would not be.
        constexpr auto lowest = static_cast<double>(std::numeric_limits<To>::min());
        if (!(rounded >= lowest && rounded < -lowest))
            throw RuntimeFailure(FailureCode::Overflow, where);
        return static_cast<To>(rounded);
    } else {
        if (!std::in_range<To>(value))
            throw RuntimeFailure(FailureCode::Overflow, where);
        return static_cast<To>(value);
    }
}

/// A number as a 16-bit whole number, halves to even; 6 "Overflow" when it does not fit.
template <class From>
[[nodiscard]] Int16 CInt(From value, SourceLocation where = SourceLocation::current())
{
    return narrow<Int16>(value, where);
}

/// A number as a 32-bit whole number, halves to even; 6 "Overflow" when it does not fit.
template <class From>
[[nodiscard]] Int32 CLng(From value, SourceLocation where = SourceLocation::current())
{
    return narrow<Int32>(value, where);
}

/// The sum; 6 "Overflow" when it does not fit the operands' type. Nothing wraps.
template <std::signed_integral T>
[[nodiscard]] T checkedAdd(T a, std::type_identity_t<T> b, SourceLocation where = SourceLocation::current())
{
    T result;
    if (__builtin_add_overflow(a, b, &result))
        throw RuntimeFailure(FailureCode::Overflow, where);
    return result;
}

/// The difference; 6 "Overflow" when it does not fit the operands' type.
template <std::signed_integral T>
[[nodiscard]] T checkedSubtract(T a, std::type_identity_t<T> b, SourceLocation where = SourceLocation::current())
{
    T result;
    if (__builtin_sub_overflow(a, b, &result))
        throw RuntimeFailure(FailureCode::Overflow, where);
    return result;
}

/// The product; 6 "Overflow" when it does not fit the operands' type.
template <std::signed_integral T>
[[nodiscard]] T checkedMultiply(T a, std::type_identity_t<T> b, SourceLocation where = SourceLocation::current())
{
    T result;
    if (__builtin_mul_overflow(a, b, &result))
        throw RuntimeFailure(FailureCode::Overflow, where);
    return result;
}

/// The absolute value; 6 "Overflow" for the lowest number of the type, which has none.
template <std::signed_integral T>
[[nodiscard]] T checkedAbs(T a, SourceLocation where = SourceLocation::current())
{
    return a < 0 ? checkedSubtract<T>(0, a, where) : a;
}

} // namespace kel
