// SPDX-License-Identifier: MIT
#include "failure/guarded.h"
#include "tests/failure/FailureTest.h"
#include "types/Arrays.h"

#include <new>

namespace kel::test {
namespace {

using Guarded = FailureTest;

TEST_F(Guarded, LetsABodyRunWithoutAReport)
{
    const auto oError = registered();
    int runs = 0;
    guarded("KELReader81 - basRead.ReaderRead", [&] { ++runs; });
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(oError->calls.empty());
}

TEST_F(Guarded, ReportsARunTimeFailureAndKeepsTheResultSoFar)
{
    const auto oError = registered();
    Boolean bResult;
    int failingLine = 0;
    guarded("KELReader81 - basRead.ReaderRead", [&] {
        bResult = True;
        Array1<Int16> iArr(1, 3);
        failingLine = __LINE__ + 1;
        iArr(4) = 1;
        bResult = False;
    });
    EXPECT_EQ(bResult, True);
    ASSERT_EQ(oError->reports.size(), 1U);
    const ErrorReport& seen = oError->reports[0];
    EXPECT_EQ(seen.LineNumber, failingLine);
    EXPECT_EQ(seen.ErrorNumber, 9);
    EXPECT_EQ(seen.ErrorType, 0);
    EXPECT_EQ(seen.ErrorDescription, "Subscript out of range");
    EXPECT_EQ(seen.ErrorSource, "basRead.ReaderRead, statement " + std::to_string(failingLine));
    EXPECT_EQ(seen.ErrorTitle + seen.ButtonText1 + seen.ButtonText2 + seen.ButtonText3 + seen.VariableText1 +
                  seen.VariableText2 + seen.VariableText3,
              "");
    EXPECT_EQ(seen.ButtonDefault, 1);
    EXPECT_EQ(seen.ShowHelp, True);
    EXPECT_FALSE(seen.vSilent.has_value());
}

TEST_F(Guarded, ShowsABoxWithoutAnErrorObject)
{
    const RuntimeFailure failure(8020, "Error reading comm device");
    guarded("KELReader81 - basScantron.ReadPageST", [&] { throw failure; });
    EXPECT_EQ(boxes(), (std::vector{reportBox("Failure 8020: Error reading comm device\r\nin basScantron.ReadPageST, "
                                              "statement " +
                                              std::to_string(failure.where().line()))}));
}

TEST_F(Guarded, TellsItsOwnLineForAFailureInAnotherFile)
{
    const auto oError = registered();
    guarded("KELReader81 - m.p", [] { static_cast<void>(std::vector<int>().at(7)); });
    const Int32 procedure = __LINE__ - 1;
    guarded(
        "KELReader81 - m.p", [] { static_cast<void>(std::vector<int>().at(7)); },
        [](const RuntimeFailure&) { return false; });
    ASSERT_EQ(oError->reports.size(), 2U);
    EXPECT_EQ(oError->reports[0].ErrorSource, "m.p, statement " + std::to_string(procedure));
    EXPECT_EQ(oError->reports[1].LineNumber, procedure + 2);
}

TEST_F(Guarded, ReportsOtherExceptionsUnderNumbersOfTheirOwn)
{
    const auto oError = registered();
    guarded("KELReader81 - m.p", [] { throw std::bad_alloc(); });
    guarded("KELReader81 - m.p", [] { throw std::runtime_error("strange"); });
    ASSERT_EQ(oError->reports.size(), 2U);
    EXPECT_EQ(oError->reports[0].ErrorNumber, 7);
    EXPECT_EQ(oError->reports[0].ErrorDescription, "Out of memory");
    EXPECT_EQ(oError->reports[1].ErrorNumber, 51);
    EXPECT_EQ(oError->reports[1].ErrorDescription, "strange");
}

TEST_F(Guarded, IsReportedOnceByTheInnermostGuard)
{
    const auto oError = registered();
    bool wentOn = false;
    guarded("KELReader81 - outer.p", [&] {
        guarded("KELReader81 - inner.p", [] { throw RuntimeFailure(FailureCode::Overflow); });
        wentOn = true;
    });
    EXPECT_TRUE(wentOn);
    ASSERT_EQ(oError->reports.size(), 1U);
    EXPECT_TRUE(oError->reports[0].ErrorSource.starts_with("inner.p"));
}

TEST_F(Guarded, AsksWhoWantsToDealWithAFailureFirst)
{
    const auto oError = registered();
    int asked = 0;
    guarded(
        "KELReader81 - m.p", [] { throw RuntimeFailure(FailureCode::FileNotFound); },
        [&](const RuntimeFailure& failure) {
            ++asked;
            return failure.code() == FailureCode::FileNotFound;
        });
    EXPECT_TRUE(oError->reports.empty());
    guarded(
        "KELReader81 - m.p", [] { throw RuntimeFailure(FailureCode::Overflow); },
        [&](const RuntimeFailure& failure) {
            ++asked;
            return failure.code() == FailureCode::FileNotFound;
        });
    EXPECT_EQ(asked, 2);
    ASSERT_EQ(oError->reports.size(), 1U);
    EXPECT_EQ(oError->reports[0].ErrorNumber, 6);
}

TEST_F(Guarded, LetsAFailureOfTheOneWhoWantedToDealWithItGoOnToTheCaller)
{
    const auto oError = registered();
    guarded("KELReader81 - caller.p", [] {
        guarded(
            "KELReader81 - m.p", [] { throw RuntimeFailure(FailureCode::Overflow); },
            [](const RuntimeFailure&) -> bool { throw RuntimeFailure(FailureCode::TypeMismatch); });
    });
    ASSERT_EQ(oError->reports.size(), 1U);
    EXPECT_EQ(oError->reports[0].ErrorNumber, 13);
    EXPECT_TRUE(oError->reports[0].ErrorSource.starts_with("caller.p"));
    ASSERT_EQ(boxes().size(), 1U);
    EXPECT_EQ(boxes()[0].title, "Application Error");
}

TEST_F(Guarded, MayBeToldToKeepQuiet)
{
    const auto oError = registered();
    EXPECT_TRUE(ignoringFailures([] {}));
    EXPECT_FALSE(ignoringFailures([] { throw RuntimeFailure(FailureCode::Overflow); }));
    EXPECT_FALSE(ignoringFailures([] { throw std::bad_alloc(); }));
    EXPECT_TRUE(oError->calls.empty());
    EXPECT_TRUE(boxes().empty());
}

} // namespace
} // namespace kel::test
