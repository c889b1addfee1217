// SPDX-License-Identifier: MIT
#include "cli/check/Dialogue.h"
#include "cli/check/SheetFindings.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

SheetRows rows(std::initializer_list<std::vector<Int16>> cells)
{
    return cells;
}

TEST(SheetFindings, RowsThatAreMissingAreSeenWhereTheRestMovesUp)
{
    const SheetRows whole = rows({{1}, {0, 1}, {1, 1}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}, {1}, {0, 1}});
    SheetRows without = whole;
    without.erase(without.begin() + 2, without.begin() + 4);
    EXPECT_TRUE(missesRows(without, whole));
    EXPECT_FALSE(missesRows(whole, whole));
    EXPECT_FALSE(missesRows(whole, without));
    without.back() = {9};
    EXPECT_FALSE(missesRows(without, whole));
}

TEST(SheetFindings, AColumnIsDarkWhenItIsDarkEverywhere)
{
    const SheetRows dark = rows({{0, 1}, {1, 2}, {0, 1}, {0, 3}, {0, 1}});
    SheetRows notQuite = dark;
    notQuite[3][1] = 0;
    EXPECT_EQ(darkColumn({dark, dark}), 2U);
    EXPECT_EQ(darkColumn({dark, notQuite}), std::nullopt);
    EXPECT_EQ(darkColumn({rows({{1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}})}), std::nullopt);
}

/// Bytes that the host sees one by one, so far apart.
Dialogue bytesApart(int count, double milliseconds)
{
    Dialogue dialogue;
    dialogue.exchanges.push_back({.sentAt = 0, .sent = "?", .arrivals = {}});
    for (int byte = 1; byte <= count; ++byte)
        dialogue.exchanges.back().arrivals.push_back(
            {.notBefore = (byte - 1) * milliseconds, .at = byte * milliseconds, .bytes = "x"});
    return dialogue;
}

TEST(PaceOfBytes, TellsClocksAndStopBits)
{
    const auto cause = [](double milliseconds) { return causeOfPace(*paceOf(bytesApart(60, milliseconds), 1), 1); };
    EXPECT_EQ(cause(1), Cause::None);
    EXPECT_EQ(cause(1.004), Cause::None);
    EXPECT_EQ(cause(0.98), Cause::ClockOff);
    EXPECT_EQ(cause(1.02), Cause::ClockOff);
    EXPECT_EQ(cause(1.1), Cause::WrongStopBits);
    EXPECT_EQ(cause(10 / 11.), Cause::WrongStopBits);
    EXPECT_EQ(cause(1.5), Cause::None);
    EXPECT_FALSE(paceOf(bytesApart(10, 1), 1));
}

TEST(PaceOfBytes, TellsLumps)
{
    Dialogue dialogue;
    dialogue.exchanges.push_back({.sentAt = 0, .sent = "?", .arrivals = {}});
    for (int lump = 1; lump <= 5; ++lump)
        dialogue.exchanges.back().arrivals.push_back(
            {.notBefore = 16. * lump - 1, .at = 16. * lump, .bytes = std::string(16, 'x')});
    const std::optional<Pace> pace = paceOf(dialogue, 1);
    ASSERT_TRUE(pace);
    EXPECT_NEAR(pace->lump, 16, 0.1);
    EXPECT_EQ(causeOfPace(*pace, 1), Cause::Lumps);
}

TEST(Dialogues, AreTakenFromTraces)
{
    const Dialogue dialogue =
        dialogueOf(parseTranscript("# times: recorded\n+ 5\n< 41\n> \"Q\"\n+ 3 # not before 2\n< 42\n+ 1\n> \"R\"\n"));
    ASSERT_EQ(dialogue.unasked.size(), 1U);
    EXPECT_EQ(dialogue.unasked[0].bytes, "A");
    ASSERT_EQ(dialogue.exchanges.size(), 2U);
    EXPECT_EQ(dialogue.exchanges[0].reply(), "B");
    EXPECT_EQ(dialogue.exchanges[0].replyTime(), 3);
    EXPECT_EQ(dialogue.exchanges[0].arrivals[0].notBefore, 7);
    EXPECT_EQ(dialogue.exchanges[1].replyTime(), std::nullopt);
    EXPECT_EQ(dialogue.milliseconds, 9);
    EXPECT_EQ(dialogue.last("Q")->sentAt, 5);
    EXPECT_EQ(dialogue.last("X"), nullptr);
}

} // namespace
} // namespace kel::test
