// SPDX-License-Identifier: MIT
#include "AppersonTest.h"

#include "contract/AnswerKey.h"

namespace kel::apperson_test {
namespace {

const std::vector<std::string> kFive = {"A", "B", "C", "D", "E"};
const std::string kOK = "+ 3\n< \"OK\"\n";

std::string say(const std::string& bytes)
{
    return "> " + transcriptBytes(bytes) + "\n";
}

class KeyDownload : public AppersonTest {
protected:
    KeyDownload()
    {
        key->FormIDs("0001");
        key->AddQuestion("Question 1", kFive, {"A"});
        key->AddQuestion("Question 2", kFive, {"B,E"});
    }

    [[nodiscard]] Boolean download(kelReaderType model, const std::string& dialogue)
    {
        play(model, dialogue);
        session->AnswerKey(key);
        host->questionsOnPage = questionsOnPage;
        return KeyReaderBenchMark3000Advantage1200(*session);
    }

    std::shared_ptr<AnswerKey> key = std::make_shared<AnswerKey>();
    Int16 questionsOnPage = 0;
};

TEST_F(KeyDownload, Advantage1200WithOnePage)
{
    EXPECT_EQ(download(k1200, say("K70001") + kOK + say("K1") + kOK + say("10000") + say("01001") + say("Q") + kOK +
                                  say("K6") + kOK),
              True);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(host->askedPages, IsEmpty());
    EXPECT_THAT(pauses(), ElementsAre(kPause, kPause, 10, 10, kPause, kPause));
    expectPlayed();
}

TEST_F(KeyDownload, BenchMarkWithOnePage)
{
    // The identifier is not answered.
    EXPECT_EQ(download(kBench, say("K70001") + say("K1") + kOK + say("\x01\x12Q") + kOK + say("K6") + kOK), True);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(pauses(), ElementsAre(kPause, kPause, kPause));
    expectPlayed();
}

TEST_F(KeyDownload, Advantage1200WithTwoPages)
{
    key->FormIDs("0001,0002");
    key->NumberOfPages(2);
    key->AddQuestion("Question 3", kFive, {"C"});
    questionsOnPage = 2;
    EXPECT_EQ(download(k1200, say("K70001") + kOK + say("K80002") + kOK + say("K1") + kOK + say("10000") +
                                  say("01001") + say("00100") + say("Q") + kOK + say("K6") + kOK),
              True);
    EXPECT_THAT(host->askedPages, ElementsAre(1));
    expectPlayed();
}

TEST_F(KeyDownload, ASecondPageWithoutAnswersIsLeftOut)
{
    key->FormIDs("0001,0002");
    key->NumberOfPages(2);
    key->AddQuestion("Question 3", kFive, {""});
    questionsOnPage = 1;
    // The last answer of page 1 is A: there is no "1" from its last character on but for question 2.
    EXPECT_EQ(download(k1200, say("K70001") + kOK + say("K80002") + kOK + say("K1") + kOK + say("10000") +
                                  say("01001") + say("00000") + say("Q") + kOK + say("K6") + kOK),
              True);
    expectPlayed();

    key = std::make_shared<AnswerKey>();
    key->FormIDs("0001,0002");
    key->NumberOfPages(2);
    key->AddQuestion("Question 1", kFive, {"A"});
    key->AddQuestion("Question 2", kFive, {""});
    EXPECT_EQ(download(k1200, say("K70001") + kOK + say("K1") + kOK + say("10000") + say("Q") + kOK + say("K6") + kOK),
              True);
    expectPlayed();
}

TEST_F(KeyDownload, TheSecondIdentifierNeedsASecondPage)
{
    key->FormIDs("0001,0002");
    questionsOnPage = 1;
    EXPECT_EQ(download(k1200, say("K70001") + kOK + say("K1") + kOK + say("10000") + say("01001") + say("Q") + kOK +
                                  say("K6") + kOK),
              True);
    EXPECT_THAT(host->askedPages, ElementsAre(1));
    expectPlayed();
}

TEST_F(KeyDownload, BenchMarkKeyWithTwoIdentifiersLosesItsSecondPage)
{
    key->FormIDs("0001,0002");
    key->NumberOfPages(2);
    questionsOnPage = 1;
    // No mask is the character "1". The key is shorter than five characters a question and so ends twice.
    EXPECT_EQ(download(kBench, say("K70001") + say("K1") + kOK + say("\x01\x12QQ") + kOK + say("K6") + kOK), True);
    expectPlayed();
}

TEST_F(KeyDownload, VersionsFollowOneAnother)
{
    key = std::make_shared<AnswerKey>();
    key->FormIDs("0001");
    key->AddQuestion("Question 1", kFive, {"A", "B", "C"});
    // The answer to a version's pieces is taken for the answer to the next "S".
    EXPECT_EQ(download(k1200, say("S1") + kOK + say("K70001") + kOK + say("K1") + kOK + say("10000") + say("Q") +
                                  say("S2") + kOK + say("K70001") + kOK + say("K1") + kOK + say("01000") + say("Q") +
                                  say("S3") + kOK + say("K70001") + kOK + say("K1") + kOK + say("00100") + say("Q") +
                                  kOK + say("K6") + kOK),
              True);
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

TEST_F(KeyDownload, BenchMarkTakesTheFirstVersion)
{
    key = std::make_shared<AnswerKey>();
    key->FormIDs("0001");
    key->AddQuestion("Question 1", kFive, {"A", "B", "C", "D"});
    EXPECT_EQ(download(kBench, say("K70001") + say("K1") + kOK + say("\x01Q") + kOK + say("K6") + kOK), True);
    expectPlayed();
}

TEST_F(KeyDownload, TheEssayScoreGoesToTheAdvantage1200)
{
    key->AddQuestion("Essay Score", {}, {"25"});
    // It is not answered.
    EXPECT_EQ(download(k1200, say("E90025") + say("K70001") + kOK + say("K1") + kOK + say("10000") + say("01001") +
                                  say("Q") + kOK + say("K6") + kOK),
              True);
    expectPlayed();
    EXPECT_EQ(download(kBench, say("K70001") + say("K1") + kOK + say("\x01\x12Q") + kOK + say("K6") + kOK), True);
    expectPlayed();
    key->AddQuestion("Essay Score", {}, {"0"});
    EXPECT_EQ(download(k1200, say("K70001") + kOK + say("K1") + kOK + say("10000") + say("01001") + say("Q") + kOK +
                                  say("K6") + kOK),
              True);
    expectPlayed();
}

TEST_F(KeyDownload, EveryExchangeIsReportedUnderTheDownload)
{
    key->FormIDs("0001,0002");
    key->NumberOfPages(2);
    questionsOnPage = 1;
    const std::string pieces = say("10000") + say("01001") + say("Q");
    for (const std::string& soFar :
         {say("K70001"), say("K70001") + kOK + say("K80002"), say("K70001") + kOK + say("K80002") + kOK + say("K1"),
          say("K70001") + kOK + say("K80002") + kOK + say("K1") + kOK + pieces,
          say("K70001") + kOK + say("K80002") + kOK + say("K1") + kOK + pieces + kOK + say("K6")}) {
        const std::string procedure = "KeyReaderBenchMark3000Advantage1200";
        EXPECT_EQ(download(k1200, soFar), False);
        EXPECT_THAT(told(), ElementsAre(fault(procedure, 190, 188)));
        expectPlayed();
        EXPECT_EQ(download(k1200, soFar + "< \"NO\""), False);
        EXPECT_THAT(told(), ElementsAre(fault(procedure, 186, 188)));
        expectPlayed();
        cancelAfter(2s);
        EXPECT_EQ(download(k1200, soFar), False);
        EXPECT_THAT(told(), ElementsAre(fault(procedure, 186, 188)));
        expectPlayed();
    }
}

TEST_F(KeyDownload, WhatDoesNotFitFailsBeforeAnythingIsSent)
{
    const auto failure = [&](kelReaderType model) {
        EXPECT_EQ(download(model, ""), False);
        EXPECT_EQ(told().size(), 1U);
        expectPlayed();
        return told().empty() ? 0 : told()[0].number;
    };
    key->FormIDs("");
    EXPECT_EQ(failure(k1200), 9); // no identifier
    key->FormIDs("0001,0002");
    questionsOnPage = 0;
    EXPECT_EQ(failure(k1200), 5); // nobody has told the questions of page 1
    questionsOnPage = 7000;
    EXPECT_EQ(failure(kBench), 6);
    key->FormIDs("0001");
    key->AddQuestion("Question 3", kFive, {"F"});
    EXPECT_EQ(failure(k1200), 5);
    EXPECT_THAT(told()[0].text, testing::HasSubstr("\"F\""));
    key = std::make_shared<AnswerKey>();
    key->FormIDs("0001");
    key->AddQuestion("Question 1", kFive, {"A", "A", "A", "A", "A"});
    EXPECT_EQ(failure(kBench), 9);
    key = nullptr;
    EXPECT_EQ(failure(k1200), 91);
}

TEST_F(KeyDownload, IsPartOfTheStart)
{
    play(k1200, say("R1") + kOK + say("K70001") + kOK + say("K1") + kOK + say("10000") + say("01001") + say("Q") + kOK +
                    say("K6") + kOK + say("M0") + kOK + say("M8") + kOK);
    session->AnswerKey(key);
    session->settings().ReaderGrade = True;
    EXPECT_EQ(InitReaderAP(*session), True);
    expectPlayed();

    play(kBench, say("R1") + kOK + say("K70001") + say("K1") + "< \"NO\"");
    session->AnswerKey(key);
    EXPECT_EQ(InitReaderAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(fault("KeyReaderBenchMark3000Advantage1200", 186, 188)));
    expectPlayed();

    play(kelReaderTypeAppersonAdvantageLink, say("T1\r") + kOK); // has no place for a key
    session->AnswerKey(key);
    EXPECT_EQ(InitReaderAP(*session), True);
    expectPlayed();
}

} // namespace
} // namespace kel::apperson_test
