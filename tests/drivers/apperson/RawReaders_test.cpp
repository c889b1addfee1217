// SPDX-License-Identifier: MIT
#include "AppersonTest.h"

namespace kel::apperson_test {
namespace {

const std::string kFeed = "> \"FB\" 0D\n+ 2\n< \"OK\"\n";
const std::string kSend = "> \"FD\" 0D\n+ 2\n";
const std::string kDone = "> \"FE\" 0D\n+ 2\n";
const std::string kPoll = "> \"P\" 0D\n+ 2\n";

/// Bytes from the reader as a line of a dialogue.
/// A block of an Advantage Link with `count` marks that say their own place.
std::string linkBlock(int count, unsigned char status = 200)
{
    std::string block;
    for (int n = 1; n <= count; ++n)
        block += static_cast<char>(n % 200);
    return block + static_cast<char>(status);
}

std::string masterBlock(const std::string& identifier, const std::string& error, const std::string& rows,
                        unsigned char status = 217)
{
    return identifier + "*" + error + rows + static_cast<char>(status);
}

class RawReaders : public AppersonTest {
protected:
    void playLink(const std::string& dialogue, Int16 rows = 3, Int16 columns = 12)
    {
        play(kLink, dialogue);
        form(rows, columns);
        session->Side1Array(kOld);
    }

    void playMaster(const std::string& dialogue, Int16 rows = 3, Int16 columns = 5)
    {
        play(kMaster, dialogue);
        form(rows, columns);
        session->settings().RecognitionThreshold = 4;
        session->Side1Array(kOld);
        session->BarcodeArray(TextArray::of(0, {"old"}));
    }

    /// Nothing was handed over.
    void expectNothingStored()
    {
        EXPECT_EQ(session->side1(), kOld);
        if (session->ReaderType() == kMaster) {
            EXPECT_EQ(session->BarcodeArray(), TextArray::of(0, {"old"}));
        }
    }

    const MarkArray kOld{1, 1};
};

TEST_F(RawReaders, AdvantageLinkReadsASheet)
{
    playLink(kFeed + kSend + from(linkBlock(38)) + kDone + from("OK"));
    EXPECT_EQ(ReadPageAP(*session), True);
    const MarkArray marks = session->side1();
    ASSERT_EQ(marks.rows(), 3);
    ASSERT_EQ(marks.columns(), 12);
    EXPECT_EQ(marks(1, 1), 1);
    EXPECT_EQ(marks(1, 12), 12);
    EXPECT_EQ(marks(2, 1), 15);
    EXPECT_EQ(marks(3, 12), 38);
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

TEST_F(RawReaders, AdvantageLinkWaitsForItsSheet)
{
    playLink(kFeed + kSend + "+ 3600000\n" + from(linkBlock(38)) + kDone + from("OK"));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_GE(elapsed(), 1h);
    expectPlayed();
}

TEST_F(RawReaders, AdvantageLinkSaysNothingOfARefusedFeed)
{
    for (const std::string& answer : {from("NO"), from("\x04"), std::string()}) {
        playLink("> \"FB\" 0D\n" + answer);
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), IsEmpty());
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(RawReaders, AdvantageLinkSaysNothingOfACancel)
{
    for (const std::string& dialogue : {std::string("> \"FB\" 0D\n"), kFeed + kSend + from("\x01\x02"),
                                        kFeed + kSend + from(linkBlock(38)) + "> \"FE\" 0D\n"}) {
        playLink(dialogue);
        cancelAfter(3s);
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), IsEmpty());
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(RawReaders, AdvantageLinkReportsAnotherStatus)
{
    for (const auto& [status, text] : {std::pair(201, 214), {203, 218}, {205, 220}, {211, 230}, {255, 232}}) {
        // The reader goes on talking: all that comes within the pause is dropped.
        playLink(kFeed + kSend + from(linkBlock(5, static_cast<unsigned char>(status)) + "left") + "+ 15\n" +
                 from("over"));
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), ElementsAre(readerError("ReadPageAPAdvantageLink", status, text, 194))) << status;
        EXPECT_EQ(waiting(), 0);
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(RawReaders, AdvantageLinkReportsTheLastReply)
{
    for (const auto& [reply, text] :
         {std::pair<std::string, Int32>("\x04", 202), {"\x09 and more", 212}, {"\xD2", 228}, {"O", 232}, {"4", 232}}) {
        playLink(kFeed + kSend + from(linkBlock(38)) + kDone + from(reply));
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), ElementsAre(readerError("ReadPageAPAdvantageLink", static_cast<Byte>(reply[0]), text, 194)))
            << reply;
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(RawReaders, AdvantageLinkSaysNothingWhenTheLastReplyDoesNotCome)
{
    playLink(kFeed + kSend + from(linkBlock(38)) + kDone);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_GE(elapsed(), std::chrono::milliseconds(kTimeout));
    expectNothingStored();
}

Told outOfRange(const std::string& procedure)
{
    return {"basApperson." + procedure, 9, 0, "Subscript out of range", ""};
}

TEST_F(RawReaders, AdvantageLinkFailsBeforeItsLastCommand)
{
    playLink(kFeed + kSend + from(linkBlock(1199)), 100, 12);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(outOfRange("ReadPageAPAdvantageLink")));
    expectPlayed();

    playLink(kFeed + kSend + from(linkBlock(38)), 0, 0);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(outOfRange("ReadPageAPAdvantageLink")));
    expectPlayed();
}

TEST_F(RawReaders, ABlockThatIsTooLongFailsAndStaysWhereItIs)
{
    playLink(kFeed + kSend + from(linkBlock(1210)));
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(outOfRange("ReadPageAPAdvantageLink")));
    EXPECT_EQ(waiting(), 10); // the byte without room is taken; nothing is drained
    expectPlayed();

