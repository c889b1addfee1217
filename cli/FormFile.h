#pragma once

#include "reader/clsKELReader.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// A form as a file describes it: the sizes page by page, the read windows and the barcode zones. Every key of the
/// file may be left out; sizes that are not given stay unset.
struct ScanForm {
    kelRecognitionType recognitionMode = kelRecognitionTypePage;
    std::optional<std::vector<Int16>> side1Rows; ///< the first element is page 1
    std::optional<std::vector<Int16>> side1Cols;
    std::optional<std::vector<Int16>> side2Rows;
    std::optional<std::vector<Int16>> side2Cols;
    std::vector<clsKELReaderWindow> windows;
    std::vector<clsKELReaderBarcode> barcodes;
};

/// A form from JSON text:
///
///     {"recognitionMode": "page" or "window",
///      "side1Rows": [63], "side1Cols": [48], "side2Rows": [], "side2Cols": [],
///      "windows": [{"StartRow": 2, "NumRows": 5, "RowGap": 1, "StartCol": 3, "NumCols": 4, "ColGap": 1, "Page": 1,
///                   "Orientation": 1}],
///      "barcodes": [{"Page": 1, "Distance": 100, "Length": 50, "Symbology": 1, "Orientation": 1}]}
///
/// UsageError, one sentence with `fileName` and the place, for text that is no JSON, a key that is unknown, a value of
/// another type, a number that does not fit and a size below zero.
[[nodiscard]] ScanForm parseForm(std::string_view text, const std::string& fileName);

/// The same from a file; UsageError if it cannot be read too.
[[nodiscard]] ScanForm readFormFile(const std::filesystem::path& file);

/// The sizes of a form as a form's text on one line.
[[nodiscard]] std::string sizesText(const ScanForm& form);

/// Gives the form's sizes to a reader; those that are not given it leaves as they are.
void applySizes(const ScanForm& form, clsKELReader& reader);

/// Gives the whole form to a reader. Windows and zones are added to those that its collections hold.
void applyForm(const ScanForm& form, clsKELReader& reader);

} // namespace kel
