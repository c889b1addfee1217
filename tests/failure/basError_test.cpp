// SPDX-License-Identifier: MIT
#include "tests/failure/FailureTest.h"

#include <atomic>
#include <new>
#include <thread>

namespace kel::test {
namespace {

using DisplayErrorTest = FailureTest;

ErrorReport readerFault()
{
    ErrorReport report;
    report.ErrorNumber = 17;
    report.ErrorDescription = "The paper is jammed.";
    report.ErrorSource = "KELReader81 - basScantron.CheckStatusST";
    report.ErrorTitle = "Scanmark";
    return report;
}

TEST_F(DisplayErrorTest, ShowsABoxWithoutAnErrorObject)
{
    EXPECT_EQ(DisplayError(readerFault()), 0);
    EXPECT_EQ(boxes(), (std::vector{reportBox("Failure 17: The paper is jammed.\r\nin basScantron.CheckStatusST")}));
}

TEST_F(DisplayErrorTest, PutsTheLineNumberBehindTheSourceOnlyIfThereIsOne)
{
    ErrorReport report = readerFault();
    report.LineNumber = 1200;
    DisplayError(report);
    report.LineNumber = -1;
    DisplayError(report);
    EXPECT_EQ(boxes(), (std::vector{reportBox("Failure 17: The paper is jammed.\r\n"
                                              "in basScantron.CheckStatusST, statement 1200"),
                                    reportBox("Failure 17: The paper is jammed.\r\nin basScantron.CheckStatusST")}));
}

TEST_F(DisplayErrorTest, RemovesOnlyThePrefixOfTheComponent)
{
    const auto oError = registered();
    for (const char* source : {"KELReader81 - basRead.ReaderInit", "KELReader80 - basRead.ReaderInit", "Host", "",
                               "KELReader81", "KELReader81 -basRead", "My KELReader81 - basRead.ReaderInit",
                               "kelreader81 - basRead.ReaderInit", "KELReader81 - KELReader81 - basRead.ReaderInit"}) {
        ErrorReport report = readerFault();
        report.ErrorSource = source;
        DisplayError(report);
    }
    std::vector<std::string> sources;
    for (const auto& report : oError->reports)
        sources.push_back(report.ErrorSource);
    EXPECT_EQ(sources,
              (std::vector<std::string>{"basRead.ReaderInit", "KELReader80 - basRead.ReaderInit", "Host", "",
                                        "KELReader81", "KELReader81 -basRead", "My KELReader81 - basRead.ReaderInit",
                                        "kelreader81 - basRead.ReaderInit", "KELReader81 - basRead.ReaderInit"}));
}

TEST_F(DisplayErrorTest, SetsTheMousePointerToTheDefaultFirst)
{
    const auto oError = registered();
    Int32 pointerAtGet = -1;
    oError->failOnGet = [&] { pointerAtGet = platform.screen_.pointer; };
    DisplayError(readerFault());
    EXPECT_EQ(pointerAtGet, kMousePointerDefault);
    EXPECT_EQ(platform.screen_.pointers, (std::vector<Int32>{kMousePointerDefault}));
    setErrorObject(nullptr);
    DisplayError(readerFault());
    EXPECT_EQ(platform.screen_.pointers, (std::vector<Int32>{kMousePointerDefault, kMousePointerDefault}));
}

TEST_F(DisplayErrorTest, HandsEveryArgumentToTheErrorObject)
{
    const auto oError = registered();
    ErrorReport report;
    report.LineNumber = 42;
    report.ErrorNumber = 9;
    report.ErrorType = kErrorTypeRunTime;
    report.ErrorDescription = "description";
    report.ErrorSource = "KELReader81 - basRead.ReaderRead";
    report.ErrorTitle = "title";
    report.ButtonText1 = "one";
    report.ButtonText2 = "two";
    report.ButtonText3 = "three";
    report.ButtonDefault = 2;
    report.VariableText1 = "v1";
    report.VariableText2 = "v2";
    report.VariableText3 = "v3";
    report.ShowHelp = False;
    oError->answer = 3;
    EXPECT_EQ(DisplayError(report), 3);
    ASSERT_EQ(oError->reports.size(), 1U);
    const ErrorReport& seen = oError->reports[0];
    EXPECT_EQ(seen.ErrorNumber, 9);
    EXPECT_EQ(seen.ErrorType, 0);
    EXPECT_EQ(seen.ErrorDescription, "description");
    EXPECT_EQ(seen.ErrorSource, "basRead.ReaderRead, statement 42");
    EXPECT_EQ(seen.ErrorTitle, "title");
    EXPECT_EQ(seen.ButtonText1, "one");
    EXPECT_EQ(seen.ButtonText2, "two");
    EXPECT_EQ(seen.ButtonText3, "three");
    EXPECT_EQ(seen.ButtonDefault, 2);
    EXPECT_EQ(seen.VariableText1, "v1");
    EXPECT_EQ(seen.VariableText2, "v2");
    EXPECT_EQ(seen.VariableText3, "v3");
    EXPECT_EQ(seen.ShowHelp, False);
    EXPECT_TRUE(boxes().empty());
}

TEST_F(DisplayErrorTest, ReadsAndRestoresSilentAroundEachReport)
{
    const auto oError = registered();
    DisplayError(readerFault());
    EXPECT_EQ(oError->calls, (std::vector<std::string>{"get Silent", "RaiseError", "set Silent 0"}));
    oError->calls.clear();
    oError->silent = True;
    DisplayError(readerFault());
    EXPECT_EQ(oError->calls, (std::vector<std::string>{"get Silent", "RaiseError", "set Silent -1"}));
    EXPECT_EQ(oError->silentAtReport, True);
}

TEST_F(DisplayErrorTest, OverridesSilentForOneReport)
{
    const auto oError = registered();
    ErrorReport report = readerFault();
    report.vSilent = True;
    DisplayError(report);
    EXPECT_EQ(oError->calls, (std::vector<std::string>{"get Silent", "set Silent -1", "RaiseError", "set Silent 0"}));
    EXPECT_EQ(oError->silentAtReport, True);
    EXPECT_EQ(oError->silent, False);
    oError->calls.clear();
    oError->silent = True;
    report.vSilent = False;
    DisplayError(report);
    EXPECT_EQ(oError->calls, (std::vector<std::string>{"get Silent", "set Silent 0", "RaiseError", "set Silent -1"}));
    EXPECT_EQ(oError->silent, True);
}

TEST_F(DisplayErrorTest, TakesAnyValueButZeroForSilentAsTrue)
{
    const auto oError = registered();
    ErrorReport report = readerFault();
    report.vSilent = Boolean::fromBits(7);
    DisplayError(report);
    EXPECT_EQ(oError->silentAtReport, True);
}

TEST_F(DisplayErrorTest, GivesWhatTheErrorObjectAnsweredIn16Bits)
{
    const auto oError = registered();
    for (const Int32 answer : {1, 0, -1, 32767, -32768}) {
        oError->answer = answer;
        EXPECT_EQ(DisplayError(readerFault()), answer);
    }
    EXPECT_TRUE(boxes().empty());
}

TEST_F(DisplayErrorTest, TellsOfAnAnswerThatDoesNotFit)
{
    const auto oError = registered();
    oError->answer = 32768;
    EXPECT_EQ(DisplayError(readerFault()), 0);
    EXPECT_EQ(boxes(), (std::vector{reportBox("Could not report. (#6) Overflow\r\nLost: Failure 17: The paper is "
                                              "jammed.\r\nin basScantron.CheckStatusST")}));
}

TEST_F(DisplayErrorTest, TellsOfBothFailuresWhenTheErrorObjectFails)
{
    const auto oError = registered();
    oError->answer = 5;
    oError->failOnRaise = [] { throw RuntimeFailure(440, "Automation error"); };
    ErrorReport report = readerFault();
    report.LineNumber = 7;
    EXPECT_EQ(DisplayError(report), 0);
    EXPECT_EQ(boxes(),
              (std::vector{reportBox("Could not report. (#440) Automation error\r\nLost: Failure 17: The paper is "
                                     "jammed.\r\nin basScantron.CheckStatusST, statement 7")}));
    oError->failOnRaise = nullptr;
    EXPECT_EQ(DisplayError(report), 5);
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DisplayErrorTest, TakesAnyStandardExceptionOfTheErrorObjectForAFailure)
{
    const auto oError = registered();
    oError->failOnRaise = [] { throw std::invalid_argument("no such form"); };
    EXPECT_EQ(DisplayError(readerFault()), 0);
    oError->failOnRaise = [] { throw std::bad_alloc(); };
    EXPECT_EQ(DisplayError(readerFault()), 0);
    const std::string lost = "\r\nLost: Failure 17: The paper is jammed.\r\nin basScantron.CheckStatusST";
    EXPECT_EQ(boxes(), (std::vector{reportBox("Could not report. (#51) no such form" + lost),
                                    reportBox("Could not report. (#7) Out of memory" + lost)}));
}

TEST_F(DisplayErrorTest, TellsOfASilentThatCannotBeRead)
{
    const auto oError = registered();
    oError->failOnGet = [] { throw RuntimeFailure(FailureCode::MemberNotSupported); };
    EXPECT_EQ(DisplayError(readerFault()), 0);
    EXPECT_EQ(oError->calls, (std::vector<std::string>{"get Silent"}));
    EXPECT_EQ(boxes(), (std::vector{reportBox("Could not report. (#438) Object doesn't support this property or method"
                                              "\r\nLost: Failure 17: The paper is jammed.\r\n"
                                              "in basScantron.CheckStatusST")}));
}

TEST_F(DisplayErrorTest, KeepsTheAnswerWhenSilentCannotBePutBack)
{
    const auto oError = registered();
    oError->answer = 2;
    oError->failOnSet = [] { throw RuntimeFailure(FailureCode::AutomationError); };
    EXPECT_EQ(DisplayError(readerFault()), 2);
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DisplayErrorTest, PutsSilentBackWhenTheReportFails)
{
    const auto oError = registered();
    oError->failOnRaise = [] { throw RuntimeFailure(FailureCode::AutomationError); };
    ErrorReport report = readerFault();
    report.vSilent = True;
    DisplayError(report);
    EXPECT_EQ(oError->calls, (std::vector<std::string>{"get Silent", "set Silent -1", "RaiseError", "set Silent 0"}));
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DisplayErrorTest, ShowsOneBoxWhenSilentCannotBeSetAtAll)
{
    const auto oError = registered();
    oError->failOnSet = [] { throw RuntimeFailure(FailureCode::AutomationError); };
    ErrorReport report = readerFault();
    report.vSilent = True;
    EXPECT_EQ(DisplayError(report), 0);
    EXPECT_TRUE(oError->reports.empty());
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DisplayErrorTest, NeverFailsEvenIfNoBoxCanBeShown)
{
    platform.screen_.onBox = [] { throw std::runtime_error("no screen"); };
    EXPECT_EQ(DisplayError(readerFault()), 0);
    const auto oError = registered();
    oError->failOnRaise = [] { throw RuntimeFailure(FailureCode::AutomationError); };
    EXPECT_EQ(DisplayError(readerFault()), 0);
}

TEST_F(DisplayErrorTest, LetsTheErrorObjectBeTakenAwayDuringAReport)
{
    auto oError = registered();
    const std::weak_ptr<RecordingErrorObject> watched = oError;
    oError->answer = 4;
    oError->failOnRaise = [] { setErrorObject(nullptr); };
    oError.reset();
    EXPECT_EQ(DisplayError(readerFault()), 4);
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(boxes().empty());
    DisplayError(readerFault());
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DisplayErrorTest, AllowsAReportWithinAReport)
{
    const auto oError = registered();
    oError->failOnRaise = [&] {
        oError->failOnRaise = nullptr;
        DisplayError(readerFault());
    };
    DisplayError(readerFault());
    EXPECT_EQ(oError->reports.size(), 2U);
}

TEST_F(DisplayErrorTest, IsRoutedByTheLastErrorObjectOfTheProcess)
{
    const auto first = registered();
    const auto second = std::make_shared<RecordingErrorObject>();
    EXPECT_EQ(setErrorObject(second), True);
    EXPECT_EQ(errorObject(), second);
    DisplayError(readerFault());
    EXPECT_TRUE(first->reports.empty());
    EXPECT_EQ(second->reports.size(), 1U);
    EXPECT_EQ(setErrorObject(nullptr), False);
    EXPECT_EQ(errorObject(), nullptr);
    DisplayError(readerFault());
    EXPECT_EQ(second->reports.size(), 1U);
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(DisplayErrorTest, MayCallBackAtTheEndOfAnErrorObject)
{
    class Last : public ErrorObject {
    public:
        explicit Last(bool& sawNothing) : sawNothing_(sawNothing) {}
        ~Last() override { sawNothing_ = errorObject() == nullptr; }
        Int32 RaiseError(const ErrorReport&) override { return 0; }

    private:
        bool& sawNothing_;
    };
    bool sawNothing = false;
    setErrorObject(std::make_shared<Last>(sawNothing));
    setErrorObject(nullptr);
    EXPECT_TRUE(sawNothing);
}

TEST_F(DisplayErrorTest, CanBeUsedFromSeveralThreads)
{
    class Counting : public ErrorObject {
    public:
        Int32 RaiseError(const ErrorReport&) override { return ++count; }
        Boolean Silent() override { return False; }
        void Silent(Boolean) override {}
        std::atomic<Int32> count = 0;
    };
    const auto counting = std::make_shared<Counting>();
    setErrorObject(counting);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            RecordingPlatform own;
            for (int k = 0; k < 200; ++k) {
                setErrorObject(counting);
                DisplayError(readerFault());
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(counting->count, 800);
}

TEST_F(DisplayErrorTest, OfANumberedFaultHasTheMessagesNumberOrTheReadersCode)
{
    const auto oError = registered();
    reportNumberedFault("KELReader81 - basNCS.CheckStatusNCS", TextNumber(246), TextNumber(250));
    reportNumberedFault("KELReader81 - basApperson.ReadPageAPGradeMaster", 206, "jam", "Not read");
    ASSERT_EQ(oError->reports.size(), 2U);
    EXPECT_EQ(oError->reports[0].ErrorNumber, 246);
    EXPECT_EQ(oError->reports[0].ErrorDescription, VBLM_RTString(TextNumber(246)));
    EXPECT_EQ(oError->reports[0].ErrorTitle, VBLM_RTString(TextNumber(250)));
    EXPECT_EQ(oError->reports[1].ErrorNumber, 206);
    EXPECT_EQ(oError->reports[1].ErrorDescription, "jam");
    for (const ErrorReport& report : oError->reports) {
        EXPECT_EQ(report.LineNumber, 0);
        EXPECT_EQ(report.ErrorType, 2);
    }
}

TEST_F(DisplayErrorTest, OfAReaderFaultHasType2AndNoNumber)
{
    const auto oError = registered();
    reportReaderFault("KELReader81 - basScantron.CheckStatusST", "jam", "Scanmark");
    reportReaderFault("KELReader81 - basRead.ReaderInit", TextNumber(246), TextNumber(250));
    ASSERT_EQ(oError->reports.size(), 2U);
    const ErrorReport& seen = oError->reports[0];
    EXPECT_EQ(seen.LineNumber, 0);
    EXPECT_EQ(seen.ErrorNumber, 0);
    EXPECT_EQ(seen.ErrorType, 2);
    EXPECT_EQ(seen.ErrorDescription, "jam");
    EXPECT_EQ(seen.ErrorSource, "basScantron.CheckStatusST");
    EXPECT_EQ(seen.ErrorTitle, "Scanmark");
    EXPECT_EQ(seen.ButtonText1 + seen.ButtonText2 + seen.ButtonText3, "");
    EXPECT_EQ(seen.ButtonDefault, 1);
    EXPECT_EQ(seen.VariableText1 + seen.VariableText2 + seen.VariableText3, "");
    EXPECT_EQ(seen.ShowHelp, True);
    EXPECT_FALSE(seen.vSilent.has_value());
    EXPECT_EQ(oError->reports[1].ErrorDescription, "Failure ");
    EXPECT_EQ(oError->reports[1].ErrorTitle, "Reader Failure");
}

} // namespace
} // namespace kel::test
