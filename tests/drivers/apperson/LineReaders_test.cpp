// SPDX-License-Identifier: MIT
#include "AppersonTest.h"

#include "contract/DictionaryObject.h"

namespace kel::apperson_test {
namespace {

/// A line of a BenchMark 3000 with these answers; the first stands at byte 119.
std::string benchLine(const std::string& student, const std::string& answers)
{
    return student + "xxxx00001xxxxxTEST-IDENTIFYSCHOOL-IDENTICLASS-IDENTIFE000" + std::string(49, 'x') + answers +
           "\r\n";
}

/// A line of an Advantage 1200; the first answer stands at byte 33.
std::string line1200(const std::string& student, const std::string& answers)
{
    return student + "Vxxx001200001000000000" + answers + "\r\n";
}

class LineReaders : public AppersonTest {
protected:
    void open(kelReaderType model, const std::string& dialogue)
    {
        play(model, dialogue);
        form(2, 5);
        session->fComm().mscComm().InputLen(1);
        session->Side1Array(kOld);
        session->Side2Array(kOld);
        session->BarcodeArray(TextArray::of(0, {"old"}));
    }

    void expectNothingStored()
    {
        EXPECT_EQ(session->side1(), kOld);
        EXPECT_EQ(session->side2(), kOld);
        EXPECT_EQ(session->BarcodeArray(), TextArray::of(0, {"old"}));
    }

    [[nodiscard]] std::string recorded(std::size_t record, const DictionaryKey& key)
    {
        Dictionary& dictionary = host->records.at(record);
        return dictionary.Exists(key) ? itemText(dictionary.Item(key)) : "nothing";
    }

