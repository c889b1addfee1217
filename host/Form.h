// SPDX-License-Identifier: MIT
#pragma once

#include "host/Fields.h"
#include "reader/clsKELReader.h"
#include "types/Export.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::host {

/// A form as a file describes it: the sizes page by page, the read windows and the barcode zones. Every key of the
/// file may be left out; sizes that are not given stay unset.
struct Form {
    kelRecognitionType recognitionMode = kelRecognitionTypePage; ///< whole pages or read windows
    std::optional<std::vector<Int16>> side1Rows{};               ///< the first element is page 1
    std::optional<std::vector<Int16>> side1Cols{};
    std::optional<std::vector<Int16>> side2Rows{};
    std::optional<std::vector<Int16>> side2Cols{};
    std::vector<clsKELReaderWindow> windows{};
    std::vector<clsKELReaderBarcode> barcodes{};
    std::vector<Field> fields{}; ///< named fields of a sheet; the reader does not know of them
    std::string source{};        ///< the JSON text that it was read from, on one line; empty if it was made otherwise

    /// Whether it is empty.
    [[nodiscard]] bool empty() const
    {
        return source.empty() && !side1Rows && !side1Cols && !side2Rows && !side2Cols && windows.empty() &&
               barcodes.empty();
    }
};

/// A form from JSON text:
///
///     {"recognitionMode": "page" or "window",
///      "side1Rows": [63], "side1Cols": [48], "side2Rows": [], "side2Cols": [],
///      "windows": [{"StartRow": 2, "NumRows": 5, "RowGap": 1, "StartCol": 3, "NumCols": 4, "ColGap": 1, "Page": 1,
///                   "Orientation": 1}],
///      "barcodes": [{"Page": 1, "Distance": 100, "Length": 50, "Symbology": 1, "Orientation": 1}],
///      "fields": [{"name": "Q", "rows": [3, 22], "columns": [5, 9], "labels": "ABCDE", "multiple": "mark"}]}
///
/// A field names cells:
///
/// - `name`: of its column. Where the cells are several lines of choices each line is a column, with a number after
///   the name: "Q1" to "Q20". `first` is the first of these numbers, 1 if it is left out.
/// - `side`: 1 or 2; `row` or `rows` and `column` or `columns`: where the cells are. [5, 9] is from 5 to 9, [9, 5] the
///   same the other way round. `rowGap` and `colGap` are the distances from one to the next.
/// - `window`: instead of all these, the number of a read window from 1.
/// - `choices`: "across" if each row is a line of choices, "down" if each column is one. Without it a single line of
///   cells is read along itself, a window by its orientation, any other block across.
/// - `labels`: one character per choice, or an array; "1", "2" ... if it is left out. A single cell without labels
///   gives the value of its mark.
/// - `multiple`: with "mark" several marks give "*", with "all" they give all their labels.
/// - `blank`: the value without a mark, "-" if it is left out.
///
/// UsageError, one sentence with `fileName` and the place, for text that is not JSON, an unknown key, a value of
/// another type, a number that does not fit and a size below zero.
[[nodiscard]] KEL_PUBLIC Form parseForm(std::string_view text, const std::string& fileName);

/// The same from a file; UsageError also if it cannot be read.
[[nodiscard]] KEL_PUBLIC Form readFormFile(const std::filesystem::path& file);

/// The sizes of a form as a form's text on one line.
[[nodiscard]] KEL_PUBLIC std::string sizesText(const Form& form);

/// Sets the form's sizes in a reader; sizes that the form does not have stay as they are.
KEL_PUBLIC void applySizes(const Form& form, clsKELReader& reader);

/// Sets the whole form in a reader. Windows and zones are added to those in its collections.
KEL_PUBLIC void applyForm(const Form& form, clsKELReader& reader);

} // namespace kel::host
