// SPDX-License-Identifier: MIT
#include "AppersonTest.h"

namespace kel::apperson_test {
namespace {

using Commands = std::vector<std::string>;

struct Start {
    const char* name;
    kelReaderType model;
    bool grades;
    Commands commands;
};

class AppersonStart : public AppersonTest, public testing::WithParamInterface<Start> {};

TEST_P(AppersonStart, SaysItsCommandsInOrder)
{
    play(GetParam().model, accepts(GetParam().commands));
    session->settings().ReaderGrade = GetParam().grades;
    EXPECT_EQ(InitReaderAP(*session), True);
    EXPECT_THAT(told(), IsEmpty());
    // Each reply has been followed until the reader was silent for a pause.
    EXPECT_EQ(pauses(), std::vector<Int32>(GetParam().commands.size(), kPause));
    expectPlayed();
}

INSTANTIATE_TEST_SUITE_P(
    Models, AppersonStart,
    testing::Values(
        Start{"AdvantageLink", kelReaderTypeAppersonAdvantageLink, false, {"T1\r"}},
        Start{"AdvantageLinkGrading", kelReaderTypeAppersonAdvantageLink, true, {}},
        Start{"GradeMaster", kelReaderTypeAppersonGradeMaster, false, {"A1\r", "S8\r", "M3\r"}},
        Start{"GradeMasterGrading", kelReaderTypeAppersonGradeMaster, true, {"S8\r", "M3\r"}},
        Start{"BenchMark", kelReaderTypeAppersonBenchMark3000, false, {"R1", "M6", "I1", "A9", "R6", "S1", "M0"}},
        Start{"BenchMarkGrading", kelReaderTypeAppersonBenchMark3000, true, {"R1", "I1", "A9", "R6", "S1", "M0"}},
        Start{"Advantage1200", kelReaderTypeAppersonAdvantage1200, false, {"R1", "M6", "M0", "M8"}},
        Start{"Advantage1200Grading", kelReaderTypeAppersonAdvantage1200, true, {"R1", "M0", "M8"}}),
    [](const auto& start) { return std::string(start.param.name); });

/// A command of the start, the ones before it, and the numbers of the texts for its failures.
struct Step {
    const char* name;
    kelReaderType model;
    Commands before;
    std::string command;
    Int32 cancelled;
    Int32 timedOut; // 0 for the fixed words
    Int32 refused;
};

class AppersonStartFailure : public AppersonTest, public testing::WithParamInterface<Step> {
protected:
    /// Starts with a reader that answers the step's command with `answer`.
    void start(const std::string& answer)
    {
        play(GetParam().model, accepts(GetParam().before) + "> " + transcriptBytes(GetParam().command) + "\n" + answer);
        session->settings().ReaderGrade = False;
    }
};

TEST_P(AppersonStartFailure, ACancelIsReported)
{
    start("");
    cancelAfter(5s);
    EXPECT_EQ(InitReaderAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(fault("InitReaderAP", GetParam().cancelled, 188)));
    EXPECT_EQ(session->fComm().tmrScan().Enabled(), True); // a wait that is left early leaves it running
    expectPlayed();
}

TEST_P(AppersonStartFailure, ASilentReaderIsReported)
{
    start("");
    EXPECT_EQ(InitReaderAP(*session), False);
    if (GetParam().timedOut != 0)
        EXPECT_THAT(told(), ElementsAre(fault("InitReaderAP", GetParam().timedOut, 188)));
    else
        EXPECT_THAT(told(), ElementsAre(Told{"basApperson.InitReaderAP", 0, 2,
                                             "There was no response from Apperson scanner while initializing.",
                                             "Initialize Error"}));
    EXPECT_GE(elapsed(), std::chrono::milliseconds(kTimeout));
    expectPlayed();
}

TEST_P(AppersonStartFailure, ARefusalIsReported)
{
    for (const char* answer : {"\"NO\"", "\"ok\"", "\"KO\"", "\" OK\"", "\"O\"", "00"}) {
        start("< " + std::string(answer));
        EXPECT_EQ(InitReaderAP(*session), False) << answer;
        EXPECT_THAT(told(), ElementsAre(fault("InitReaderAP", GetParam().refused, 188))) << answer;
        expectPlayed();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Steps, AppersonStartFailure,
    testing::Values(Step{"T1", kLink, {}, "T1\r", 192, 190, 192}, //
                    Step{"A1", kMaster, {}, "A1\r", 192, 190, 192},
                    Step{"S8", kMaster, {"A1\r"}, "S8\r", 192, 190, 192},
                    Step{"M3", kMaster, {"A1\r", "S8\r"}, "M3\r", 192, 190, 186},
                    Step{"BenchR1", kBench, {}, "R1", 186, 190, 186}, //
                    Step{"BenchM6", kBench, {"R1"}, "M6", 186, 0, 186},
                    Step{"BenchI1", kBench, {"R1", "M6"}, "I1", 186, 190, 186},
                    Step{"BenchA9", kBench, {"R1", "M6", "I1"}, "A9", 186, 190, 186},
                    Step{"BenchR6", kBench, {"R1", "M6", "I1", "A9"}, "R6", 186, 190, 186},
                    Step{"BenchS1", kBench, {"R1", "M6", "I1", "A9", "R6"}, "S1", 186, 190, 186},
                    Step{"BenchM0", kBench, {"R1", "M6", "I1", "A9", "R6", "S1"}, "M0", 186, 190, 186},
                    Step{"M6", k1200, {"R1"}, "M6", 186, 0, 186}, Step{"M0", k1200, {"R1", "M6"}, "M0", 186, 190, 186},
                    Step{"M8", k1200, {"R1", "M6", "M0"}, "M8", 186, 190, 186}),
    [](const auto& step) { return std::string(step.param.name); });

TEST_F(AppersonTest, OnlyTheTwoLettersOfAReplyCount)
{
    play(kLink, R"(> "T1" 0D
                   < "OK but something is odd" 0D 0A)");
    EXPECT_EQ(InitReaderAP(*session), True);
    EXPECT_EQ(waiting(), 0);
    expectPlayed();
}

TEST_F(AppersonTest, AReplyMayComeInPiecesWithinThePause)
{
    play(kLink, R"(> "T1" 0D
                   < "O"
                   + 15
                   < "K"
                   + 15
                   < 0D)");
    EXPECT_EQ(InitReaderAP(*session), True);
    EXPECT_THAT(pauses(), ElementsAre(kPause, kPause, kPause));
    EXPECT_EQ(waiting(), 0);
    expectPlayed();
}

TEST_F(AppersonTest, ASlowerReplyIsLeftToTheNextCommand)
{
    UntroubledReader reader({{5ms, 'O'}, {5ms, 'K'}, {40ms, 'O'}, {40ms, 'K'}});
    playWith(k1200, reader);
    // The second "OK" belongs to "R1" too and passes for the answer to "M6"; then nothing is left for "M0".
    EXPECT_EQ(InitReaderAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(fault("InitReaderAP", 190, 188)));
    EXPECT_EQ(machine.line(1).sent(), "R1M6M0");
    session->fComm().mscComm().PortOpen(False);
}

TEST_F(AppersonTest, TheReplyToM3IsReadToItsFourthByte)
{
    play(kMaster, accepts({"A1\r", "S8\r"}) + R"(> "M3" 0D
                                                 < "OKAYREST")");
    EXPECT_EQ(InitReaderAP(*session), True);
    EXPECT_EQ(waiting(), 4);
    EXPECT_EQ(session->fComm().mscComm().Input(), "R"); // one byte at a time
    expectPlayed();
}

TEST_F(AppersonTest, ABrokenLineIsReportedWithItsNumber)
{
    play(kLink, R"(> "T1" 0D
                   ! unplug)");
    EXPECT_EQ(InitReaderAP(*session), False);
    ASSERT_EQ(told().size(), 1U);
    EXPECT_EQ(told()[0].source, "basApperson.InitReaderAP");
    EXPECT_EQ(told()[0].number, 8020);
    EXPECT_EQ(told()[0].type, 0);
}

struct End {
    const char* name;
    kelReaderType model;
    std::string command;
};

class AppersonEnd : public AppersonTest, public testing::WithParamInterface<End> {
protected:
    void end(const std::string& answer)
    {
        play(GetParam().model, "> " + transcriptBytes(GetParam().command) + "\n" + answer);
    }
};

TEST_P(AppersonEnd, IsTrueWhenTheReaderSaysSo)
{
    end("+ 3\n< \"OK\"");
    bAPReaderStarted = True;
    EXPECT_EQ(CloseReaderAP(*session), True);
    EXPECT_EQ(bAPReaderStarted, False);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(pauses(), IsEmpty());
    expectPlayed();
}

TEST_P(AppersonEnd, AnotherAnswerIsFalseAndNotReported)
{
    end("+ 3\n< \"NO\"");
    EXPECT_EQ(CloseReaderAP(*session), False);
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

TEST_P(AppersonEnd, TheReplyIsTakenAsFarAsItIsThere)
{
    end("< \"O\"\n+ 2\n< \"K\"");
    EXPECT_EQ(CloseReaderAP(*session), False);
    EXPECT_THAT(pauses(), IsEmpty());
}

TEST_P(AppersonEnd, ACancelDoesNotEndTheWait)
{
    end("+ 4000\n< \"OK\"");
    session->CancelScan(True);
    EXPECT_EQ(CloseReaderAP(*session), True);
    EXPECT_GE(elapsed(), 4s);
    expectPlayed();
}

TEST_P(AppersonEnd, ASilentReaderIsReported)
{
    end("");
    bAPReaderStarted = True;
    EXPECT_EQ(CloseReaderAP(*session), False);
    EXPECT_EQ(bAPReaderStarted, False);
    EXPECT_THAT(told(), ElementsAre(fault("CloseReaderAP", 182, 184)));
    expectPlayed();
}

INSTANTIATE_TEST_SUITE_P(Models, AppersonEnd,
                         testing::Values(End{"AdvantageLink", kLink, "T2\r"}, End{"GradeMaster", kMaster, "S9\r"},
                                         End{"BenchMark", kBench, "R1"}, End{"Advantage1200", k1200, "R1"}),
                         [](const auto& end) { return std::string(end.param.name); });

TEST_F(AppersonTest, OnlyTheBenchMarkIsToldOfASheetsWay)
{
    for (const kelReaderType model : {kLink, kMaster, k1200}) {
        play(model, "");
        EXPECT_EQ(EjectPageAP(*session), False);
        EXPECT_EQ(RejectPageAP(*session), False);
        expectPlayed();
    }
    play(kBench, R"(> "A6"
                    > "A7")");
    EXPECT_EQ(EjectPageAP(*session), False);
    EXPECT_EQ(RejectPageAP(*session), False);
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

TEST_F(AppersonTest, ReturnErrorGivesTheTextOfTheCode)
{
    play(kLink, "");
    EXPECT_EQ(ReturnErrorAP(4), VBLM_RTString(202));
    EXPECT_EQ(ReturnErrorAP(205), VBLM_RTString(220));
    EXPECT_EQ(ReturnErrorAP(209), VBLM_RTString(232));
    EXPECT_NE(VBLM_RTString(202), VBLM_RTString(232)) << "no language file";
}

} // namespace
} // namespace kel::apperson_test
