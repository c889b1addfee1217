// SPDX-License-Identifier: MIT
#include "simulators/framework/SpoiltSheet.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

SiteFaults faults(std::string_view text)
{
    return SiteFaults({parseSiteFault(text).value()});
}

TEST(SpoiltSheet, TwoSheetsAreAsDarkAsTheDarkerOne)
{
    const SimulatedSheet upper{.side1 = {{1, 5}, {2}}, .barcodes = {"7"}};
    const SimulatedSheet lower{.side1 = {{3, 0, 4}}, .side2 = {{9}}, .barcodes = {"8"}};
    EXPECT_EQ(together(upper, lower), (SimulatedSheet{.side1 = {{3, 5, 4}, {2}}, .side2 = {{9}}, .barcodes = {"7"}}));
}

TEST(SpoiltSheet, ADirtyHeadDarkensAColumn)
{
    SimulatedSheet sheet{.side1 = {{0, 0, 7}, {0, 6, 0}, {1}}, .side2 = {{0, 1}}};
    spoilt(faults("dirty-head:2"), 5, sheet);
    EXPECT_EQ(sheet, (SimulatedSheet{.side1 = {{0, 3, 7}, {0, 7, 0}, {1}}, .side2 = {{0, 1}}}));
}

TEST(SpoiltSheet, ASkewedSheetLacksTwoRows)
{
    const SimulatedSheet straight{.side1 = {{1}, {2}, {3}, {4}, {5}}, .side2 = {{6}}};
    SimulatedSheet sheet = straight;
    spoilt(faults("skewed-sheet:2"), 1, sheet);
    EXPECT_EQ(sheet, straight);
    spoilt(faults("skewed-sheet:2"), 2, sheet);
    EXPECT_EQ(sheet, (SimulatedSheet{.side1 = {{1}, {4}, {5}}}));
}

} // namespace
} // namespace kel
