// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatedSheet.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string_view>
#include <variant>

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

    friend bool operator==(const SheetShape&, const SheetShape&) = default;
};

/// A pile of random sheets.
struct SeededSheets {
    std::uint64_t seed = 1;
    std::uint64_t count = 1;
    bool copies = false; ///< all of them are copies of the first

    friend bool operator==(const SeededSheets&, const SeededSheets&) = default;
};

/// The sheet that a seed gives at a place of the pile, the same on every machine and whatever the pile's height.
[[nodiscard]] SimulatedSheet randomSheet(const SheetShape& shape, std::uint64_t seed, std::uint64_t place);

/// The pile of sheets in the feeder of a simulated reader.
class SheetFeeder {
public:
    /// An empty feeder.
    SheetFeeder() = default;

    SheetFeeder(std::initializer_list<SimulatedSheet> sheets) : pile_(sheets.begin(), sheets.end()) {}

    [[nodiscard]] static SheetFeeder of(const std::vector<SimulatedSheet>& sheets);

    /// From JSON: an array of objects `{"side1":[[0,1]],"side2":[],"barcodes":["123"],"fields":{"Student ID":"77"}}`,
    /// every member of which may be missing. Throws JsonRefusal, whose text names the place: "sheet 2, side1, row 3,
    /// column 1 ..."; from a file std::runtime_error, which names the file too.
    [[nodiscard]] static SheetFeeder fromJson(std::string_view text);
    [[nodiscard]] static SheetFeeder fromFile(const std::filesystem::path& file);

    [[nodiscard]] bool empty() const noexcept { return pile_.empty(); }
    [[nodiscard]] std::uint64_t remaining() const;

    /// The sheet that comes next; only when the feeder is not empty.
    [[nodiscard]] SimulatedSheet take();

    /// Lays a sheet under the pile, or random ones. Those are made when their turn comes, so that a pile of any height
    /// takes the same room.
    void put(SimulatedSheet sheet) { pile_.emplace_back(std::move(sheet)); }
    void put(const SheetShape& shape, const SeededSheets& seeded);

private:
    /// Random sheets, the first `taken` of which are gone.
    struct RandomSheets {
        SheetShape shape;
        SeededSheets seeded;
        std::uint64_t taken = 0;
    };

    std::deque<std::variant<SimulatedSheet, RandomSheets>> pile_;
};

/// Sheets as the JSON that `SheetFeeder::fromJson` reads.
[[nodiscard]] std::string toJson(const std::vector<SimulatedSheet>& sheets);

} // namespace kel