    const MarkArray kOld{1, 1};
};

TEST_F(LineReaders, BenchMarkHandsItsLineToTheHost)
{
    open(kBench, "> \"B1\"\n+ 3\n< \"OK\" 0D 0A\n+ 2000\n" + from(benchLine("000000012345", "A,BC,,D,E")));
    host->onTranslateData = [&](Dictionary& oData, MarkArray& iSide1Array, MarkArray& iSide2Array,
                                TextArray& sBarcodeArray, Boolean& bNeedsMoreData) {
        EXPECT_EQ(oData.Exists("STUDENT id"), True); // texts are compared without regard to case
        EXPECT_EQ(iSide1Array, MarkArray(2, 5));
        EXPECT_FALSE(iSide2Array.isDimensioned());
        EXPECT_FALSE(sBarcodeArray.isDimensioned());
        EXPECT_EQ(bNeedsMoreData, False);
        iSide1Array(2, 3) = 1;
        sBarcodeArray.ReDim(1, 1);
        sBarcodeArray(1) = itemText(oData.Item("Student ID"));
        bNeedsMoreData = True; // nobody looks at it
    };
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(session->side1()(2, 3), 1);
    EXPECT_EQ(session->side2(), kOld);
    EXPECT_EQ(session->BarcodeArray(), TextArray::of(1, {"000000012345"}));
    ASSERT_EQ(host->records.size(), 1U);
    EXPECT_EQ(recorded(0, "Error Code"), "E000");
    EXPECT_EQ(recorded(0, 2), "B\tC");
    EXPECT_EQ(recorded(0, 3), "nothing");
    EXPECT_EQ(recorded(0, 4), "D");
    EXPECT_EQ(recorded(0, 5), "nothing");
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

TEST_F(LineReaders, BenchMarkIsToldToBeginOncePerRun)
{
    open(kBench, "> \"B1\"\n" + from("OK\r\n") + from(benchLine("000000000001", "A,")) +
                     from(benchLine("000000000002", "B,")) + from("Z1\r\n"));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(bAPReaderStarted, True);
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_EQ(bAPReaderStarted, False);
    EXPECT_EQ(machine.line(1).sent(), "B1");
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(recorded(1, "Student ID"), "000000000002");
    EXPECT_EQ(recorded(1, 1), "B");
    expectPlayed();

    open(kBench, "> \"B1\"\n" + from("z1\r\n")); // the next run begins anew
    EXPECT_EQ(ReadPageAP(*session), False);
    expectNothingStored();
    expectPlayed();
}

TEST_F(LineReaders, BenchMarkThatDoesNotBeginIsReported)
{
    open(kBench, "> \"B1\"\n");
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(fault("ReadPageAPBenchMarkAdvantage", 200, 196)));
    EXPECT_EQ(bAPReaderStarted, False);
    expectNothingStored();
    expectPlayed();

    open(kBench, "> \"B1\"\n");
    cancelAfter(1s);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(fault("ReadPageAPBenchMarkAdvantage", 198, 196)));
    EXPECT_EQ(bAPReaderStarted, False);
    expectPlayed();
}

TEST_F(LineReaders, BenchMarkThatFallsSilentEndsItsRunWithoutAWord)
{
    machine.pump().hostPump([] {}); // so that the clock goes in small steps
    for (const bool cancelled : {true, false}) {
        open(kBench, "> \"B1\"\n" + from("OK\r\nxxxx"));
        if (cancelled)
            cancelAfter(4s);
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_EQ(elapsed() >= std::chrono::milliseconds(kTimeout), !cancelled);
        EXPECT_EQ(bAPReaderStarted, False);
        EXPECT_THAT(told(), IsEmpty());
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(LineReaders, BenchMarkMayTakeItsTimeBetweenBytes)
{
    open(kBench, "> \"B1\"\n+ 9000\n" + from("OK\r\n") + "+ 9000\n" + from("abcd") + "+ 9000\n" + from("\r\n"));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(session->fComm().tmrScan().Enabled(), False);
    expectPlayed();
}

TEST_F(LineReaders, BenchMarkDoesNotLookAtACancelWhileBytesWait)
{
    open(kBench, from(benchLine("000000000001", "A,")));
    bAPReaderStarted = True;
    session->CancelScan(True);
    EXPECT_EQ(waiting(), 122);
    EXPECT_EQ(ReadPageAP(*session), True);
    expectPlayed();
}

TEST_F(LineReaders, BenchMarkSheetCountsAsReadWhenTheHostFails)
{
    open(kBench, "> \"B1\"\n" + from(benchLine("000000000001", "A,")));
    host->onTranslateData = [](Dictionary& oData, auto&...) { oData.Remove("no such key"); };
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_THAT(told(),
                ElementsAre(Told{"basApperson.ReadPageAPBenchMarkAdvantage", 32811, 0, "Element not found", ""}));
    expectNothingStored();
}

TEST_F(LineReaders, BenchMarkLineWithoutEndOverflows)
{
    open(kBench, "> \"B1\"\n" + from(std::string(32800, 'x')));
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(Told{"basApperson.ReadPageAPBenchMarkAdvantage", 6, 0, "Overflow", ""}));
    EXPECT_EQ(waiting(), 32);
    EXPECT_EQ(bAPReaderStarted, True); // it goes on sending
}

TEST_F(LineReaders, Advantage1200HandsItsLineToTheHost)
{
    open(k1200, "+ 7200000\n" + from(line1200(" 12345    ", "A,BC,,D,E")));
    session->settings().ReaderGrade = True;
    session->settings().DuplexForm = True;
    session->Side2Rows(PageArray::of(1, {3}));
    session->Side2Cols(PageArray::of(1, {4}));
    host->onTranslateData = [&](Dictionary&, MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray,
                                Boolean&) {
        EXPECT_EQ(iSide1Array, MarkArray(2, 5));
        EXPECT_EQ(iSide2Array, MarkArray(3, 4));
        EXPECT_FALSE(sBarcodeArray.isDimensioned());
        iSide1Array(1, 1) = 1;
        iSide2Array(3, 4) = 2;
        sBarcodeArray = TextArray::of(1, {"code"});
    };
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_GE(elapsed(), 2h);
    EXPECT_EQ(session->side1()(1, 1), 1);
    EXPECT_EQ(session->side2()(3, 4), 2);
    EXPECT_EQ(session->BarcodeArray(), TextArray::of(1, {"code"}));
    EXPECT_EQ(recorded(0, "Student ID"), "12345");
    EXPECT_EQ(recorded(0, "Test Version"), "V");
    EXPECT_EQ(recorded(0, "Essay Score"), "0012");
    EXPECT_EQ(recorded(0, "Page 1 ID"), "00001");
    EXPECT_EQ(recorded(0, "Page 2 ID"), "00000");
    EXPECT_EQ(recorded(0, 2), "B\tC");
    EXPECT_THAT(told(), IsEmpty());
    expectPlayed();
}

TEST_F(LineReaders, Advantage1200OfAOneSidedFormTakesSide2Away)
{
    open(k1200, from(line1200("0000012345", "A,")));
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(session->side1(), MarkArray(2, 5));
    EXPECT_FALSE(session->side2().isDimensioned());
    EXPECT_FALSE(session->BarcodeArray().isDimensioned());
    EXPECT_EQ(recorded(0, "Essay Score"), "nothing");
    expectPlayed();
}

TEST_F(LineReaders, Advantage1200ReadsOnWhileTheHostNeedsMore)
{
    open(k1200, from(line1200("0000000001", "A,B,")) + "+ 50\n" + from(line1200("0000000002", "C,,")) + "+ 50\n" +
                    from(line1200("0000000003", "E,")));
    int call = 0;
    host->onTranslateData = [&](Dictionary&, MarkArray& iSide1Array, MarkArray&, TextArray& sBarcodeArray,
                                Boolean& bNeedsMoreData) {
        EXPECT_EQ(bNeedsMoreData, call == 0 ? False : True); // stays as the host has left it
        bNeedsMoreData = ++call < 3;
        EXPECT_EQ(iSide1Array, MarkArray(2, 5)); // dimensioned anew
        iSide1Array(1, 1) = static_cast<Int16>(call);
        EXPECT_EQ(sBarcodeArray.isDimensioned(), call > 1);
        sBarcodeArray = TextArray::of(1, {std::to_string(call)});
        expectNothingStored();
    };
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(call, 3);
    EXPECT_EQ(session->side1()(1, 1), 3);
    EXPECT_EQ(session->BarcodeArray(), TextArray::of(1, {"3"}));
    EXPECT_EQ(recorded(1, "Student ID"), "\r\n0000000002");
    EXPECT_EQ(recorded(1, 1), "C");
    EXPECT_EQ(recorded(1, 2), "nothing");
    EXPECT_EQ(recorded(2, 1), "E");
    expectPlayed();
}

TEST_F(LineReaders, Advantage1200IsCancelledWithoutAWord)
{
    open(k1200, from("0000012345V"));
    cancelAfter(30min);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_GE(elapsed(), 30min);
    EXPECT_THAT(told(), IsEmpty());
    expectNothingStored();

    open(k1200, from(line1200("0000012345", "A,"))); // also while a whole line waits
    session->CancelScan(True);
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_EQ(waiting(), 36);
    EXPECT_THAT(host->records, IsEmpty());
}

TEST_F(LineReaders, Advantage1200SheetIsNotReadWhenTheHostFails)
{
    open(k1200, from(line1200("0000012345", "A,")));
    host->onTranslateData = [](Dictionary& oData, auto&...) { oData.Add("Student ID", ""); };
    EXPECT_EQ(ReadPageAP(*session), False);
    ASSERT_EQ(told().size(), 1U);
    EXPECT_EQ(told()[0].source, "basApperson.ReadPageAPAdvantage1200");
    EXPECT_EQ(told()[0].number, 457);
    expectNothingStored();
}

/// The system's dictionaries, for as long as this lives.
class SystemDictionaries {
public:
    explicit SystemDictionaries(DictionaryObjectCreator creator) { setDictionaryObjectCreator(creator); }
    ~SystemDictionaries() { setDictionaryObjectCreator(nullptr); }
    SystemDictionaries(const SystemDictionaries&) = delete;
    SystemDictionaries& operator=(const SystemDictionaries&) = delete;
};

TEST_F(LineReaders, WithoutDictionariesInTheSystemTheReaderIsNotTouched)
{
    const SystemDictionaries none([]() -> std::shared_ptr<DictionaryObject> {
        throw RuntimeFailure(429, "ActiveX component can't create object");
    });
    const char* const procedures[] = {"basApperson.ReadPageAPBenchMarkAdvantage",
                                      "basApperson.ReadPageAPAdvantage1200"};
    const char* const* procedure = procedures;
    for (const kelReaderType model : {kBench, k1200}) {
        open(model, "");
        EXPECT_EQ(ReadPageAP(*session), False);
        EXPECT_THAT(told(), ElementsAre(Told{*procedure++, 429, 0, "ActiveX component can't create object", ""}));
        EXPECT_EQ(machine.line(1).sent(), "");
        EXPECT_EQ(bAPReaderStarted, False);
        EXPECT_THAT(host->records, IsEmpty());
        expectNothingStored();
        expectPlayed();
    }
}

TEST_F(LineReaders, ARecordIsOneObjectOfTheSystemAReadThrough)
{
    const SystemDictionaries ours([] { return std::make_shared<DictionaryObject>(); });
    std::vector<std::shared_ptr<DictionaryObject>> objects;
    open(k1200,
         from(line1200("0000000001", "A,")) + from(line1200("0000000002", "B,")) + from(line1200("0000000003", "C,")));
    host->onTranslateData = [&](Dictionary& oData, MarkArray&, MarkArray&, TextArray&, Boolean& bNeedsMoreData) {
        objects.push_back(objectOf(oData));
        bNeedsMoreData = objects.size() == 1;
    };
    EXPECT_EQ(ReadPageAP(*session), True);
    EXPECT_EQ(ReadPageAP(*session), True);
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_NE(objects[0], nullptr);
    EXPECT_EQ(objects[1], objects[0]) << "the second line of a sheet";
    EXPECT_NE(objects[2], objects[0]) << "the next sheet";
}

TEST_F(LineReaders, Advantage1200LineWithoutEndFails)
{
    open(k1200, from(std::string(10010, 'x')));
    EXPECT_EQ(ReadPageAP(*session), False);
    EXPECT_THAT(told(), ElementsAre(Told{"basApperson.ReadPageAPAdvantage1200", 9, 0, "Subscript out of range", ""}));
    EXPECT_EQ(waiting(), 9);
}

} // namespace
} // namespace kel::apperson_test
