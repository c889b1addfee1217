// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// One cell of a sheet: side 1 or 2, row and column from 1.
struct ScanmarkCell {
    Int32 side = 1;
    Int32 row = 0;
    Int32 column = 0;

    friend bool operator==(const ScanmarkCell&, const ScanmarkCell&) = default;
};

/// A form as a Scanmark reader holds it: sizes, and rectangles in the order in which they were defined.
///
///     FRM=FS rows-1 rows-2 columns-1 N N N
///     FRM=DK side row column row column L|C elements choices      any number of them
///     FRM=MC Y N 1 side 1 1 row column L rows columns 111...      in their place, on the models that have it
///     FRM=LS
///
/// The elements of an "L" are rows, and its cells go out row by row; those of a "C" are columns, and it goes out column
/// by column; always from the lower to the higher number. Elements and choices lie at even distances from one edge of
/// the rectangle to the other; a rectangle without extent has them all in one place.
class ScanmarkForm {
public:
    /// What is wrong with a definition, as text; nothing if the reader takes it.
    using Refusal = std::optional<std::string>;

    /// The words after "FRM=FS", which begin a form.
    [[nodiscard]] Refusal start(const std::vector<std::string>& words);

    /// The words after "FRM=DK" and "FRM=MC".
    [[nodiscard]] Refusal defineRectangle(const std::vector<std::string>& words);
    [[nodiscard]] Refusal defineColumns(const std::vector<std::string>& words);

    /// The cells in the order of the reply: all definitions of side 1, then all of side 2.
    [[nodiscard]] std::vector<ScanmarkCell> cells() const;

private:
    struct Rectangle {
        Int32 side = 0;
        Int32 firstRow = 0;
        Int32 firstColumn = 0;
        Int32 lastRow = 0;
        Int32 lastColumn = 0;
        bool byRows = true;
        Int32 rows = 0;
        Int32 columns = 0;
    };

    [[nodiscard]] Refusal add(const Rectangle& rectangle);
    [[nodiscard]] Refusal misfit(const Rectangle& rectangle) const;

    Int32 side1Rows_ = 0;
    Int32 side2Rows_ = 0;
    Int32 side1Columns_ = 0;
    std::vector<Rectangle> rectangles_;
};

/// The words of a command. Exactly one blank stands between two; two blanks, or one at an end, make an empty word.
[[nodiscard]] std::vector<std::string> wordsOf(std::string_view text);

/// A number as the host is to write it: decimal digits without sign, blank or leading zero.
[[nodiscard]] std::optional<Int32> plainNumber(std::string_view word);

} // namespace kel
