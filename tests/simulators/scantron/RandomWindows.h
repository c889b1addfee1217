// SPDX-License-Identifier: MIT
#pragma once

#include "reader/clsKELReader.h"
#include "simulators/scantron/Scanmark.h"
#include "tests/support/ReaderHost.h"

#include <random>

namespace kel::test {

inline constexpr kelReaderType kScanmarkModels[] = {
    kelReaderTypeScantronScanMark2000,  kelReaderTypeScantronScanMark2250,   kelReaderTypeScantronScanMark2500,
    kelReaderTypeScantronScanMark4000,  kelReaderTypeScantronScanMark5500,   kelReaderTypeScantron8000,
    kelReaderTypeScantron8400,          kelReaderTypeScantronScanMarkES2010, kelReaderTypeScantronScanMarkES2260,
    kelReaderTypeScantronScanMarkES2800};

/// Numbers and marks by a seed.
class ScanmarkChance {
public:
    explicit ScanmarkChance(std::uint64_t seed) : numbers_(seed) {}

    Int16 number(int lowest, int highest);
    bool one(int of) { return number(1, of) == 1; }

    template <class T, std::size_t N>
    T of(const T (&choices)[N])
    {
        return choices[number(0, static_cast<int>(N) - 1)];
    }

    /// Marks that every model can send: all bytes that are no line end are values.
    MarkRows marks(int rows, int columns);

private:
    std::mt19937_64 numbers_;
};

/// So many rows and columns of what a sheet holds.
[[nodiscard]] MarkArray arrayOf(const MarkRows& marks, Int32 rows, Int32 columns);

/// A model, a form of read windows on one or two sides, running any way, and one to three sheets: all by a seed.
class RandomWindows {
public:
    explicit RandomWindows(std::uint64_t seed);

    [[nodiscard]] kelReaderType model() const { return model_; }
    [[nodiscard]] const std::vector<SimulatedSheet>& sheets() const { return sheets_; }

    /// Tells the reader object of the form.
    void describeTo(clsKELReader& reader) const;

    /// What the windows take of a sheet.
    [[nodiscard]] HeardSheet takenOf(const SimulatedSheet& sheet) const;

private:
    [[nodiscard]] FormWindow randomWindow(ScanmarkChance& chance, Int16 page) const;

    kelReaderType model_{};
    bool twoSides_ = false;
    Int16 rows_[2] = {};
    Int16 columns_ = 0;
    std::vector<FormWindow> windows_; // those of side 1 first
    std::vector<SimulatedSheet> sheets_;
};

} // namespace kel::test
