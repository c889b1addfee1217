// SPDX-License-Identifier: MIT
#include "drivers/apperson/RawBlock.h"

#include "tests/types/FailureOf.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>
#include <vector>

namespace kel {
namespace {

using test::failureOf;

void setMarks(MarkArray& iSide1Arr, const RawBlockAP& block, Int16 iThreshold)
{
    Byte bValue = 0;
    setMarksGradeMasterAP(iSide1Arr, block, iThreshold, bValue);
}

/// Takes the bytes; the block is complete with the last of them and not before.
void fill(RawBlockAP& block, const std::vector<Byte>& bytes)
{
    for (const Byte byte : bytes) {
        ASSERT_FALSE(block.isComplete());
        block.take(byte);
    }
    ASSERT_TRUE(block.isComplete());
}

/// Mark bytes that say their own place, the remainder of `modulus`, and the status.
std::vector<Byte> placeBytes(std::size_t count, int modulus, Byte status)
{
    std::vector<Byte> bytes;
    for (std::size_t n = 1; n <= count; ++n)
        bytes.push_back(static_cast<Byte>(n % static_cast<std::size_t>(modulus)));
    bytes.push_back(status);
    return bytes;
}

TEST(RawBlockAP, TheFirstByteFromTheLimitOnIsTheStatus)
{
    for (int byte = 0; byte <= 255; ++byte) {
        RawBlockAP link = newBlockAdvantageLinkAP();
        link.take(static_cast<Byte>(byte));
        EXPECT_EQ(link.isComplete(), byte >= 200) << byte;
        RawBlockAP master = newBlockGradeMasterAP();
        master.take(static_cast<Byte>(byte));
        EXPECT_EQ(master.isComplete(), byte >= 217) << byte;
        if (byte >= 217) {
            EXPECT_EQ(master.status(), byte);
        }
    }
}

TEST(RawBlockAP, TheStatusStandsBehindTheBytes)
{
    RawBlockAP block = newBlockAdvantageLinkAP();
    fill(block, {7, 0, 199, 203});
    EXPECT_EQ(block(0), 0); // never filled
    EXPECT_EQ(block(1), 7);
    EXPECT_EQ(block(3), 199);
    EXPECT_EQ(block(4), 203);
    EXPECT_EQ(block.status(), 203);
    EXPECT_EQ(block(5), 0);
}

TEST(RawBlockAP, HasRoomForSoManyBytes)
{
    const auto bytesThatFit = [](RawBlockAP block) {
        for (int byte = 0;; ++byte) {
            if (failureOf([&] { block.take(0); }) == FailureCode::SubscriptOutOfRange)
                return byte;
        }
    };
    EXPECT_EQ(bytesThatFit(newBlockAdvantageLinkAP()), 1200);
    EXPECT_EQ(bytesThatFit(newBlockGradeMasterAP()), 300);

    RawBlockAP full = newBlockGradeMasterAP(); // the status needs room too
    fill(full, placeBytes(299, 100, 217));
    EXPECT_EQ(full.status(), 217);
}

TEST(AdvantageLinkMarks, Row2BeginsAtByte15WhateverTheColumns)
{
    RawBlockAP block = newBlockAdvantageLinkAP();
    fill(block, placeBytes(150, 200, 200));
    for (const Int32 columns : {1, 5, 12, 14}) {
        MarkArray marks(4, columns);
        setMarksAdvantageLinkAP(marks, block);
        for (Int32 column = 1; column <= columns; ++column) {
            EXPECT_EQ(marks(1, column), column);
            EXPECT_EQ(marks(2, column), 14 + column);
            EXPECT_EQ(marks(3, column), 14 + columns + column);
            EXPECT_EQ(marks(4, column), 14 + 2 * columns + column);
        }
    }
}

TEST(AdvantageLinkMarks, MoreThan14ColumnsShareBytes)
{
    RawBlockAP block = newBlockAdvantageLinkAP();
    fill(block, placeBytes(60, 200, 200));
    MarkArray marks(2, 20);
    setMarksAdvantageLinkAP(marks, block);
    EXPECT_EQ(marks(1, 15), 15);
    EXPECT_EQ(marks(1, 20), 20);
    EXPECT_EQ(marks(2, 1), 15);
}

TEST(AdvantageLinkMarks, AShortBlockShowsItsStatus)
{
    RawBlockAP block = newBlockAdvantageLinkAP();
    fill(block, placeBytes(15, 200, 200));
    MarkArray marks(2, 12);
    setMarksAdvantageLinkAP(marks, block);
    EXPECT_EQ(marks(2, 1), 15);
    EXPECT_EQ(marks(2, 2), 200);
    EXPECT_EQ(marks(2, 3), 0);
}

TEST(AdvantageLinkMarks, RowsBeyondTheRoomFail)
{
    RawBlockAP block = newBlockAdvantageLinkAP();
    fill(block, {200});
    MarkArray fits(99, 12); // 14 + 98 * 12 = 1190
    EXPECT_EQ(failureOf([&] { setMarksAdvantageLinkAP(fits, block); }), std::nullopt);
    MarkArray tooMany(100, 12); // 1202
    EXPECT_EQ(failureOf([&] { setMarksAdvantageLinkAP(tooMany, block); }), FailureCode::SubscriptOutOfRange);
    MarkArray oneRow(1, 1200);
    EXPECT_EQ(failureOf([&] { setMarksAdvantageLinkAP(oneRow, block); }), std::nullopt);
    MarkArray wideRow(1, 1201);
    EXPECT_EQ(failureOf([&] { setMarksAdvantageLinkAP(wideRow, block); }), FailureCode::SubscriptOutOfRange);
}

/// A GradeMaster block: identifier, an unused byte, error number, one byte a row.
RawBlockAP gradeMasterBlock(const std::string& identifier, const std::string& error, const std::vector<Byte>& rows)
{
    RawBlockAP block = newBlockGradeMasterAP();
    for (const char c : identifier + "-" + error)
        block.take(static_cast<Byte>(c));
    for (const Byte row : rows)
        block.take(row);
    block.take(217);
    return block;
}

TEST(GradeMasterMarks, ABitIsAColumn)
{
    const RawBlockAP block = gradeMasterBlock("0123456789", "   ", {0x01, 0x02, 0x04, 0x08, 0x10, 0x1F, 0x00});
    MarkArray marks(7, 5);
    setMarks(marks, block, 3);
    for (Int32 row = 1; row <= 5; ++row) {
        for (Int32 column = 1; column <= 5; ++column)
            EXPECT_EQ(marks(row, column), row == column ? 3 : 0) << row << ' ' << column;
    }
    for (Int32 column = 1; column <= 5; ++column) {
        EXPECT_EQ(marks(6, column), 3);
        EXPECT_EQ(marks(7, column), 0);
    }
}

TEST(GradeMasterMarks, HighBitsMeanNothing)
{
    const RawBlockAP block = gradeMasterBlock("0123456789", "   ", {0x20, 0x40, 0x80, 0xC1});
    MarkArray marks(4, 12);
    setMarks(marks, block, 1);
    for (Int32 row = 1; row <= 4; ++row) {
        for (Int32 column = 1; column <= 12; ++column)
            EXPECT_EQ(marks(row, column), row == 4 && column == 1 ? 1 : 0) << row << ' ' << column;
    }
}

TEST(GradeMasterMarks, AShortBlockShowsItsStatus)
{
    const RawBlockAP block = gradeMasterBlock("0123456789", "   ", {0x02});
    MarkArray marks(3, 5);
    setMarks(marks, block, 1);
    EXPECT_EQ(marks.elements(), (std::vector<Int16>{0, 1, 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 0})); // 217 is 0xD9
}

TEST(GradeMasterMarks, AMarkOutsideTheColumnsFails)
{
    const RawBlockAP fourth = gradeMasterBlock("0123456789", "   ", {0x0F});
    const RawBlockAP fifth = gradeMasterBlock("0123456789", "   ", {0x10});
    MarkArray marks(1, 4);
    EXPECT_EQ(failureOf([&] { setMarks(marks, fourth, 1); }), std::nullopt);
    EXPECT_EQ(failureOf([&] { setMarks(marks, fifth, 1); }), FailureCode::SubscriptOutOfRange);
}

TEST(GradeMasterMarks, RowsBeyondTheRoomFail)
{
    const RawBlockAP block = gradeMasterBlock("0123456789", "   ", {});
    MarkArray fits(286, 5);
    EXPECT_EQ(failureOf([&] { setMarks(fits, block, 1); }), std::nullopt);
    MarkArray tooMany(287, 5);
    EXPECT_EQ(failureOf([&] { setMarks(tooMany, block, 1); }), FailureCode::SubscriptOutOfRange);
}

TEST(GradeMasterIdentifier, IsTheFirstTenBytes)
{
    EXPECT_EQ(identifierGradeMasterAP(gradeMasterBlock("0123456789", "   ", {})), "0123456789");
    EXPECT_EQ(identifierGradeMasterAP(gradeMasterBlock("Error     ", "   ", {})), kErrorIdentifierGradeMasterAP);
    EXPECT_EQ(identifierGradeMasterAP(gradeMasterBlock("Blank ID# ", "   ", {})), kBlankIdentifierGradeMasterAP);
}

TEST(GradeMasterErrorNumber, IsTheDigitsOfBytes12To14)
{
    for (const auto& [digits, number] : std::initializer_list<std::pair<const char*, Int16>>{
             {"004", 4}, {"211", 211}, {"4  ", 4}, {"  9", 9}, {"000", 0}, {"   ", 0}, {"abc", 0}, {"999", 999}})
        EXPECT_EQ(errorNumberGradeMasterAP(gradeMasterBlock("Error     ", digits, {})), number) << digits;
}

} // namespace
} // namespace kel
