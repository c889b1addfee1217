// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include "types/SourceLocation.h"
#include <algorithm>
#include <string>
#include <vector>

namespace kel {

/// An array of one dimension with bounds of its own, usually 1 to n. A new one is undimensioned: it has no bounds.
/// Every access is checked: an index outside the bounds, or any on an undimensioned array, is failure 9
/// "Subscript out of range".
template <class T>
class Array1 {
public:
    Array1() = default;

    /// An array `lower To upper`, every element in its initial state. An upper bound below the lower is failure 9.
    Array1(Int32 lower, Int32 upper, SourceLocation where = SourceLocation::current()) { ReDim(lower, upper, where); }

    /// Copies of existing elements, numbered from `lower`; may be empty.
    [[nodiscard]] static Array1 of(Int32 lower, std::vector<T> elements)
    {
        Array1 result;
        result.lower_ = lower;
        result.dimensioned_ = true;
        result.elements_ = std::move(elements);
        return result;
    }

    /// Sets new bounds and initial elements; the old elements are lost. Fails as the constructor does.
    void ReDim(Int32 lower, Int32 upper, SourceLocation where = SourceLocation::current())
    {
        if (upper < lower)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        lower_ = lower;
        dimensioned_ = true;
        elements_.assign(static_cast<std::size_t>(std::int64_t{upper} - lower + 1), T{});
    }

    /// Moves the upper bound and keeps the elements that are inside both bounds.
    void ReDimPreserve(Int32 upper, SourceLocation where = SourceLocation::current())
    {
        if (!dimensioned_ || upper < lower_)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        elements_.resize(static_cast<std::size_t>(std::int64_t{upper} - lower_ + 1));
    }

    /// Back to undimensioned.
    void Erase()
    {
        elements_.clear();
        dimensioned_ = false;
        lower_ = 0;
    }

    /// Whether the array has bounds.
    [[nodiscard]] bool isDimensioned() const noexcept { return dimensioned_; }

    /// The lower bound; failure 9 on an undimensioned array.
    [[nodiscard]] Int32 LBound(SourceLocation where = SourceLocation::current()) const
    {
        demandDimensions(where);
        return lower_;
    }

    /// The upper bound; failure 9 on an undimensioned array.
    [[nodiscard]] Int32 UBound(SourceLocation where = SourceLocation::current()) const
    {
        demandDimensions(where);
        return static_cast<Int32>(std::int64_t{lower_} + static_cast<std::int64_t>(elements_.size()) - 1);
    }

    /// The element of an index.
    T& operator()(Int32 index, SourceLocation where = SourceLocation::current())
    {
        return elements_[position(index, where)];
    }

    /// The element of an index.
    const T& operator()(Int32 index, SourceLocation where = SourceLocation::current()) const
    {
        return elements_[position(index, where)];
    }

    /// All elements in order; empty on an undimensioned array.
    [[nodiscard]] const std::vector<T>& elements() const noexcept { return elements_; }
    [[nodiscard]] std::vector<T>& elements() noexcept { return elements_; }

    friend bool operator==(const Array1&, const Array1&) = default;

private:
    void demandDimensions(SourceLocation where) const
    {
        if (!dimensioned_)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
    }

    [[nodiscard]] std::size_t position(Int32 index, SourceLocation where) const
    {
        const std::int64_t offset = std::int64_t{index} - lower_;
        if (offset < 0 || offset >= static_cast<std::int64_t>(elements_.size()))
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        return static_cast<std::size_t>(offset);
    }

    std::vector<T> elements_;
    Int32 lower_ = 0;
    bool dimensioned_ = false;
};

/// An array of two dimensions, both counted from 1, first the row and then the column. A new one is undimensioned.
/// Every access is checked as in Array1.
template <class T>
class Array2 {
public:
    Array2() = default;

    /// An array `(1 To rows, 1 To columns)` of initial elements. Less than one row or column is failure 9.
    Array2(Int32 rows, Int32 columns, SourceLocation where = SourceLocation::current()) { ReDim(rows, columns, where); }

    /// Sets new bounds and initial elements; the old elements are lost. Fails as the constructor does.
    void ReDim(Int32 rows, Int32 columns, SourceLocation where = SourceLocation::current())
    {
        if (rows < 1 || columns < 1)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        rows_ = rows;
        columns_ = columns;
        elements_.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), T{});
    }

    /// Back to undimensioned.
    void Erase()
    {
        elements_.clear();
        rows_ = columns_ = 0;
    }

    /// Whether the array has bounds.
    [[nodiscard]] bool isDimensioned() const noexcept { return rows_ > 0; }

    /// Upper bound of dimension 1 (rows) or 2 (columns); failure 9 on an undimensioned array.
    [[nodiscard]] Int32 UBound(int dimension = 1, SourceLocation where = SourceLocation::current()) const
    {
        if (!isDimensioned() || dimension < 1 || dimension > 2)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        return dimension == 1 ? rows_ : columns_;
    }

    /// Rows and columns without a check; 0 on an undimensioned array.
    [[nodiscard]] Int32 rows() const noexcept { return rows_; }
    [[nodiscard]] Int32 columns() const noexcept { return columns_; }

    /// The element of a row and column.
    T& operator()(Int32 row, Int32 column, SourceLocation where = SourceLocation::current())
    {
        return elements_[position(row, column, where)];
    }

    /// The element of a row and column.
    const T& operator()(Int32 row, Int32 column, SourceLocation where = SourceLocation::current()) const
    {
        return elements_[position(row, column, where)];
    }

    /// All elements, row after row; empty on an undimensioned array.
    [[nodiscard]] const std::vector<T>& elements() const noexcept { return elements_; }

    friend bool operator==(const Array2&, const Array2&) = default;

private:
    [[nodiscard]] std::size_t position(Int32 row, Int32 column, SourceLocation where) const
    {
        if (row < 1 || row > rows_ || column < 1 || column > columns_)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
        return static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(columns_) +
               static_cast<std::size_t>(column - 1);
    }

    std::vector<T> elements_;
    Int32 rows_ = 0;
    Int32 columns_ = 0;
};

/// The marks of one side of a sheet: (row, column), both from 1; 0 is no mark, any other value is that of the mark.
using MarkArray = Array2<Int16>;

/// Texts in a row, such as the barcodes of a sheet.
using TextArray = Array1<std::string>;

/// Rows or columns of a form page by page; element 1 is page 1.
using PageArray = Array1<Int16>;

} // namespace kel
