// SPDX-License-Identifier: MIT
#include "simulators/framework/SpoiltSheet.h"

#include <algorithm>

namespace kel {

namespace {

constexpr Int32 kDirtyColumn = 3;
constexpr Int16 kDirt = 3; // how much darker a cell is
constexpr std::ptrdiff_t kMissedMarks = 2;

MarkRows darkerOf(const MarkRows& upper, const MarkRows& lower)
{
    MarkRows rows = upper;
    rows.resize(std::max(upper.size(), lower.size()));
    for (std::size_t row = 0; row < lower.size(); ++row) {
        rows[row].resize(std::max(rows[row].size(), lower[row].size()));
        for (std::size_t column = 0; column < lower[row].size(); ++column)
            rows[row][column] = std::max(rows[row][column], lower[row][column]);
    }
    return rows;
}

/// No cell gets darker than the darkest of the side, which is as dark as the reader's marks are.
void dirty(MarkRows& rows, std::size_t column)
{
    Int16 darkest = 1;
    for (const std::vector<Int16>& row : rows)
        for (const Int16 value : row)
            darkest = std::max(darkest, value);
    for (std::vector<Int16>& row : rows)
        if (column <= row.size())
            row[column - 1] = std::min<Int16>(static_cast<Int16>(row[column - 1] + kDirt), darkest);
}

void missMarks(MarkRows& rows)
{
    const std::ptrdiff_t missed = std::min(kMissedMarks, std::ssize(rows));
    const auto first = rows.begin() + (std::ssize(rows) - missed) / 2;
    rows.erase(first, first + missed);
}

} // namespace

SimulatedSheet together(const SimulatedSheet& upper, const SimulatedSheet& lower)
{
    SimulatedSheet sheet = upper;
    sheet.side1 = darkerOf(upper.side1, lower.side1);
    sheet.side2 = darkerOf(upper.side2, lower.side2);
    return sheet;
}

void spoilt(const SiteFaults& faults, Int32 number, SimulatedSheet& sheet)
{
    if (const std::optional<Int32> column = faults.value(SiteFault::Kind::DirtyHead, kDirtyColumn)) {
        dirty(sheet.side1, static_cast<std::size_t>(*column));
        dirty(sheet.side2, static_cast<std::size_t>(*column));
    }
    if (faults.value(SiteFault::Kind::SkewedSheet, 1) == number) {
        missMarks(sheet.side1);
        missMarks(sheet.side2);
    }
}

} // namespace kel
