// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/MarkBytes.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

Int16 copied(const Array1<Byte>& bytes, Int32 lRows, Int32 lCols, MarkArray& marks)
{
    MarkCopySR copy;
    return copyMarksSR(bytes, lRows, lCols, marks, copy);
}

Array1<Byte> countingBytes()
{
    Array1<Byte> bytes(1, kMostBytesSR);
    for (Int32 lIndex = 1; lIndex <= kMostBytesSR; ++lIndex)
        bytes(lIndex) = static_cast<Byte>(lIndex % 251);
    return bytes;
}

Int32 failureOf(Int32 lRows, Int32 lCols, MarkArray& marks)
{
    try {
        static_cast<void>(copied(countingBytes(), lRows, lCols, marks));
    } catch (const RuntimeFailure& failure) {
        return failure.number();
    }
    return 0;
}

class SekonicUsbMarks : public ::testing::Test {
protected:
    MarkArray marks{kMostRowsSR, kColumnsSR};
};

TEST_F(SekonicUsbMarks, FillTheWholeArrayRowAfterRow)
{
    EXPECT_EQ(copied(countingBytes(), 200, 48, marks), 200);
    for (Int32 lRow = 1; lRow <= 200; ++lRow) {
        for (Int32 lCol = 1; lCol <= 48; ++lCol)
            ASSERT_EQ(marks(lRow, lCol), ((lRow - 1) * 48 + lCol) % 251) << lRow << ',' << lCol;
    }
}

TEST_F(SekonicUsbMarks, LeaveTheRestOfAShorterAndNarrowerSheetEmpty)
{
    EXPECT_EQ(copied(countingBytes(), 3, 40, marks), 3);
    EXPECT_EQ(marks(1, 40), 40);
    EXPECT_EQ(marks(1, 41), 0);
    EXPECT_EQ(marks(2, 1), 41);
    EXPECT_EQ(marks(3, 40), 120);
    EXPECT_EQ(marks(4, 1), 0);
}

TEST_F(SekonicUsbMarks, KeepTheHighestByteAsItIs)
{
    Array1<Byte> bytes(1, kMostBytesSR);
    bytes(1) = 255;
    EXPECT_EQ(copied(bytes, 1, 48, marks), 1);
    EXPECT_EQ(marks(1, 1), 255);
}

TEST_F(SekonicUsbMarks, AreNoneWithoutRowsOrColumns)
{
    EXPECT_EQ(copied(countingBytes(), 0, 48, marks), 0);
    EXPECT_EQ(copied(countingBytes(), 200, 0, marks), 0);
    EXPECT_EQ(copied(countingBytes(), 200, -1, marks), 0);
    EXPECT_EQ(copied(countingBytes(), -5, 48, marks), 0);
    EXPECT_EQ(marks, MarkArray(kMostRowsSR, kColumnsSR));
}

TEST_F(SekonicUsbMarks, FailAtARowTooMany)
{
    EXPECT_EQ(failureOf(201, 48, marks), 9);
    EXPECT_EQ(marks(200, 48), 9600 % 251);
}

TEST_F(SekonicUsbMarks, FailAtAColumnTooMany)
{
    EXPECT_EQ(failureOf(200, 49, marks), 9);
    EXPECT_EQ(marks(1, 48), 48);
    EXPECT_EQ(marks(2, 1), 0);
}

TEST_F(SekonicUsbMarks, FailWhereTwoNegativeNumbersMakeACount)
{
    EXPECT_EQ(failureOf(-10, -10, marks), 9);
    EXPECT_EQ(marks(1, 48), 48);
}

TEST_F(SekonicUsbMarks, FailWhereTheBytesDoNotFitACount)
{
    EXPECT_EQ(failureOf(65536, 32768, marks), 6);
    EXPECT_EQ(failureOf(200, 10737419, marks), 6);
    EXPECT_EQ(marks(1, 1), 0);
    EXPECT_EQ(failureOf(200, 10737418, marks), 9);
}

} // namespace
} // namespace kel
