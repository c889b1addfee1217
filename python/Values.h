// SPDX-License-Identifier: MIT
#pragma once

#include <KELReader81U/Boolean.h>
#include <KELReader81U/Dictionary.h>
#include <KELReader81U/Numbers.h>
#include <KELReader81U/host/Failure.h>
#include <KELReader81U/host/Fields.h>
#include <pybind11/pybind11.h>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

namespace kel::python {

/// A text for people.
pybind11::str text(const std::string& utf8);
/// A text as it went over the line, a byte a character.
pybind11::str lineText(const std::string& bytes);
/// The other way; ValueError for a character that a line does not take.
std::string lineBytes(const pybind11::handle& value, const char* what);

/// A value as Python has it: truth values as bool, enumerations by their number.
inline pybind11::object toPython(Boolean value)
{
    return pybind11::bool_(static_cast<bool>(value));
}
inline pybind11::object toPython(const std::string& value)
{
    return text(value);
}
template <class T>
requires std::is_enum_v<T> || std::is_integral_v<T> pybind11::object toPython(T value)
{
    return pybind11::int_(static_cast<std::int64_t>(value));
}
template <class T>
requires std::is_floating_point_v<T> pybind11::object toPython(T value)
{
    return pybind11::float_(static_cast<double>(value));
}
pybind11::object toPython(const host::FieldValue& value);
/// A record: its numbered entries under numbers, the others under texts.
pybind11::dict toPython(const Dictionary& record);
/// A report, as the arguments of the package's class `Report`.
pybind11::dict toPython(const host::Failure& failure);

/// ValueError: "port has to be a whole number from 1 to 16, not 'a'."
[[noreturn]] void refuse(const std::string& what, const std::string& wanted, const pybind11::handle& value);

/// A whole number within bounds.
std::int64_t wholeNumber(const pybind11::handle& value, const char* what, std::int64_t lowest, std::int64_t highest);

/// A value of Python's for a property; ValueError, one sentence, for one that does not fit.
template <class T>
T fromPython(const pybind11::handle& value, const char* what)
{
    if constexpr (std::is_same_v<T, Boolean>) {
        if (!PyBool_Check(value.ptr()))
            refuse(what, "True or False", value);
        return value.ptr() == Py_True ? True : False;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return lineBytes(value, what);
    } else if constexpr (std::is_floating_point_v<T>) {
        const double number = PyNumber_Check(value.ptr()) ? PyFloat_AsDouble(value.ptr()) : NAN;
        if (PyErr_Occurred())
            PyErr_Clear();
        if (!std::isfinite(number))
            refuse(what, "a number such as 1 or 1.5", value);
        return static_cast<T>(number);
    } else if constexpr (std::is_enum_v<T>) {
        using Number = std::underlying_type_t<T>;
        return static_cast<T>(
            wholeNumber(value, what, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()));
    } else {
        return static_cast<T>(wholeNumber(value, what, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
}

} // namespace kel::python
