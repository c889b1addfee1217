// SPDX-License-Identifier: MIT
#include "simulators/chatsworth/Chatsworth.h"

#include "tests/simulators/DeviceBench.h"
#include "tests/simulators/ezdata/PackedRoundTrip.h"

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr Int32 kRows = 128;
const std::string kJoined = "\x12"
                            "R7777I00E";

std::string frame(const std::string& text)
{
    return "\x12\x1B" + text +
           "\x12"
           "E";
}

std::string setUp(const std::string& letters)
{
    return "\x1B" + letters + "\r";
}

struct Model {
    kelReaderType type;
    bool feeder;
    std::string start;    // what the host sends at the start
    std::string sheet;    // what it sends for a sheet
    bool rejects = false; // whether it sends sheets out
};

const Model kModels[] = {
    {kelReaderTypeChatsworthOMR1100, false, kJoined, ""},
    {kelReaderTypeChatsworthOMR2000, true, kJoined, "\x11"},
    {kelReaderTypeChatsworthALSAccelScanOMR, false, kJoined, frame("E"), true},
    {kelReaderTypeChatsworthACF200, false, setUp("SF") + setUp("HCD") + kJoined, ""},
    {kelReaderTypeChatsworthACF200, true, setUp("SL") + setUp("HCE") + kJoined, setUp("F")},
    {kelReaderTypeChatsworthACP200, false, setUp("SF") + setUp("FD"), ""},
    {kelReaderTypeChatsworthACP200, true, setUp("SL") + setUp("HCE"), setUp("F")},
};

class ChatsworthTest : public testing::TestWithParam<Model> {
protected:
    void connect(std::vector<SimulatedSheet> sheets, std::map<std::string, std::string> settings = {},
                 std::initializer_list<const char*> faults = {})
    {
        bench.emplace(GetParam().type, std::move(sheets), std::move(settings), faults);
        bench->reader().Feeder(GetParam().feeder ? True : False);
    }

    void cancelAfter(Moment time)
    {
        bench->host.machine.at(bench->host.machine.now() + time, [this] { bench->reader().CancelScan(True); });
    }

    std::optional<PackedReader> bench;
};

TEST_P(ChatsworthTest, EverySheetAndItsWay)
{
    const std::vector<SimulatedSheet> sheets = randomSheets(300, kRows, 12);
    connect(sheets);
    expectRoundTrip(*bench, sheets, kRows);
    std::vector<Int32> rejected;
    for (Int32 sheet = 7; sheet <= 300 && GetParam().rejects; sheet += 7)
        rejected.push_back(sheet);
    EXPECT_EQ(bench->logged(SheetEvent::Rejected), rejected);
    EXPECT_EQ(bench->logged(SheetEvent::Ejected), GetParam().rejects ? std::vector<Int32>{300} : std::vector<Int32>{});
}

TEST_P(ChatsworthTest, StartsASheetInItsWay)
{
    connect({{.side1 = MarkRows(2)}}, {{"feed-ms", "700"}});
    ASSERT_EQ(bench->reader().StartReader(), True);
    EXPECT_EQ(bench->host.sent(), GetParam().start);
    EXPECT_EQ(bench->reader().ReadPage(False), True);
    EXPECT_EQ(bench->host.sent(), GetParam().sheet);
    EXPECT_EQ(bench->reader().EndReader(), True);
    EXPECT_EQ(bench->host.sent(), "");
    bench->expectNoComplaints();
}

TEST_P(ChatsworthTest, ACancelEndsTheReadLoopOfAllButOne)
{
    connect({{.side1 = MarkRows(100)}}, {{"feed-ms", "2000"}}, {"drip=60@byte=20"});
    ASSERT_EQ(bench->reader().StartReader(), True);
    cancelAfter(4s);
    const bool deaf = GetParam().type == kelReaderTypeChatsworthOMR2000;
    EXPECT_EQ(bench->reader().ReadPage(False), deaf ? True : False);
    if (!deaf) {
        EXPECT_LT(bench->host.machine.now(), 5s);
    }
    bench->reader().EndReader();
    bench->expectNoComplaints();
}

