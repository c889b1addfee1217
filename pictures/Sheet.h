// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderBarcode.h"
#include "contract/clsKELReaderWindow.h"
#include "types/Arrays.h"
#include "types/Numbers.h"

#include <string>
#include <utility>
#include <vector>

namespace kel {

/// Which values a reader gives to marks.
struct MarkScale {
    Int16 highest = 1;      ///< the value of the darkest mark
    Int16 threshold = 0;    ///< the recognition threshold in force, on the same scale
    bool hasShades = false; ///< false: a mark is there or not, and its value says no more
};

/// What a picture shows of a form. A size of 0 is not known, or there is no such side.
struct PictureForm {
    Int32 side1Rows = 0;
    Int32 side1Columns = 0;
    Int32 side2Rows = 0;
    Int32 side2Columns = 0;
    std::vector<clsKELReaderWindow> windows;
    std::vector<clsKELReaderBarcode> barcodes;
    MarkScale scale;
    bool readsByOrientation = true; ///< false: the reader sends every window row by row
};

/// What a picture shows of a sheet that was read. Texts are UTF-8.
struct PictureSheet {
    Int32 sheet = 0; ///< counted from 1
    MarkArray side1;
    MarkArray side2;
    Int16 side1TimingMarks = -1; ///< below 0: not counted
    Int16 side2TimingMarks = -1;
    std::vector<std::string> barcodes;
    bool rejected = false;
    bool printed = false;
    std::vector<std::string> printedLines;
    std::vector<std::pair<std::string, std::string>> record; ///< named fields, from readers that deliver such
};

} // namespace kel
