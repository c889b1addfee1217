// SPDX-License-Identifier: MIT
#include "failure/CommandLineSplit.h"
#include "failure/ExceptionNames.h"
#include "failure/modvbCodeShieldSupport.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(ExceptionNames, NamesTheFaultsOfTheProcessor)
{
    EXPECT_EQ(exceptionName(0x80000001), "Guard Page Violation");
    EXPECT_EQ(exceptionName(0xC0000005), "Access Violation");
    EXPECT_EQ(exceptionName(0xC0000094), "Integer Divide By Zero");
    EXPECT_EQ(exceptionName(0xC000013A), "Control-C Exit");
}

TEST(ExceptionNames, TellsAnUnknownCodeInEightDigits)
{
    EXPECT_EQ(exceptionName(0xE06D7363), "Unknown (&HE06D7363)");
    EXPECT_EQ(exceptionName(0xAB), "Unknown (&H000000AB)");
    EXPECT_EQ(exceptionName(0), "Unknown (&H00000000)");
}

RuntimeFailure filtered(const FaultRecord& record)
{
    try {
        vbcsExceptionFilter(record);
    } catch (const RuntimeFailure& failure) {
        return failure;
    }
}

TEST(ExceptionFilter, MakesARunTimeFailureOfAFault)
{
    const RuntimeFailure failure = filtered({0xC0000005});
    EXPECT_EQ(failure.number(), 10005);
    EXPECT_EQ(failure.text(), "Access Violation");
    EXPECT_EQ(failure.source(), "vbcsExceptionFilter");
    EXPECT_EQ(failure.where().line(), 0U);
}

TEST(ExceptionFilter, MasksTheCodeAndSetsTheBitsOfTenThousand)
{
    EXPECT_EQ(filtered({0xC0000094}).number(), 10132);
    EXPECT_EQ(filtered({0x80000003}).number(), 10003);
    EXPECT_EQ(filtered({0xC000001D}).number(), 10013);
    EXPECT_EQ(filtered({0xE06D7363}).number(), 10099);
}

TEST(ExceptionFilter, GoesToTheInnermostRecord)
{
    const FaultRecord innermost{0xC0000094};
    const FaultRecord middle{0xC0000025, &innermost};
    EXPECT_EQ(filtered({0xC0000005, &middle}).text(), "Integer Divide By Zero");
}

TEST(CommandLineSplit, EndsAProgramAtTheFirstBlank)
{
    EXPECT_EQ(splitCommandLine("host.exe /L=German x").program, "host.exe");
    EXPECT_EQ(splitCommandLine("host.exe /L=German x").arguments, "/L=German x");
    EXPECT_EQ(splitCommandLine("host.exe  two").arguments, " two");
    EXPECT_EQ(splitCommandLine("host.exe").program, "host.exe");
    EXPECT_EQ(splitCommandLine("host.exe").arguments, "");
    EXPECT_EQ(splitCommandLine("").program, "");
    EXPECT_EQ(splitCommandLine("").arguments, "");
}

TEST(CommandLineSplit, EndsAQuotedProgramAtTheNextQuote)
{
    const CommandLineParts parts = splitCommandLine(R"("C:\My Host\host.exe"   a "b c")");
    EXPECT_EQ(parts.program, R"(C:\My Host\host.exe)");
    EXPECT_EQ(parts.arguments, R"(a "b c")");
    EXPECT_EQ(splitCommandLine(R"("p")").arguments, "");
    EXPECT_EQ(splitCommandLine(R"("p"x)").arguments, "x");
    EXPECT_EQ(splitCommandLine(R"("never closed")").program, "never closed");
    EXPECT_EQ(splitCommandLine(R"("open)").program, "open");
    EXPECT_EQ(splitCommandLine(R"("open)").arguments, "");
}

TEST(CommandLineSplit, LooksAtTheFirst512Characters)
{
    const std::string line = "p " + std::string(600, 'a');
    EXPECT_EQ(splitCommandLine(line).arguments, std::string(510, 'a'));
    EXPECT_EQ(splitCommandLine("\"" + std::string(600, 'q') + "\" x").program, std::string(511, 'q'));
}

} // namespace
} // namespace kel::test