TEST_P(ChatsworthTest, ACancelDoesNotEndTheSetUp)
{
    connect({}, {{"setup-ms", "3000"}});
    bench->host.machine.at(1s, [this] { bench->reader().CancelScan(True); });
    EXPECT_EQ(bench->reader().StartReader(), True);
    EXPECT_EQ(bench->host.sent(), GetParam().start);
    bench->reader().EndReader();
    bench->expectNoComplaints();
}

TEST_P(ChatsworthTest, AnEmptyFeederIsSilenceOrAQuietRefusal)
{
    connect({});
    bench->host.machine.pump().hostPump([] {}); // the host looks round every few milliseconds
    ASSERT_EQ(bench->reader().StartReader(), True);
    cancelAfter(100s);
    EXPECT_EQ(bench->reader().ReadPage(False), False);
    EXPECT_EQ(bench->host.sent(), GetParam().start + GetParam().sheet);
    const bool refuses = GetParam().feeder;
    if (refuses) {
        EXPECT_LT(bench->host.machine.now(), 5s);
    } else {
        EXPECT_GE(bench->host.machine.now(), 100s);
    }
    bench->reader().EndReader();
    bench->expectNoComplaints();
}

INSTANTIATE_TEST_SUITE_P(Models, ChatsworthTest, testing::ValuesIn(kModels), [](const auto& model) {
    return "Model" + std::to_string(model.param.type) + (model.param.feeder ? "Feeder" : "");
});

/// A reader that takes everything and says nothing, or the same to each CR.
class SilentAt final : public Simulator {
public:
    SilentAt(std::string startAnswer, Moment delay) : Simulator({}), answer_(std::move(startAnswer)), delay_(delay) {}

private:
    void onByte(Byte byte) override
    {
        if (byte == '\r' && !answer_.empty() && answers_-- > 0)
            sendAfter(delay_, answer_);
    }
    std::string answer_;
    Moment delay_;
    int answers_ = 2; // those of the set-up
};

struct Wait {
    kelReaderType type;
    bool feeder;
    bool cancelled;  // whether a cancel ends it
    TextNumber text; // what is told at its end
    TextNumber title;
};

const Wait kWaits[] = {
    {kelReaderTypeChatsworthOMR2000, true, false, TextNumber(236), TextNumber(238)},
    {kelReaderTypeChatsworthALSAccelScanOMR, false, true, TextNumber(240), TextNumber(184)},
    {kelReaderTypeChatsworthACF200, true, false, TextNumber(240), TextNumber(184)},
    {kelReaderTypeChatsworthACP200, true, false, TextNumber(240), TextNumber(184)},
};

TEST(ChatsworthWaits, ForASheetEndByTheTimerAndSomeByACancel)
{
    for (const Wait& wait : kWaits) {
        for (const bool cancel : {false, true}) {
            SCOPED_TRACE(wait.type);
            SCOPED_TRACE(cancel);
            SilentAt device("\r", 1ms);
            ReaderHost host;
            host.connect(wait.type, device);
            host.reader().Feeder(wait.feeder ? True : False);
            ASSERT_EQ(host.reader().StartReader(), True);
            const Moment begun = host.machine.now();
            if (cancel)
                host.machine.at(begun + 2s, [&] { host.reader().CancelScan(True); });
            EXPECT_EQ(host.reader().ReadPage(False), False);
            const bool quiet = cancel && wait.cancelled;
            EXPECT_LT(host.machine.now() - begun, quiet ? 3s : 11s);
            EXPECT_GE(host.machine.now() - begun, quiet ? 2s : 10s);
            if (quiet) {
                EXPECT_TRUE(host.heard().reports.empty());
                continue;
            }
            ASSERT_EQ(host.heard().reports.size(), 1U);
            const ErrorReport& report = host.heard().reports[0];
            EXPECT_EQ(report.ErrorDescription, VBLM_RTString(wait.text));
            EXPECT_EQ(report.ErrorTitle, VBLM_RTString(wait.title));
            EXPECT_EQ(report.ErrorSource, "basChatsworth.ReadPageCT");
        }
    }
}

