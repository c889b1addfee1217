// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <vector>

namespace kel {

/// A read window as the form file has it.
struct FormWindow {
    Int16 StartRow = 0;
    Int16 NumRows = 0;
    Int16 RowGap = 0;
    Int16 StartCol = 0;
    Int16 NumCols = 0;
    Int16 ColGap = 0;
    Int16 Page = 0;
    Int16 Orientation = 0;

    friend bool operator==(const FormWindow&, const FormWindow&) = default;
};

/// A barcode zone as the form file has it.
struct FormBarcode {
    Int16 Page = 0;
    Int32 Distance = 0;
    Int32 Length = 0;
    Int32 Symbology = 0;
    Int32 Orientation = 0;

    friend bool operator==(const FormBarcode&, const FormBarcode&) = default;
};

/// What is known of a form: its pages, windows and barcode zones. The first element of a list is page 1.
struct FormDescription {
    std::vector<Int16> side1Rows = {};
    std::vector<Int16> side1Cols = {};
    std::vector<Int16> side2Rows = {};
    std::vector<Int16> side2Cols = {};
    std::vector<FormWindow> windows = {};
    std::vector<FormBarcode> barcodes = {};

    friend bool operator==(const FormDescription&, const FormDescription&) = default;
};

} // namespace kel
