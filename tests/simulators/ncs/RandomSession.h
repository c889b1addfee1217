// SPDX-License-Identifier: MIT
#pragma once

#include "reader/clsKELReader.h"
#include "simulators/ncs/OpScan.h"
#include "tests/support/ReaderHost.h"

namespace kel::test {

inline constexpr kelReaderType kOpScanModels[] = {
    kelReaderTypeNCSOpScan2, kelReaderTypeNCSOpScan3,        kelReaderTypeNCSOpScan4,
    kelReaderTypeNCSOpScan5, kelReaderTypeNCSOpScan6,        kelReaderTypeNCSOpScan7,
    kelReaderTypeNCSOpScan8, kelReaderTypeNCSOpScaniNSIGHT2, kelReaderTypeNCSOpScaniNSIGHT4};

/// What is heard of a side: 150 rows of 48 columns, of which the last always reads 0.
[[nodiscard]] MarkArray heardOf(const MarkRows& marks);

/// What is heard of what follows the rows. The letters a to d in it are markers as everywhere: of a timing mark,
/// of the first barcode, of the next one.
struct HeardBarcodes {
    std::vector<std::string> texts = {"?"};
    Int16 timingMarks1 = 0;
    Int16 timingMarks2 = 0;
    std::size_t rowsOfAnotherLength = 0; ///< that are told
};
[[nodiscard]] HeardBarcodes heardOf(const std::vector<std::string>& barcodes, const OpScanFormat& format);

/// A session by a seed: a model and its settings, a host's settings, and sheets of one or two sides with 0 to 5
/// barcodes.
class RandomSession {
public:
    struct Limits {
        int fewestSheets = 1;
        int mostSheets = 2;
        int mostRows = 10;
    };

    RandomSession(std::uint64_t seed, Limits limits);

    [[nodiscard]] kelReaderType model() const { return model_; }
    [[nodiscard]] const std::vector<SimulatedSheet>& sheets() const { return sheets_; }
    /// The simulated reader with its sheets.
    [[nodiscard]] SimulatorOptions options(Rate rate) const;
    void describeTo(clsKELReader& reader) const;

    /// Compares what a host has heard, and what the reader has noted, with what the sheets hold.
    void expectHeard(const clsKELReader& reader, const RecordingHost& heard, const OpScan& device) const;

private:
    [[nodiscard]] OpScanFormat format() const;
    [[nodiscard]] bool readsTwoSides() const { return duplex_ && duplexForm_; }

    kelReaderType model_{};
    Boolean duplex_ = False;
    Boolean duplexForm_ = False;
    Boolean feeder_ = False;
    Boolean readerGrade_ = False;
    std::string mode_;
    std::map<std::string, std::string> settings_;
    std::vector<SimulatedSheet> sheets_;
};

} // namespace kel::test
