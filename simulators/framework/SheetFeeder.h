// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatedSheet.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string_view>

namespace kel {

/// What random sheets of a model look like.
struct SheetShape {
    Int32 side1Rows = 10;
    Int32 side1Columns = 10;
    Int32 side2Rows = 0;
    Int32 side2Columns = 0;
    Int32 densityPercent = 20; ///< how many of a hundred cells are marked
    Int16 lowestMark = 1;      ///< values of marked cells
    Int16 highestMark = 1;
    Int32 barcodes = 0;
    Int32 barcodeLength = 8;

    /// Fields of decimal digits: name and length.
    std::vector<std::pair<std::string, Int32>> digitFields = {};
};

/// The sheet that a seed gives at a place of the pile, the same on every machine and whatever the pile's height.
[[nodiscard]] SimulatedSheet randomSheet(const SheetShape& shape, std::uint64_t seed, std::uint64_t place);

/// The pile of sheets in front of a simulated reader.
class SheetFeeder {
public:
    /// An empty feeder.
    SheetFeeder() = default;

    SheetFeeder(std::initializer_list<SimulatedSheet> sheets) : sheets_(sheets) {}

    [[nodiscard]] static SheetFeeder of(const std::vector<SimulatedSheet>& sheets);
    [[nodiscard]] static SheetFeeder random(const SheetShape& shape, std::uint64_t seed, std::uint64_t count);

    /// From JSON: an array of objects `{"side1":[[0,1]],"side2":[],"barcodes":["123"],"fields":{"Student ID":"77"}}`,
    /// every member of which may be missing. Throws JsonRefusal, whose text names the place: "sheet 2, side1, row 3,
    /// column 1 ..."; from a file std::runtime_error, which names the file too.
    [[nodiscard]] static SheetFeeder fromJson(std::string_view text);
    [[nodiscard]] static SheetFeeder fromFile(const std::filesystem::path& file);

    [[nodiscard]] bool empty() const noexcept { return sheets_.empty(); }
    [[nodiscard]] std::size_t remaining() const noexcept { return sheets_.size(); }

    /// The sheet that comes next; only when the feeder is not empty.
    [[nodiscard]] const SimulatedSheet& next() const { return sheets_.front(); }
    [[nodiscard]] SimulatedSheet take();
    void put(SimulatedSheet sheet) { sheets_.push_back(std::move(sheet)); }

private:
    std::deque<SimulatedSheet> sheets_;
};

/// Sheets as the JSON that `SheetFeeder::fromJson` reads.
[[nodiscard]] std::string toJson(const std::vector<SimulatedSheet>& sheets);

} // namespace kel
