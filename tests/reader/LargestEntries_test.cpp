// SPDX-License-Identifier: MIT
#include "reader/ReaderSession.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

class LargestEntriesTest : public testing::Test {
protected:
    SimulatedPlatform machine;
    PlatformScope scope{machine};
    ReaderSession session;
};

TEST_F(LargestEntriesTest, TheLargestPageCounts)
{
    session.Side1Rows(PageArray::of(1, {3, 63, 40}));
    EXPECT_EQ(session.LargestSide1Rows(), 63);
    session.Side1Rows(PageArray::of(1, {3}));
    EXPECT_EQ(session.LargestSide1Rows(), 3);
}

TEST_F(LargestEntriesTest, ElementZeroIsNoPage)
{
    session.Side1Rows(PageArray::of(0, {99}));
    EXPECT_EQ(session.LargestSide1Rows(), 0);
    session.Side1Rows(PageArray::of(0, {99, 2}));
    EXPECT_EQ(session.LargestSide1Rows(), 2);
}

TEST_F(LargestEntriesTest, NegativeEntriesCountAsNone)
{
    session.Side1Rows(PageArray::of(1, {-1, -7}));
    EXPECT_EQ(session.LargestSide1Rows(), 0);
}

TEST_F(LargestEntriesTest, EachArrayFeedsItsOwnNumber)
{
    session.Side1Rows(PageArray::of(1, {1}));
    session.Side1Cols(PageArray::of(1, {2}));
    session.Side2Rows(PageArray::of(1, {3}));
    session.Side2Cols(PageArray::of(1, {4}));
    EXPECT_EQ(session.LargestSide1Rows(), 1);
    EXPECT_EQ(session.LargestSide1Cols(), 2);
    EXPECT_EQ(session.LargestSide2Rows(), 3);
    EXPECT_EQ(session.LargestSide2Cols(), 4);
    session.Side1Cols(PageArray::of(1, {20}));
    EXPECT_EQ(session.LargestSide1Rows(), 1);
}

} // namespace
} // namespace kel::test
