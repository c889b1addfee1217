// SPDX-License-Identifier: MIT
#include "formats/NearestNames.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using Names = std::vector<std::string>;

TEST(NearestNames, DistanceCountsLettersWhateverTheirCase)
{
    EXPECT_EQ(editDistance("", ""), 0U);
    EXPECT_EQ(editDistance("abc", "ABC"), 0U);
    EXPECT_EQ(editDistance("abc", ""), 3U);
    EXPECT_EQ(editDistance("", "ab"), 2U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(NearestNames, NearestComeFirst)
{
    const Names names = {"BaudRate", "DataBits", "StopBits", "Parity"};
    EXPECT_EQ(nearestNames("Bits", names), (Names{"DataBits", "StopBits"}));
    EXPECT_EQ(nearestNames("Bits", names, 1), (Names{"DataBits"}));
    EXPECT_EQ(nearestNames("StopBit", names), (Names{"StopBits"})) << "the others are clearly farther away";
    EXPECT_EQ(nearestNames("parti", names, 1), (Names{"Parity"}));
}

TEST(NearestNames, PartOfANameCountsAsTheName)
{
    const Names names = {"Scantron 8000", "Scantron Scanmark 2500", "Sekonic SR-601"};
    EXPECT_EQ(nearestNames("Scanmrk 2500", names, 1), (Names{"Scantron Scanmark 2500"}));
}

TEST(NearestNames, SaysWhatIsNearest)
{
    EXPECT_EQ(nearestListed({"a"}), "the nearest is a");
    EXPECT_EQ(nearestListed({"a", "b"}), "the nearest are a and b");
}

TEST(NearestNames, ListsAsAPersonDoes)
{
    EXPECT_EQ(listed({}), "");
    EXPECT_EQ(listed({"a"}), "a");
    EXPECT_EQ(listed({"a", "b"}), "a or b");
    EXPECT_EQ(listed({"a", "b", "c"}, "and"), "a, b and c");
}

} // namespace
} // namespace kel