    playMaster(kPoll + from(masterBlock("0123456789", "   ", std::string(290, '\0'))));
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(outOfRange("ReadPageAPGradeMaster")));
    EXPECT_EQ(waiting(), 4);
}

TEST_F(RawReaders, GradeMasterReadsASheet)
{
    playMaster(kPoll + from(masterBlock("0000012345", "   ", std::string("\x01\x1F\x00", 3))));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(session->side1().elements(), (std::vector<Int16>{4, 0, 0, 0, 0, 4, 4, 4, 4, 4, 0, 0, 0, 0, 0}));
    EXPECT_EQ(session->BarcodeArray(), TextArray::of(1, {"0000012345"}));
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(pauses(), IsEmpty());
    expectPlayed();
}

TEST_F(RawReaders, GradeMasterWithoutAnIdentifier)
{
    playMaster(kPoll + from(masterBlock("Blank ID# ", "   ", "\x01\x02\x04")));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(session->BarcodeArray(), TextArray::of(1, {"?"}));
    EXPECT_EQ(session->side1()(2, 2), 4);
}

TEST_F(RawReaders, GradeMasterTakesWhatIsLeftOverForItsBlock)
{
    // Nothing is drained: two bytes too many of an earlier reply move everything.
    playMaster(kPoll + from("AY" + masterBlock("0000012345", "   ", "\x01\x02\x04")));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(session->BarcodeArray(), TextArray::of(1, {"AY00000123"}));
}

TEST_F(RawReaders, GradeMasterReportsAnotherStatus)
{
    for (const int status : {218, 230, 255}) {
        playMaster(kPoll + from(masterBlock("0000012345", "   ", "\x01", static_cast<unsigned char>(status)) + "more") +
                   "+ 15\n" + from("still"));
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), ElementsAre(readerError("ReadPageAPGradeMaster", status, 232, 194))) << status;
        EXPECT_EQ(waiting(), 0);
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(RawReaders, GradeMasterReportsTheErrorInItsBlock)
{
    for (const auto& [error, text] : {std::pair("004", 202), {"211", 230}, {" 9 ", 212}, {"099", 232}}) {
        playMaster(kPoll + from(masterBlock("Error     ", error, "\x01") + "rest"));
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), ElementsAre(readerError("ReadPageAPGradeMaster", std::stoi(error), text, 196))) << error;
        EXPECT_EQ(waiting(), 4); // nothing is drained here
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(RawReaders, GradeMasterSaysNothingOfAnErrorWithoutANumber)
{
    for (const char* error : {"000", "   ", "abc"}) {
        playMaster(kPoll + from(masterBlock("Error     ", error, "\x01")));
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), IsEmpty()) << error;
        expectNothingStored();
    }
}

TEST_F(RawReaders, GradeMasterNeedsAForm)
{
    playMaster(kPoll + from(masterBlock("Error     ", "004", "\x01")), 0, 0);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(outOfRange("ReadPageAPGradeMaster")));

    playMaster(kPoll + from(masterBlock("0000012345", "   ", "\x0F\x1F")), 2, 4);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(outOfRange("ReadPageAPGradeMaster")));
    expectNothingStored();
}

TEST_F(RawReaders, GradeMasterIsCancelledWhileItWaits)
{
    playMaster(kPoll + "+ 100000000\n" + from("x"));
    cancelAfter(2h);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_GE(elapsed(), 2h);
    EXPECT_THAT(told(), IsEmpty());
    expectNothingStored();
}

TEST_F(RawReaders, ACancelWinsOverAWaitingBlock)
{
    playMaster("> \"P\" 0D\n" + from(masterBlock("0000012345", "   ", "\x01\x02\x04")));
    session->CancelScan(True);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_EQ(waiting(), 18);
}

TEST_F(RawReaders, AnotherModelIsNotRead)
{
    play(kelReaderTypePDIVMR138, "");
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

} // namespace
} // namespace kel::apperson_test
