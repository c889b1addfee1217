// SPDX-License-Identifier: MIT
#include "com/SafeArrays.h"

#include "com/Boundary.h"
#include "com/OleVariant.h"
#include "com/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace kel::com {

namespace {

/// An array's elements while they are looked at or filled in.
template <class T>
class Elements {
public:
    explicit Elements(const SAFEARRAY* array) : array_(const_cast<SAFEARRAY*>(array))
    {
        void* data = nullptr;
        demand(SafeArrayAccessData(array_, &data));
        data_ = static_cast<T*>(data);
    }
    Elements(const Elements&) = delete;
    Elements& operator=(const Elements&) = delete;
    ~Elements() { SafeArrayUnaccessData(array_); }

    T& operator[](std::size_t index) { return data_[index]; }

private:
    SAFEARRAY* array_;
    T* data_ = nullptr;
};

struct Bounds {
    Int32 lower = 0;
    Int32 upper = -1;
    [[nodiscard]] std::size_t length() const { return upper < lower ? 0 : static_cast<std::size_t>(upper - lower) + 1; }
};

Bounds boundsOf(const SAFEARRAY* array, UINT dimension)
{
    LONG lower = 0;
    LONG upper = 0;
    demand(SafeArrayGetLBound(const_cast<SAFEARRAY*>(array), dimension, &lower));
    demand(SafeArrayGetUBound(const_cast<SAFEARRAY*>(array), dimension, &upper));
    return {lower, upper};
}

SAFEARRAY* newArray(VARTYPE type, std::span<const SAFEARRAYBOUND> bounds)
{
    SAFEARRAY* const array =
        SafeArrayCreate(type, static_cast<UINT>(bounds.size()), const_cast<SAFEARRAYBOUND*>(bounds.data()));
    if (!array)
        throw RuntimeFailure(FailureCode::OutOfMemory);
    return array;
}

template <class T>
SAFEARRAY* newArray(VARTYPE type, const Array1<T>& native)
{
    const SAFEARRAYBOUND bound{static_cast<ULONG>(native.elements().size()), native.LBound()};
    return newArray(type, {&bound, 1});
}

bool holdsNothing(const SAFEARRAY* array)
{
    return !array || array->cDims == 0;
}

void demandDimensions(const SAFEARRAY* array, USHORT count)
{
    if (array->cDims != count)
        throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
}

VARTYPE elementType(const SAFEARRAY* array)
{
    VARTYPE type = VT_EMPTY;
    // A decimal number or a record does not fit into the contents of a variant.
    if (FAILED(SafeArrayGetVartype(const_cast<SAFEARRAY*>(array), &type)) || type == VT_DECIMAL || type == VT_RECORD)
        throw RuntimeFailure(FailureCode::TypeMismatch);
    return type;
}

/// An element of any type. The numbers of its place stand with the last dimension first.
OleVariant element(const SAFEARRAY* array, VARTYPE type, LONG* indexes)
{
    OleVariant value;
    if (type == VT_VARIANT) {
        demand(SafeArrayGetElement(const_cast<SAFEARRAY*>(array), indexes, value.out()));
        return value;
    }
    demand(SafeArrayGetElement(const_cast<SAFEARRAY*>(array), indexes, &value.get().bVal));
    value.get().vt = type;
    return value;
}

template <class T, class Convert>
Array1<T> array1Of(const SAFEARRAY* array, Convert&& convert)
{
    demandDimensions(array, 1);
    const Bounds bounds = boundsOf(array, 1);
    const VARTYPE type = elementType(array);
    std::vector<T> values;
    values.reserve(bounds.length());
    for (LONG index = bounds.lower; index <= bounds.upper; ++index)
        values.push_back(convert(element(array, type, &index)));
    return Array1<T>::of(bounds.lower, std::move(values));
}

} // namespace

SAFEARRAY* safeArrayOf(const MarkArray& marks)
{
    if (!marks.isDimensioned())
        return nullptr;
    const auto rows = static_cast<std::size_t>(marks.rows());
    const auto columns = static_cast<std::size_t>(marks.columns());
    const std::array bounds{SAFEARRAYBOUND{static_cast<ULONG>(rows), 1},
                            SAFEARRAYBOUND{static_cast<ULONG>(columns), 1}};
    SAFEARRAY* const array = newArray(VT_I2, bounds);
    // Column after column, where the native array stands row after row.
    Elements<Int16> elements(array);
    const std::vector<Int16>& values = marks.elements();
    for (std::size_t column = 0; column < columns; ++column) {
        for (std::size_t row = 0; row < rows; ++row)
            elements[column * rows + row] = values[row * columns + column];
    }
    return array;
}

SAFEARRAY* safeArrayOf(const PageArray& pages)
{
    if (!pages.isDimensioned())
        return nullptr;
    SAFEARRAY* const array = newArray(VT_I2, pages);
    Elements<Int16> elements(array);
    std::copy(pages.elements().begin(), pages.elements().end(), &elements[0]);
    return array;
}

SAFEARRAY* safeArrayOf(const TextArray& texts)
{
    if (!texts.isDimensioned())
        return nullptr;
    SAFEARRAY* const array = newArray(VT_BSTR, texts);
    Elements<BSTR> elements(array);
    for (std::size_t index = 0; index < texts.elements().size(); ++index)
        elements[index] = newSheetText(texts.elements()[index]);
    return array;
}

MarkArray markArrayOf(const SAFEARRAY* array)
{
    if (holdsNothing(array))
        return {};
    demandDimensions(array, 2);
    const Bounds rows = boundsOf(array, 1);
    const Bounds columns = boundsOf(array, 2);
    if (rows.upper < 1 || columns.upper < 1)
        return {};

    MarkArray marks(rows.upper, columns.upper);
    const Int32 firstRow = std::max(rows.lower, Int32{1});
    const Int32 firstColumn = std::max(columns.lower, Int32{1});
    const VARTYPE type = elementType(array);
    if (type == VT_I2) {
        Elements<Int16> elements(array);
        for (Int32 column = firstColumn; column <= columns.upper; ++column) {
            const std::size_t start = static_cast<std::size_t>(column - columns.lower) * rows.length();
            for (Int32 row = firstRow; row <= rows.upper; ++row)
                marks(row, column) = elements[start + static_cast<std::size_t>(row - rows.lower)];
        }
        return marks;
    }
    for (Int32 row = firstRow; row <= rows.upper; ++row) {
        for (Int32 column = firstColumn; column <= columns.upper; ++column) {
            std::array<LONG, 2> indexes{row, column};
            marks(row, column) = element(array, type, indexes.data()).asInt16();
        }
    }
    return marks;
}

PageArray pageArrayOf(const SAFEARRAY* array)
{
    if (holdsNothing(array))
        return {};
    return array1Of<Int16>(array, [](const OleVariant& value) { return value.asInt16(); });
}

std::string bytesOf(const SAFEARRAY* array)
{
    if (holdsNothing(array))
        return {};
    demandDimensions(array, 1);
    if (elementType(array) != VT_UI1)
        throw RuntimeFailure(FailureCode::TypeMismatch);
    Elements<char> elements(array);
    return {&elements[0], boundsOf(array, 1).length()};
}

TextArray textArrayOf(const SAFEARRAY* array)
{
    if (holdsNothing(array))
        return {};
    return array1Of<std::string>(array, [](const OleVariant& value) { return value.asSheetText(); });
}

} // namespace kel::com
