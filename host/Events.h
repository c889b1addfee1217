// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"
#include "host/Failure.h"
#include "types/Arrays.h"
#include "types/Numbers.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kel::host {

/// When a batch checks whether it has to stop.
enum class StopAsked {
    InEachTurn,  ///< in every turn of its waits, so that these have a clock
    AtEachSheet, ///< before and after a sheet; `CancelScan`, set from elsewhere, ends or hurries a wait
};

/// A mark on a sheet: its row and column from 1, and its value, never 0.
struct Mark {
    Int32 row = 0;    ///< from 1
    Int32 column = 0; ///< from 1
    Int16 value = 0;  ///< on the model's own scale

    friend bool operator==(const Mark&, const Mark&) = default;
};

/// A sheet that was read, and whether it was rejected and printed on.
struct Sheet {
    Int32 number = 0; ///< counted from 1
    MarkArray side1{};
    MarkArray side2{}; ///< may have no bounds at all
    Int16 side1TimingMarks = -1;
    Int16 side2TimingMarks = -1;
    TextArray barcodes{}; ///< one byte for each character, as they came
    bool rejected = false;
    bool printed = false;
    std::vector<std::string> printedLines{}; ///< as they went over the line
    std::optional<Dictionary> record{};      ///< the named fields, from readers that deliver them

    /// The marks of side 1 or 2, row by row.
    [[nodiscard]] KEL_PUBLIC std::vector<Mark> marks(int side = 1) const;

    /// The barcodes, whatever their bounds; and the first one, empty if there is none.
    [[nodiscard]] std::span<const std::string> texts() const { return barcodes.elements(); }
    [[nodiscard]] std::string barcode() const { return texts().empty() ? std::string() : texts().front(); }
};

/// The end of a batch.
struct BatchEnd {
    bool started = false; ///< whether the reader came to its first sheet
    Int32 sheets = 0;     ///< that were read
    bool cancelScan = false;
    bool result = false; ///< of `ReadBatch`
};

/// Where the events of a batch go, in the order in which they happen.
class KEL_PUBLIC Events {
public:
    virtual ~Events() = default;
    /// A sheet was read; a failure was reported; the batch has ended.
    virtual void sheet(const Sheet& event) { static_cast<void>(event); }
    virtual void failure(const Failure& event) { static_cast<void>(event); }
    virtual void end(const BatchEnd& event) { static_cast<void>(event); }
};

} // namespace kel::host
