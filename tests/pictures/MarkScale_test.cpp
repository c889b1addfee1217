// SPDX-License-Identifier: MIT
#include "pictures/MarkScale.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(MarkScale, ReachesToTheDarkestValueOfTheModel)
{
    const MarkScale scale = markScale(kelReaderTypeScantronScanMark2500, 7);
    EXPECT_TRUE(scale.hasShades);
    EXPECT_EQ(scale.highest, 15);
    EXPECT_EQ(scale.threshold, 7);
    EXPECT_EQ(markScale(kelReaderTypeScantron8400, 35).highest, 99);
    EXPECT_EQ(markScale(kelReaderTypeAppersonAdvantageLink, 15).highest, 199);
}

TEST(MarkScale, ReadersThatSayMarkedOnlyHaveNoShades)
{
    for (const kelReaderType model : {kelReaderTypePDIVMR138, kelReaderTypeNCSEZData, kelReaderTypeChatsworthOMR1100,
                                      kelReaderTypeAppersonGradeMaster, kelReaderTypeAppersonBenchMark3000})
        EXPECT_FALSE(markScale(model, 4).hasShades) << model;
}

} // namespace
} // namespace kel
