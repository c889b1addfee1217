// SPDX-License-Identifier: MIT
#pragma once

#include "failure/Variant.h"
#include "types/Reference.h"

#include <array>
#include <concepts>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kel {

/// What stands in a dump for a variable of a structured type, which cannot be looked into.
inline constexpr const char* kRecordParameter = "{Can't dump UDT parameters}";
inline constexpr const char* kExternalType = "{Cannot dump external UDTs}";
inline constexpr const char* kRecordArray = "{Cannot dump UDT arrays}";

/// A class of the component's own, by the name that its users know.
template <class T>
concept NamedClass = requires
{
    {
        T::kClassName
        } -> std::convertible_to<const char*>;
};

namespace detail {

template <class T>
struct IsReference : std::false_type {
};
template <class T>
struct IsReference<Reference<T>> : std::true_type {
};
template <class T>
struct IsReference<std::shared_ptr<T>> : std::true_type {
};

/// Structures of fields: neither numbers, texts and objects, nor arrays of them.
template <class T>
concept RecordClass =
    std::is_class_v<T> && !std::is_polymorphic_v<T> && !NamedClass<T> &&
    !std::convertible_to<const T&, std::string_view> && !std::same_as<T, Boolean> && !IsReference<T>::value;

} // namespace detail

// How a variable becomes a value. The conversions run only when a dump is built.

template <std::same_as<Variant> T>
[[nodiscard]] Variant toVariant(const T& value)
{
    return value;
}
[[nodiscard]] inline Variant toVariant(Boolean value)
{
    return value;
}
[[nodiscard]] inline Variant toVariant(std::string_view value)
{
    return std::string(value);
}
template <class T>
requires std::is_arithmetic_v<T>
[[nodiscard]] Variant toVariant(T value)
{
    if constexpr (std::same_as<T, bool>)
        return Boolean(value);
    else if constexpr (std::integral<T>)
        return static_cast<std::int64_t>(value);
    else
        return static_cast<double>(value);
}

/// An enumeration is a type of somebody else's to the dump.
template <class T>
requires std::is_enum_v<T>
[[nodiscard]] Variant toVariant(const T&)
{
    return std::string(kExternalType);
}

/// An object.
template <class T>
requires(std::is_class_v<T> && !std::same_as<T, Boolean> && !std::same_as<T, Variant> &&
         !std::convertible_to<const T&, std::string_view>) [[nodiscard]] Variant toVariant(const T& object)
{
    static_cast<void>(object);
    if constexpr (NamedClass<T>)
        return ObjectValue{T::kClassName};
    else if constexpr (std::is_polymorphic_v<T>)
        return std::string(kExternalType);
    else
        return std::string(kRecordParameter);
}

template <class T>
[[nodiscard]] Variant toVariant(const Reference<T>& object)
{
    return object.isNothing() ? Variant(ObjectValue{}) : toVariant(*object);
}
template <class T>
[[nodiscard]] Variant toVariant(const std::shared_ptr<T>& object)
{
    return object ? toVariant(*object) : Variant(ObjectValue{});
}

/// An optional argument.
template <class T>
[[nodiscard]] Variant toVariant(const std::optional<T>& value)
{
    return value ? toVariant(*value) : Variant(MissingValue{});
}

template <class T>
[[nodiscard]] Variant toVariant(const Array1<T>& array)
{
    if constexpr (detail::RecordClass<T>)
        return std::string(kRecordArray);
    else if (!array.isDimensioned())
        return ArrayValue{};
    else
        return ArrayValue({{array.LBound(), array.UBound()}},
                          [&array](std::span<const Int32> at) { return toVariant(array(at[0])); });
}

template <class T>
[[nodiscard]] Variant toVariant(const Array2<T>& array)
{
    if (!array.isDimensioned())
        return ArrayValue{};
    return ArrayValue({{1, array.rows()}, {1, array.columns()}},
                      [&array](std::span<const Int32> at) { return toVariant(array(at[0], at[1])); });
}

/// Elements in a row, counted from 0.
template <class T>
[[nodiscard]] Variant toVariant(const std::vector<T>& elements)
{
    if constexpr (detail::RecordClass<T>)
        return std::string(kRecordArray);
    else
        return ArrayValue({{0, static_cast<Int32>(elements.size()) - 1}}, [&elements](std::span<const Int32> at) {
            const T& element = elements[static_cast<std::size_t>(at[0])];
            return toVariant(element);
        });
}
template <class T, std::size_t size>
[[nodiscard]] Variant toVariant(const std::array<T, size>& elements)
{
    if constexpr (detail::RecordClass<T>)
        return std::string(kRecordArray);
    else
        return ArrayValue({{0, static_cast<Int32>(size) - 1}}, [&elements](std::span<const Int32> at) {
            return toVariant(elements[static_cast<std::size_t>(at[0])]);
        });
}

/// A collection of objects counted from 1, which can be enumerated.
template <class Collection>
[[nodiscard]] Variant collectionVariant(const Collection& collection)
{
    return ObjectValue{"Collection", [&collection] {
                           std::vector<Variant> elements;
                           for (Int32 lPosition = 1; lPosition <= collection.Count(); ++lPosition)
                               elements.push_back(toVariant(collection.Item(lPosition)));
                           return elements;
                       }};
}

} // namespace kel
