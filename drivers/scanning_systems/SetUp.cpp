// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/SetUp.h"

#include "drivers/common/WindowPositions.h"
#include "drivers/scanning_systems/Framing.h"
#include "types/Text.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace kel {

namespace {

constexpr Int16 kNoLimit = std::numeric_limits<Int16>::max();

struct ThresholdStep {
    Int16 iEmulationMode;
    Int16 iUpTo;
    const char* text;
};

// In each mode the first step that reaches up to the threshold is taken.
constexpr ThresholdStep kThresholdSteps[] = {
    {0, 5, "DL1"}, {0, 10, "DL2"}, {0, kNoLimit, "DL3"}, {1, 4, "DL1"},
    {1, 8, "DL2"}, {1, 12, "DL3"}, {1, kNoLimit, "DL4"},
};

} // namespace

std::string thresholdTextSS(Int16 iEmulationMode, Int16 iThreshold)
{
    const auto* step = std::ranges::find_if(kThresholdSteps, [&](const auto& row) {
        return row.iEmulationMode == iEmulationMode && iThreshold <= row.iUpTo;
    });
    if (step != std::end(kThresholdSteps))
        return step->text;
    return (iThreshold < 10 ? "DL0" : "DL") + CStr(iThreshold);
}

void makeGapsPositiveSS(clsKELReaderWindow& cWindow)
{
    if (cWindow.RowGap() < 0) {
        cWindow.StartRow(positionInWindow(cWindow.StartRow(), cWindow.RowGap(), cWindow.NumRows()));
        cWindow.RowGap(checkedAbs(cWindow.RowGap()));
    }
    if (cWindow.ColGap() < 0) {
        cWindow.StartCol(positionInWindow(cWindow.StartCol(), cWindow.ColGap(), cWindow.NumCols()));
        cWindow.ColGap(checkedAbs(cWindow.ColGap()));
    }
}

std::string windowCommandSS(const clsKELReaderWindow& cWindow)
{
    std::string sCmd(cWindow.Page() == 1 ? std::string_view() : kSide2SS);
    sCmd.append(readingSS("W")).append(kStxSS);
    for (const Int16 iField : {cWindow.StartRow(), cWindow.NumRows(), cWindow.RowGap(), cWindow.StartCol(),
                               cWindow.NumCols(), cWindow.ColGap()})
        sCmd += formatZeros(iField, 2);
    return sCmd.append("1").append("12").append(kCrSS);
}

} // namespace kel
