// SPDX-License-Identifier: MIT
#include "drivers/ncs/PageDecoder.h"

#include "tests/types/FailureOf.h"

#include <gmock/gmock.h>

#include <string_view>

namespace kel::test {
namespace {

using testing::ElementsAre;

constexpr auto kOneSide = [] { return false; };
constexpr auto kTwoSides = [] { return true; };

using Faults = std::vector<PageDecoderNCS::RowFault>;

/// Takes all bytes; what they told.
Faults take(PageDecoderNCS& page, std::string_view bytes)
{
    Faults faults;
    for (const char byte : bytes)
        if (const auto fault = page.take(static_cast<Byte>(byte)))
            faults.push_back(*fault);
    return faults;
}

std::string run(int count, char value)
{
    return {'\x15', static_cast<char>(0x40 + count), value};
}

TEST(PageDecoder, ANewPageHoldsNothing)
{
    const PageDecoderNCS page(kOneSide);
    EXPECT_FALSE(page.isDone() || page.isInBarcode() || page.isInRun());
    EXPECT_EQ(page.side1(), MarkArray(150, 48));
    EXPECT_EQ(page.side2(), MarkArray());
    EXPECT_EQ(PageDecoderNCS(kTwoSides).side2(), MarkArray(150, 48));
    EXPECT_EQ(page.timingMarks(1), 0);
    EXPECT_EQ(page.timingMarks(2), 0);
    EXPECT_EQ(page.barcodes().LBound(), 1);
    EXPECT_THAT(page.barcodes().elements(), ElementsAre("?"));
}

TEST(PageDecoder, ARunEqualsItsPositions)
{
    PageDecoderNCS compressed(kTwoSides);
    PageDecoderNCS plain(kTwoSides);
    EXPECT_TRUE(take(compressed, "a" + run(50, 'F') + run(46, '3') + "\n").empty());
    EXPECT_TRUE(take(plain, "a" + std::string(50, 'F') + std::string(46, '3') + "\n").empty());
    EXPECT_EQ(compressed.side1(), plain.side1());
    EXPECT_EQ(plain.side1()(1, 47), 15);
    EXPECT_EQ(plain.side1()(1, 48), 0);
    EXPECT_EQ(plain.side1()(2, 2), 15);
    EXPECT_EQ(plain.side1()(2, 3), 3);
    EXPECT_TRUE(compressed.isDone());
}

TEST(PageDecoder, AMarkerTellsOfTheRowBeforeItWhicheverSideThatWas)
{
    PageDecoderNCS page(kOneSide);
    const Faults faults = take(page, "0a" + run(47, '0') + "b" + run(48, '0') + "b" + run(-16, '0') + "a");
    ASSERT_EQ(faults.size(), 3U);
    const auto expect = [](const PageDecoderNCS::RowFault& fault, int side, int positions, int rows) {
        EXPECT_EQ(fault.side, side);
        EXPECT_EQ(fault.positions, positions);
        EXPECT_EQ(fault.rowsCompletedBefore, rows);
    };
    expect(faults[0], 1, 49, 0);
    expect(faults[1], 2, 47, 0);
    expect(faults[2], 1, -16, 1);
    EXPECT_EQ(page.timingMarks(1), 2);
    EXPECT_EQ(page.timingMarks(2), 2);
}

TEST(PageDecoder, WithinARunEveryByteIsOneOfIt)
{
    PageDecoderNCS page(kOneSide);
    take(page, "a\x15");
    EXPECT_TRUE(page.isInRun());
    take(page, "c"); // 0x63: 35 positions
    EXPECT_TRUE(page.isInRun());
    take(page, "\r");
    EXPECT_FALSE(page.isInRun() || page.isDone() || page.isInBarcode());
    take(page, "5");
    EXPECT_EQ(page.side1()(1, 36), 5);
}

TEST(PageDecoder, TheBarcodeThatTheLastSeparatorOpensGoesAtALineEndAlone)
{
    PageDecoderNCS ended(kOneSide);
    take(ended, "c12345dxy\r");
    EXPECT_TRUE(ended.isDone());
    EXPECT_THAT(ended.barcodes().elements(), ElementsAre("345"));

    PageDecoderNCS silent(kOneSide);
    take(silent, "c12345dxy");
    EXPECT_TRUE(silent.isInBarcode());
    silent.endBySilence();
    EXPECT_TRUE(silent.isDone());
    EXPECT_THAT(silent.barcodes().elements(), ElementsAre("345", "xy"));

    PageDecoderNCS again(kOneSide);
    take(again, "c12345dxyc" + run(3, 'd') + run(-3, 'x'));
    EXPECT_THAT(again.barcodes().elements(), ElementsAre("ddd", "xy"));
}

TEST(PageDecoder, ASecondMarkerBeginsAtTheFirstBarcodeAndKeepsTheOthers)
{
    PageDecoderNCS two(kOneSide);
    take(two, "cXX12dYY34c56\r\n");
    EXPECT_THAT(two.barcodes().elements(), ElementsAre("56", "YY34"));

    // A separator after it makes the list as long as it counts, with an empty entry at its end.
    PageDecoderNCS separated(kOneSide);
    take(separated, "cXX1dXX2dXX3cXX4d5");
    separated.endBySilence();
    EXPECT_THAT(separated.barcodes().elements(), ElementsAre("4", "5"));
}

TEST(PageDecoder, AsksForSide2WithEachOfItsPositions)
{
    bool bTwoSides = true;
    PageDecoderNCS page([&] { return bTwoSides; });
    take(page, "b1");
    bTwoSides = false;
    take(page, "2" + run(2, '3'));
    bTwoSides = true;
    take(page, "4");
    EXPECT_EQ(page.side2()(1, 1), 1);
    EXPECT_EQ(page.side2()(1, 2), 4) << "what came in between is counted and not stored";
    EXPECT_TRUE(take(page, run(43, '0') + "a").empty());

    bTwoSides = false;
    PageDecoderNCS without([&] { return bTwoSides; });
    bTwoSides = true;
    EXPECT_EQ(failureOf([&] { take(without, "b1"); }), FailureCode::SubscriptOutOfRange) << "no room was made for it";
}

TEST(PageDecoder, CountsPositionsIn16BitsAndRowsUpTo150)
{
    PageDecoderNCS page(kOneSide);
    for (int i = 0; i < 519; ++i)
        take(page, run(63, '0'));
    EXPECT_EQ(failureOf([&] { take(page, run(63, '0')); }), FailureCode::Overflow);

    PageDecoderNCS rows(kOneSide);
    for (int row = 1; row <= 150; ++row)
        EXPECT_TRUE(take(rows, "a" + run(48, '1')).empty());
    EXPECT_EQ(failureOf([&] { take(rows, "a1"); }), FailureCode::SubscriptOutOfRange);
    EXPECT_EQ(rows.timingMarks(1), 151);
}

} // namespace
} // namespace kel::test
