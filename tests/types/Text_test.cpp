// SPDX-License-Identifier: MIT
#include "tests/types/FailureOf.h"
#include "types/Enumerations.h"
#include "types/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace kel::test {
namespace {

constexpr auto kBadCall = FailureCode::InvalidProcedureCall;

TEST(CStrTest, SaysWholeNumbersInDecimal)
{
    EXPECT_EQ(CStr(0), "0");
    EXPECT_EQ(CStr(Int16{-32768}), "-32768");
    EXPECT_EQ(CStr(std::numeric_limits<Int32>::min()), "-2147483648");
    EXPECT_EQ(CStr(std::int64_t{3000000000}), "3000000000");
    EXPECT_EQ(CStr(Byte{200}), "200");
    EXPECT_EQ(CStr(kelReaderTypeNCSEZData), "23");
}

TEST(CStrTest, SaysFractionsAsShortAsCanBe)
{
    EXPECT_EQ(CStr(1.0F), "1");
    EXPECT_EQ(CStr(1.5F), "1.5");
    EXPECT_EQ(CStr(0.1F), "0.1");
    EXPECT_EQ(CStr(0.1), "0.1");
    EXPECT_EQ(CStr(-2.0), "-2");
    EXPECT_EQ(CStr(100000.0), "100000");
    EXPECT_EQ(CStr(0.0001), "0.0001");
    EXPECT_EQ(CStr(1e20), "1E+20");
}

TEST(CStrTest, SaysTruthValues)
{
    EXPECT_EQ(CStr(True), "True");
    EXPECT_EQ(CStr(False), "False");
    EXPECT_EQ(CStr(Boolean::fromBits(2)), "True");
}

TEST(CBoolTest, ReadsWordsAndNumbers)
{
    for (const char* text : {"True", "TRUE", " true ", "-1", "1", "0.5", "&h10", " 2 "})
        EXPECT_EQ(CBool(text), True) << text;
    for (const char* text : {"False", "fALSE", "0", "0.0", "-0", "&h0"})
        EXPECT_EQ(CBool(text), False) << text;
    for (const char* text : {"", " ", "yes", "1x", "Tru", "1 2", "&", "&h", "&hG", "--1"})
        EXPECT_EQ(failureOf([&] { return CBool(text); }), FailureCode::TypeMismatch) << text;
}

TEST(CSngTest, ReadsAWholeText)
{
    EXPECT_EQ(CSng("1.5"), 1.5F);
    EXPECT_EQ(CSng(" -2 "), -2.0F);
    EXPECT_EQ(CSng("1e3"), 1000.0F);
    EXPECT_EQ(CSng("1D-1"), 0.1F);
    EXPECT_EQ(CSng(".5"), 0.5F);
    EXPECT_EQ(CSng("5."), 5.0F);
    EXPECT_EQ(CSng("+.5"), 0.5F);
    for (const char* text : {"", "1,5", "1.5x", "x", "1 5", ".", "e5", "1.2.3"})
        EXPECT_EQ(failureOf([&] { return CSng(text); }), FailureCode::TypeMismatch) << text;
    EXPECT_EQ(failureOf([] { return CSng("1e39"); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([] { return CSng("1e400"); }), FailureCode::Overflow);
}

TEST(IsNumericTest, LooksAtTheWholeText)
{
    for (const char* text : {"1", "-1.5", " 7 ", "1e3", "&hFF", "&o17"})
        EXPECT_TRUE(IsNumeric(text)) << text;
    for (const char* text : {"", "1x", "x", "&h", "&o8", "1e400", "one"})
        EXPECT_FALSE(IsNumeric(text)) << text;
}

TEST(FormatZerosTest, FillsAndNeverCuts)
{
    EXPECT_EQ(formatZeros(0, 2), "00");
    EXPECT_EQ(formatZeros(7, 3), "007");
    EXPECT_EQ(formatZeros(123, 2), "123");
    EXPECT_EQ(formatZeros(-5, 2), "-05");
    EXPECT_EQ(formatZeros(-123, 2), "-123");
    EXPECT_EQ(formatZeros(std::numeric_limits<Int32>::min(), 2), "-2147483648");
    EXPECT_EQ(formatZeros(5, 0), "5");
}

TEST(AscTest, GivesTheCodeOfTheFirstCharacter)
{
    EXPECT_EQ(Asc("A"), 65);
    EXPECT_EQ(Asc("AB"), 65);
    EXPECT_EQ(Asc("\xFF"), 255);
    EXPECT_EQ(Asc(std::string("\0", 1)), 0);
    EXPECT_EQ(failureOf([] { return Asc(""); }), kBadCall);
    for (Int16 code = 0; code < 256; ++code)
        EXPECT_EQ(Asc(Chr(code)), code);
}

TEST(TrimTest, TakesBlanksAlone)
{
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\ta\r\n"), "\ta\r\n");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
}

TEST(MidTest, GivesWhatThereIs)
{
    EXPECT_EQ(Mid("abcdef", 2, 3), "bcd");
    EXPECT_EQ(Mid("abcdef", 5, 10), "ef");
    EXPECT_EQ(Mid("abcdef", 6, 1), "f");
    EXPECT_EQ(Mid("abcdef", 7, 1), "");
    EXPECT_EQ(Mid("abcdef", 100, 1), "");
    EXPECT_EQ(Mid("abcdef", 1, 0), "");
    EXPECT_EQ(Mid("abcdef", 1, std::numeric_limits<Int32>::max()), "abcdef");
    EXPECT_EQ(failureOf([] { return Mid("abc", 0, 1); }), kBadCall);
    EXPECT_EQ(failureOf([] { return Mid("abc", -1, 1); }), kBadCall);
    EXPECT_EQ(failureOf([] { return Mid("abc", 1, -1); }), kBadCall);
}

TEST(LeftAndRightTest, GiveWhatThereIs)
{
    EXPECT_EQ(Left("abc", 2), "ab");
    EXPECT_EQ(Left("abc", 5), "abc");
    EXPECT_EQ(Left("abc", 0), "");
    EXPECT_EQ(Left("", 3), "");
    EXPECT_EQ(Right("abc", 2), "bc");
    EXPECT_EQ(Right("abc", 5), "abc");
    EXPECT_EQ(Right("abc", 0), "");
    EXPECT_EQ(Right("", 3), "");
    EXPECT_EQ(failureOf([] { return Left("abc", -1); }), kBadCall);
    EXPECT_EQ(failureOf([] { return Right("abc", -1); }), kBadCall);
}

TEST(SplitTest, GivesThePiecesBetweenTheSeparators)
{
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(split("a,b,c", ','), (Pieces{"a", "b", "c"}));
    EXPECT_EQ(split("a", ','), (Pieces{"a"}));
    EXPECT_EQ(split(",a,,", ','), (Pieces{"", "a", "", ""}));
    EXPECT_EQ(split(",", ','), (Pieces{"", ""}));
    EXPECT_EQ(split("", ','), Pieces{});
}

TEST(ReplaceAllTest, GoesFromLeftToRightOverTheOriginal)
{
    EXPECT_EQ(replaceAll("a~~b~~", "~~", "\r\n"), "a\r\nb\r\n");
    EXPECT_EQ(replaceAll("~~~", "~~", "-"), "-~");
    EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(replaceAll("", "a", "x"), "");
    EXPECT_EQ(replaceAll("abc", "abc", ""), "");
}

TEST(CaseTest, KnowsAsciiLetters)
{
    EXPECT_TRUE(equalNoCase("Abc", "aBC"));
    EXPECT_FALSE(equalNoCase("Abc", "aBCd"));
    EXPECT_FALSE(equalNoCase("[", "{"));
    EXPECT_EQ(compareNoCase("a", "B"), -1);
    EXPECT_EQ(compareNoCase("b", "A"), 1);
    EXPECT_EQ(compareNoCase("ab", "A"), 1);
    EXPECT_EQ(compareNoCase("a", "AB"), -1);
    EXPECT_EQ(compareNoCase("AB", "ab"), 0);
    EXPECT_EQ(compareNoCase("z", "\xE4"), -1);
    EXPECT_EQ(lowerCase("AbZ[@"), "abz[@");
    EXPECT_EQ(upperCase("aBz{`"), "ABZ{`");
}

} // namespace
} // namespace kel::test
