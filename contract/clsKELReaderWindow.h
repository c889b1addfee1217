// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

template <class Object>
class StatedModule;

/// A read window: a rectangular block of mark positions on one page of a form. Rows and columns count from 1. A gap
/// is the distance from one row or column to the next; a negative one runs towards lower numbers. Nothing is checked.
class KEL_PUBLIC clsKELReaderWindow {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderWindow";

    clsKELReaderWindow();
    clsKELReaderWindow(const clsKELReaderWindow& other);
    clsKELReaderWindow& operator=(const clsKELReaderWindow& other);
    ~clsKELReaderWindow();

    /// The first row, how many rows, and the distance from one to the next.
    [[nodiscard]] Int16 StartRow() const;
    void StartRow(Int16 value);
    [[nodiscard]] Int16 NumRows() const;
    void NumRows(Int16 value);
    [[nodiscard]] Int16 RowGap() const;
    void RowGap(Int16 value);
    /// The same of the columns.
    [[nodiscard]] Int16 StartCol() const;
    void StartCol(Int16 value);
    [[nodiscard]] Int16 NumCols() const;
    void NumCols(Int16 value);
    [[nodiscard]] Int16 ColGap() const;
    void ColGap(Int16 value);
    /// The page of the form, from 1.
    [[nodiscard]] Int16 Page() const;
    void Page(Int16 value);
    /// 1 reads row by row, 0 column by column.
    [[nodiscard]] Int16 Orientation() const;
    void Orientation(Int16 value);
    /// Items and choices are for the host; no driver reads them.
    [[nodiscard]] Int16 NumItems() const;
    void NumItems(Int16 value);
    [[nodiscard]] Int16 NumChoices() const;
    void NumChoices(Int16 value);

private:
    template <class Object>
    friend class StatedModule;

    [[nodiscard]] std::string dumpMembers() const;

    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
