#include "drivers/ncs/PageDecoder.h"

#include "tests/types/FailureOf.h"

#include <gmock/gmock.h>

#include <string_view>

namespace kel::test {
namespace {

using testing::ElementsAre;

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
    const PageDecoderNCS page(false);
    EXPECT_FALSE(page.isDone() || page.isInBarcode() || page.isInRun());
    EXPECT_EQ(page.side1(), MarkArray(150, 48));
    EXPECT_EQ(page.side2(), MarkArray());
    EXPECT_EQ(PageDecoderNCS(true).side2(), MarkArray(150, 48));
    EXPECT_EQ(page.timingMarks(1), 0);
    EXPECT_EQ(page.timingMarks(2), 0);
    EXPECT_EQ(page.barcodes().LBound(), 1);
    EXPECT_THAT(page.barcodes().elements(), ElementsAre("?"));
}

TEST(PageDecoder, ARunEqualsItsPositions)
{
    PageDecoderNCS compressed(true);
    PageDecoderNCS plain(true);
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
    PageDecoderNCS page(false);
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
    PageDecoderNCS page(false);
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
    PageDecoderNCS ended(false);
    take(ended, "c12345dxy\r");
    EXPECT_TRUE(ended.isDone());
    EXPECT_THAT(ended.barcodes().elements(), ElementsAre("345"));

    PageDecoderNCS silent(false);
    take(silent, "c12345dxy");
    EXPECT_TRUE(silent.isInBarcode());
    silent.endBySilence();
    EXPECT_TRUE(silent.isDone());
    EXPECT_THAT(silent.barcodes().elements(), ElementsAre("345", "xy"));

    PageDecoderNCS again(false);
    take(again, "c12345dxyc" + run(3, 'd') + run(-3, 'x'));
    EXPECT_THAT(again.barcodes().elements(), ElementsAre("ddd"));
}

TEST(PageDecoder, CountsPositionsIn16BitsAndRowsUpTo150)
{
    PageDecoderNCS page(false);
    for (int i = 0; i < 519; ++i)
        take(page, run(63, '0'));
    EXPECT_EQ(failureOf([&] { take(page, run(63, '0')); }), FailureCode::Overflow);

    PageDecoderNCS rows(false);
    for (int row = 1; row <= 150; ++row)
        EXPECT_TRUE(take(rows, "a" + run(48, '1')).empty());
    EXPECT_EQ(failureOf([&] { take(rows, "a1"); }), FailureCode::SubscriptOutOfRange);
    EXPECT_EQ(rows.timingMarks(1), 151);
}

} // namespace
} // namespace kel::test