TEST(ChatsworthWaits, ForASheetSentOutIgnoresACancel)
{
    for (const bool cancel : {false, true}) {
        SilentAt device("", 0ms);
        ReaderHost host;
        host.connect(kelReaderTypeChatsworthALSAccelScanOMR, device);
        ASSERT_EQ(host.reader().StartReader(), True);
        const Moment begun = host.machine.now();
        if (cancel)
            host.machine.at(begun + 2s, [&] { host.reader().CancelScan(True); });
        host.reader().RejectPage();
        EXPECT_GE(host.machine.now() - begun, 10s);
        ASSERT_EQ(host.heard().reports.size(), 1U);
        EXPECT_EQ(host.heard().reports[0].ErrorDescription, VBLM_RTString(TextNumber(242)));
    }
}

TEST(ChatsworthSimulator, SendsAPageThatComesAtOnceAfterTheReplyToItsCommand)
{
    for (const Model& model : kModels) {
        if (model.sheet.empty())
            continue; // it sends by itself
        SCOPED_TRACE(model.type);
        const std::vector<SimulatedSheet> sheets = randomSheets(5, kRows, 12);
        PackedReader bench(model.type, sheets, {{"feed-ms", "0"}}, {});
        bench.reader().Feeder(model.feeder ? True : False);
        expectRoundTrip(bench, sheets, kRows);
    }
}

TEST(ChatsworthSimulator, ComplainsOfWhatAHostMustNotDo)
{
    struct Mistake {
        kelReaderType model;
        std::vector<std::string> commands;
        const char* complaint;
    };
    const Mistake mistakes[] = {
        {kelReaderTypeChatsworthACP200,
         {setUp("SF"), setUp("FD"), kJoined},
         "the joined probe, which is for other models"},
        {kelReaderTypeChatsworthACF200, {setUp("SF"), setUp("FD")}, "set-up command FD out of its order"},
        {kelReaderTypeChatsworthACF200, {setUp("SL"), setUp("HCD")}, "set-up command HCD out of its order"},
        {kelReaderTypeChatsworthACF200,
         {setUp("SL") + setUp("HCE")},
         "set-up command HCE before the reply to the one before it"},
        {kelReaderTypeChatsworthACF200, {kJoined}, "the joined probe before the set-up"},
        {kelReaderTypeChatsworthACF200, {setUp("SL"), setUp("HCE"), setUp("F")}, "command F before the start was done"},
        {kelReaderTypeChatsworthOMR1100, {setUp("SF")}, "set-up command SF, which is for other models"},
        {kelReaderTypeChatsworthOMR1100, {kJoined, "\x11"}, "command 11, which is for another model"},
        {kelReaderTypeChatsworthOMR2000, {"\x11"}, "command 11 before the start was done"},
        {kelReaderTypeChatsworthOMR2000, {kJoined, "\x11\x11"}, "command 11 while a sheet is under way"},
        {kelReaderTypeChatsworthALSAccelScanOMR, {kJoined, frame("EF")}, "the sheet is sent out, and there is none"},
        {kelReaderTypeChatsworthACF200, {frame("E")}, "command E, which this model does not know"}};
    for (const Mistake& mistake : mistakes) {
        const std::unique_ptr<Simulator> reader = makeSimulator(
            mistake.model, {.sheets = {{.side1 = MarkRows(1)}, {.side1 = MarkRows(1)}}, .rate = Rate::Unlimited});
        DeviceBench bench(*reader);
        for (const std::string& command : mistake.commands)
            bench.ask(command);
        EXPECT_THAT(reader->errors(), testing::ElementsAre(mistake.complaint));
    }
}

} // namespace
} // namespace kel::test
