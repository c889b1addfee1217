// SPDX-License-Identifier: MIT
#include "tests/simulators/scantron/RandomWindows.h"

#include <algorithm>

namespace kel::test {

Int16 ScanmarkChance::number(int lowest, int highest)
{
    const auto count = static_cast<std::uint64_t>(highest - lowest + 1);
    return static_cast<Int16>(lowest + static_cast<int>(numbers_() % count));
}

MarkRows ScanmarkChance::marks(int rows, int columns)
{
    MarkRows marks(static_cast<std::size_t>(rows), std::vector<Int16>(static_cast<std::size_t>(columns)));
    for (auto& row : marks)
        for (Int16& cell : row)
            do
                cell = number(0, 207);
            while (cell == 13);
    return marks;
}

MarkArray arrayOf(const MarkRows& marks, Int32 rows, Int32 columns)
{
    MarkArray array(rows, columns);
    for (Int32 row = 1; row <= rows; ++row)
        for (Int32 column = 1; column <= columns; ++column)
            array(row, column) = markAt(marks, row, column);
    return array;
}

RandomWindows::RandomWindows(std::uint64_t seed)
{
    ScanmarkChance chance(seed);
    model_ = chance.of(kScanmarkModels);
    twoSides_ = chance.one(2);
    for (Int16& rows : rows_)
        rows = chance.number(1, 60);
    columns_ = chance.number(1, 48);
    for (int left = chance.number(1, 3); left > 0; --left)
        sheets_.push_back({.side1 = chance.marks(rows_[0], columns_), .side2 = chance.marks(rows_[1], columns_)});
    for (int left = chance.number(0, 4); left > 0; --left)
        windows_.push_back(randomWindow(chance, 1));
    for (int left = twoSides_ ? chance.number(0, 3) : 0; left > 0; --left)
        windows_.push_back(randomWindow(chance, 2));
}

FormWindow RandomWindows::randomWindow(ScanmarkChance& chance, Int16 page) const
{
    // Along one direction: how many, how far apart, and where the first one is.
    const auto along = [&chance](int size, Int16& start, Int16& count, Int16& gap) {
        gap = chance.number(-3, 3);
        const int step = gap < 0 ? -gap : gap;
        const int most = step == 0 ? 4 : (size - 1) / step + 1;
        count = chance.number(1, std::min(most, 12));
        if (chance.one(20))
            count = static_cast<Int16>(most);
        const int reach = step * (count - 1);
        const int low = chance.number(1, size - reach);
        start = static_cast<Int16>(gap < 0 ? low + reach : low);
    };
    FormWindow window{.Page = page, .Orientation = chance.number(0, 1)};
    along(rows_[page - 1], window.StartRow, window.NumRows, window.RowGap);
    along(columns_, window.StartCol, window.NumCols, window.ColGap);
    return window;
}

void RandomWindows::describeTo(clsKELReader& reader) const
{
    reader.RecognitionMode(kelRecognitionTypeWindow);
    reader.Duplex(Boolean(twoSides_));
    reader.DuplexForm(Boolean(twoSides_));
    reader.Side1Rows(pages({rows_[0]}));
    reader.Side1Cols(pages({columns_}));
    reader.Side2Rows(pages({rows_[1]}));
    reader.Side2Cols(pages({columns_}));
    for (const FormWindow& window : windows_) {
        auto added = std::make_shared<clsKELReaderWindow>();
        added->StartRow(window.StartRow);
        added->NumRows(window.NumRows);
        added->RowGap(window.RowGap);
        added->StartCol(window.StartCol);
        added->NumCols(window.NumCols);
        added->ColGap(window.ColGap);
        added->Page(window.Page);
        added->Orientation(window.Orientation);
        reader.Windows()->Add(added);
    }
}

HeardSheet RandomWindows::takenOf(const SimulatedSheet& sheet) const
{
    HeardSheet taken;
    taken.side1 = MarkArray(rows_[0], columns_);
    for (const FormWindow& window : windows_) {
        if (window.Page == 2 && !taken.side2.isDimensioned())
            taken.side2 = MarkArray(rows_[1], columns_);
        MarkArray& array = window.Page == 2 ? taken.side2 : taken.side1;
        const MarkRows& marks = window.Page == 2 ? sheet.side2 : sheet.side1;
        for (Int32 i = 0; i < window.NumRows; ++i)
            for (Int32 j = 0; j < window.NumCols; ++j) {
                const Int32 row = window.StartRow + i * window.RowGap;
                const Int32 column = window.StartCol + j * window.ColGap;
                array(row, column) = markAt(marks, row, column);
            }
    }
    return taken;
}

} // namespace kel::test
