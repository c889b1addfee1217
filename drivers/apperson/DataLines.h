// SPDX-License-Identifier: MIT
#pragma once

#include "drivers/apperson/LineFields.h"

namespace kel {

/// What a byte of a BenchMark 3000 has brought to its end.
enum class LineEndAP { None, Sheet, NoMoreSheets };

/// The lines of a BenchMark 3000. A line ends with the first LF after a CR, whatever stands between. Lines of up to 4
/// bytes are words of the reader about itself: "Z1" says that it has no more sheets, all others are dropped.
class BenchMarkLineAP {
public:
    explicit BenchMarkLineAP(Dictionary& oDataDict) : fields_(kLayoutBenchMark3000AP, oDataDict) {}

    [[nodiscard]] LineEndAP take(Byte byte);

    template <class Lines>
    void tellVariables(Lines& lines) const
    {
        fields_.tellVariables(lines);
        lines.add("bEOF, bContinueLoop, bPageRead", bEOF_, eEnd_ == LineEndAP::None, eEnd_ == LineEndAP::Sheet);
    }

private:
    LineEndAP endOf(Byte byte);

    LineFieldsAP fields_;
    LineEndAP eEnd_ = LineEndAP::None;
    bool bEOF_ = false; // a CR has come
};

/// The lines of an Advantage 1200. A line of any length ends with CR LF, without anything between.
class Advantage1200LineAP {
public:
    explicit Advantage1200LineAP(Dictionary& oDataDict)
        : oDataDict_(oDataDict), fields_(kLayoutAdvantage1200AP, oDataDict)
    {
    }

    /// True when the byte has ended a line.
    [[nodiscard]] bool take(Byte byte, Boolean bReaderGrade);

    /// Empties the dictionary for a further line. What stood after the last comma, the line end included, stays and
    /// goes into the first field; an LF as the next byte ends the further line at once.
    void next();

    template <class Lines>
    void tellVariables(Lines& lines) const
    {
        fields_.tellVariables(lines);
        lines.add("bEOF, bContinueLoop, bPageRead", bEOF_, !bPageRead_, bPageRead_);
    }

private:
    Dictionary& oDataDict_;
    LineFieldsAP fields_;
    bool bEOF_ = false; // the byte before was a CR
    bool bPageRead_ = false;
};

} // namespace kel
