// SPDX-License-Identifier: MIT
#include "contract/AnswerKey.h"
#include "contract/Dictionary.h"
#include "simulators/SimulatorTable.h"
#include "simulators/apperson/DataLineReader.h"
#include "simulators/apperson/RawMarkReader.h"
#include "strings/VBLMRTSModule.h"
#include "tests/simulators/apperson/AppersonRoundTrip.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The reader object against the simulated Apperson readers, which find fault with whatever the host may not send.

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kSheets = 300;

/// The rows and columns that the reader's form has.
struct FormSize {
    Int16 rows;
    Int16 columns;
};

/// Holds the device for longer than the reader object that has its line open.
struct DeviceHolder {
    std::unique_ptr<Simulator> device_;
};

/// A reader, its host and the line between them.
class Session : private DeviceHolder, public ReaderHost {
public:
    Session(kelReaderType model, FormSize size, SimulatorOptions options)
        : DeviceHolder{makeSimulator(model, withForm(std::move(options), size))}
    {
        connect(model, *device_);
        reader().Side1Rows(pages({size.rows}));
        reader().Side1Cols(pages({size.columns}));
        reader().SleepTime(5);
    }

    [[nodiscard]] Simulator& device() { return *device_; }
    [[nodiscard]] const DataLineReader::Key& key() const { return dynamic_cast<DataLineReader&>(*device_).key(); }

    /// Reads to the end or to the limit; how many sheets came.
    std::size_t batch(Int32 most)
    {
        Int32 count = 0;
        reader().ReadBatch(False, most, count);
        return heard().sheets.size();
    }

    void expectNoFaults()
    {
        EXPECT_THAT(device_->errors(), IsEmpty());
        for (const ErrorReport& report : heard().reports)
            ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    }

private:
    static SimulatorOptions withForm(SimulatorOptions options, FormSize size)
    {
        options.form.side1Rows = {size.rows};
        options.form.side1Cols = {size.columns};
        return options;
    }
};

/// The simulated reader under the virtual clock.
class AppersonBench : private DeviceHolder, public ReaderHost {
public:
    explicit AppersonBench(const AppersonSession& session)
        : DeviceHolder{makeSimulator(session.model, optionsOf(session, kSheets))}
    {
        connect(session.model, *device_);
        reader().SleepTime(5);
    }

    void expectNoComplaints()
    {
        EXPECT_THAT(device_->errors(), IsEmpty());
        for (const ErrorReport& report : heard().reports)
            ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    }
};

class AppersonRoundTrips : public testing::TestWithParam<AppersonSession> {};

TEST_P(AppersonRoundTrips, EverySheet)
{
    AppersonBench bench(GetParam());
    AppersonRoundTrip(bench, GetParam()).expectAll(kSheets);
}

INSTANTIATE_TEST_SUITE_P(Sessions, AppersonRoundTrips, testing::ValuesIn(kAppersonSessions),
                         [](const auto& session) { return session.param.name; });

TEST(AppersonSessions, AHostCanAskForTheSecondLineFirst)
{
    const MarkRows first = {{1, 0, 0}, {0, 1, 0}};
    const MarkRows second = {{0, 0, 1}, {1, 1, 0}};
    Session session(kelReaderTypeAppersonAdvantage1200, {4, 3},
                    {.sheets = {{.side1 = first, .fields = {{"Student ID", "77"}}},
                                {.side1 = second, .fields = {{"Student ID", "78"}}}}});
    std::vector<std::vector<DictionaryKey>> keys;
    session.heard().onTranslateData = [&](Dictionary& data, MarkArray& side1, MarkArray&, TextArray&,
                                          Boolean& needsMore) {
        keys.push_back(data.Keys());
        if (keys.size() == 1)
            side1(1, 1) = 5;
        needsMore = keys.size() == 1 ? True : False;
        // What stood after the last comma of the line before is still there, and so is its line end.
        EXPECT_EQ(itemText(data.Item("Student ID")), keys.size() == 1 ? "77" : "A\r\n78");
        EXPECT_EQ(itemText(data.Item(2)), keys.size() == 1 ? "B" : "A\tB");
    };
    EXPECT_EQ(session.batch(1), 1U);
    session.expectNoFaults();
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0], keys[1]);
    EXPECT_THAT(session.heard().order,
                ElementsAre("BeforeSheet", "TranslateData", "TranslateData", "ReadSheet", "AfterSheet"));
}

TEST(AppersonSessions, TheBenchMarkDoesNotAskWhetherMoreIsNeeded)
{
    Session session(kelReaderTypeAppersonBenchMark3000, {1, 5}, {.sheets = {{.side1 = {{1}}}, {.side1 = {{1}}}}});
    session.heard().onTranslateData = [](Dictionary&, MarkArray&, MarkArray&, TextArray&, Boolean& needsMore) {
        needsMore = True;
    };
    EXPECT_EQ(session.batch(-1), 2U);
    session.expectNoFaults();
}

TEST(AppersonSessions, ABenchMarkIsStartedAfreshBehindItsLastSheet)
{
    Session session(kelReaderTypeAppersonBenchMark3000, {1, 5}, {.sheets = {{.side1 = {{1}}}}});
    session.machine.pump().hostPump([] {}); // a host that is awake: the end of a sheet is not seen with the next one
    ASSERT_TRUE(bool(session.reader().StartReader()));
    session.sent();
    EXPECT_TRUE(bool(session.reader().ReadPage(False)));
    EXPECT_EQ(session.sent(), "B1");
    EXPECT_FALSE(bool(session.reader().ReadPage(False)));
    EXPECT_EQ(session.sent(), "");
    EXPECT_TRUE(bool(session.reader().CancelScan()));
    session.device().putSheet({.side1 = {{1}}});
    session.reader().CancelScan(False);
    EXPECT_TRUE(bool(session.reader().ReadPage(False)));
    EXPECT_EQ(session.sent(), "B1");
    session.reader().EjectPage();
    EXPECT_EQ(session.sent(), "A6");
    EXPECT_TRUE(bool(session.reader().EndReader()));
    session.expectNoFaults();
}

TEST(AppersonSessions, RejectingTellsTheBenchMarkOnly)
{
    for (const auto& [model, bytes] : std::map<kelReaderType, std::string>{{kelReaderTypeAppersonAdvantageLink, ""},
                                                                           {kelReaderTypeAppersonGradeMaster, ""},
                                                                           {kelReaderTypeAppersonBenchMark3000, "A7"},
                                                                           {kelReaderTypeAppersonAdvantage1200, ""}}) {
        Session session(model, {1, 5}, {.sheets = {{.side1 = {{1}}}}});
        std::string sent = "?";
        session.heard().onReadSheet = [&](MarkArray&, MarkArray&, TextArray&, Boolean&) {
            session.sent();
            session.reader().RejectPage();
            sent = session.sent();
        };
        EXPECT_EQ(session.batch(1), 1U) << model;
        EXPECT_EQ(sent, bytes) << model;
        session.expectNoFaults();
    }
}

TEST(AppersonSessions, JamsAreToldByTheReader)
{
    for (const auto& [model, title] : std::map<kelReaderType, Int32>{{kelReaderTypeAppersonAdvantageLink, 194},
                                                                     {kelReaderTypeAppersonGradeMaster, 196}}) {
        Session session(model, {20, 5}, {.seeded = SeededSheets{1, 3}, .faults = {parseFault("jam@sheet=2")}});
        EXPECT_EQ(session.batch(3), 1U);
        ASSERT_EQ(session.heard().reports.size(), 1U);
        EXPECT_EQ(session.heard().reports[0].ErrorDescription, VBLM_RTString(222));
        EXPECT_EQ(session.heard().reports[0].ErrorTitle, VBLM_RTString(title));
        EXPECT_THAT(session.device().errors(), IsEmpty());
    }
    Session session(kelReaderTypeAppersonBenchMark3000, {20, 5},
                    {.seeded = SeededSheets{1, 3}, .faults = {parseFault("jam@sheet=2")}});
    std::vector<std::string> codes;
    session.heard().onTranslateData = [&](Dictionary& data, MarkArray&, MarkArray&, TextArray&, Boolean&) {
        codes.push_back(itemText(data.Item("Error Code")));
    };
    EXPECT_EQ(session.batch(-1), 3U);
    EXPECT_THAT(codes, ElementsAre("   ", "206", "   "));
    session.expectNoFaults();
}

// ---- Cancelling in the waits

/// Cancels in the wait after a command.
void cancelBehind(Session& session, const std::string& command)
{
    session.machine.pump().hostPump([&session, command] {
        if (session.machine.line(1).sent().ends_with(command))
            session.reader().CancelScan(True);
    });
}

struct CancelledStep {
    kelReaderType model;
    std::string command;
    Int32 text;
};

TEST(AppersonSessions, CancellingInAStartIsToldByItsStep)
{
    const std::vector<CancelledStep> steps = {
        {kelReaderTypeAppersonAdvantageLink, "T1", 192}, {kelReaderTypeAppersonGradeMaster, "A1", 192},
        {kelReaderTypeAppersonGradeMaster, "S8", 192},   {kelReaderTypeAppersonGradeMaster, "M3", 192},
        {kelReaderTypeAppersonBenchMark3000, "R1", 186}, {kelReaderTypeAppersonBenchMark3000, "M6", 186},
        {kelReaderTypeAppersonBenchMark3000, "I1", 186}, {kelReaderTypeAppersonBenchMark3000, "A9", 186},
        {kelReaderTypeAppersonBenchMark3000, "R6", 186}, {kelReaderTypeAppersonBenchMark3000, "S1", 186},
        {kelReaderTypeAppersonBenchMark3000, "M0", 186}, {kelReaderTypeAppersonAdvantage1200, "R1", 186},
        {kelReaderTypeAppersonAdvantage1200, "M6", 186}, {kelReaderTypeAppersonAdvantage1200, "M0", 186},
        {kelReaderTypeAppersonAdvantage1200, "M8", 186}};
    for (const CancelledStep& step : steps) {
        SCOPED_TRACE(std::to_string(step.model) + " " + step.command);
        const bool raw =
            step.model == kelReaderTypeAppersonAdvantageLink || step.model == kelReaderTypeAppersonGradeMaster;
        Session session(step.model, {5, 5}, {.settings = {{"silent", step.command}}});
        cancelBehind(session, step.command + (raw ? "\r" : ""));
        EXPECT_FALSE(bool(session.reader().StartReader()));
        ASSERT_EQ(session.heard().reports.size(), 1U);
        EXPECT_EQ(session.heard().reports[0].ErrorDescription, VBLM_RTString(step.text));
        EXPECT_EQ(session.heard().reports[0].ErrorTitle, VBLM_RTString(188));
        EXPECT_EQ(session.heard().reports[0].ErrorSource, "basApperson.InitReaderAP");
        EXPECT_LT(session.machine.now(), 1s);
    }
}

TEST(AppersonSessions, CancellingAReadIsSilent)
{
    const std::vector<std::pair<kelReaderType, std::string>> waits = {{kelReaderTypeAppersonAdvantageLink, "FB\r"},
                                                                      {kelReaderTypeAppersonAdvantageLink, "FD\r"},
                                                                      {kelReaderTypeAppersonAdvantageLink, "FE\r"},
                                                                      {kelReaderTypeAppersonGradeMaster, "P\r"},
                                                                      {kelReaderTypeAppersonAdvantage1200, "M8"}};
    for (const auto& [model, command] : waits) {
        SCOPED_TRACE(std::to_string(model) + " " + command);
        const bool feeds = command == "FE\r";
        Session session(model, {5, 5},
                        {.sheets = feeds ? SheetFeeder{{.side1 = {{1}}}} : SheetFeeder{},
                         .settings = {{"silent", command == "FB\r" ? "FB"
                                                 : feeds           ? "FE"
                                                                   : ""}}});
        ASSERT_TRUE(bool(session.reader().StartReader()));
        cancelBehind(session, command);
        EXPECT_FALSE(bool(session.reader().ReadPage(False)));
        EXPECT_TRUE(bool(session.reader().CancelScan()));
        EXPECT_LT(session.machine.now(), 2s);
        EXPECT_TRUE(bool(session.reader().EndReader()));
        session.expectNoFaults();
        EXPECT_THAT(session.heard().order, ElementsAre("BeforeSheet"));
    }
}

TEST(AppersonSessions, CancellingABenchMark)
{
    Session unanswered(kelReaderTypeAppersonBenchMark3000, {5, 5}, {.settings = {{"silent", "B1"}}});
    ASSERT_TRUE(bool(unanswered.reader().StartReader()));
    cancelBehind(unanswered, "B1");
    EXPECT_FALSE(bool(unanswered.reader().ReadPage(False)));
    ASSERT_EQ(unanswered.heard().reports.size(), 1U);
    EXPECT_EQ(unanswered.heard().reports[0].ErrorDescription, VBLM_RTString(198));
    EXPECT_EQ(unanswered.heard().reports[0].ErrorTitle, VBLM_RTString(196));

    // Between the lines nobody is told, and the next read starts the reader afresh.
    Session between(kelReaderTypeAppersonBenchMark3000, {5, 5},
                    {.sheets = {{.side1 = {{1}}}}, .settings = {{"feed-ms", "3000"}}});
    ASSERT_TRUE(bool(between.reader().StartReader()));
    between.machine.pump().hostPump([&, moment = between.machine.now() + 1s] {
        if (between.machine.now() > moment)
            between.reader().CancelScan(True);
    });
    EXPECT_FALSE(bool(between.reader().ReadPage(False)));
    EXPECT_TRUE(bool(between.reader().EndReader()));
    between.expectNoFaults();
}

// ---- Keys

Reference<AnswerKey> keyOf(std::size_t versions, Int32 questions, const std::string& formIds, Int32 answered)
{
    const auto key = makeReference<AnswerKey>();
    key->FormIDs(formIds);
    key->NumberOfPages(formIds.find(',') == std::string::npos ? 1 : 2);
    const std::vector<std::string> choices = {"A", "B", "C", "D", "E"};
    for (Int32 question = 1; question <= questions; ++question) {
        std::vector<std::string> right;
        for (std::size_t version = 0; version < versions; ++version)
            right.push_back(choices[(static_cast<std::size_t>(question) + version) % choices.size()]);
        if (question > answered)
            right.clear();
        key->AddQuestion("Question " + std::to_string(question), choices, right);
    }
    return key;
}

/// The key of a version of `keyOf`, as the reader stores it.
std::string stored(kelReaderType model, std::size_t version, Int32 questions)
{
    std::string key;
    for (Int32 question = 1; question <= questions; ++question) {
        const std::size_t choice = (static_cast<std::size_t>(question) + version) % 5;
        std::string digits = "00000";
        digits[choice] = '1';
        key += model == kelReaderTypeAppersonBenchMark3000 ? std::string(1, static_cast<char>(1 << choice)) : digits;
    }
    return key;
}

class AppersonKeys : public testing::TestWithParam<std::size_t> {};

TEST_P(AppersonKeys, GoIntoTheAdvantage1200)
{
    const std::size_t versions = GetParam();
    for (const bool duplex : {false, true})
        for (const bool grade : {false, true}) {
            const kelReaderType model = kelReaderTypeAppersonAdvantage1200;
            Session session(model, {5, 5},
                            {.sheets = {{.side1 = {{1}}}},
                             .settings = {{"reader-grade", grade ? "true" : "false"}, {"key-slack-ms", "0"}}});
            session.reader().ReaderGrade(grade ? True : False);
            const auto key = keyOf(versions, 30, duplex ? "0011,0012" : "0011", 30);
            key->AddQuestion("Essay Score", {}, {"25"});
            session.reader().AnswerKey(key);
            session.heard().onGetQuestionsOnPage = [](Int16& page, Int16& number) {
                EXPECT_EQ(page, 1);
                number = 20;
            };
            EXPECT_EQ(session.batch(1), 1U);
            session.expectNoFaults();
            EXPECT_TRUE(session.key().complete);
            EXPECT_EQ(session.key().page1, "0011");
            EXPECT_EQ(session.key().page2, duplex ? "0012" : "");
            EXPECT_EQ(session.key().essay, "0025");
            ASSERT_EQ(session.key().versions.size(), versions);
            for (std::size_t version = 0; version < versions; ++version)
                EXPECT_EQ(session.key().versions.at(static_cast<Int32>(version) + 1), stored(model, version, 30));
            EXPECT_EQ(session.heard().order.front(), duplex ? "GetQuestionsOnPage" : "BeforeSheet");
        }
}

TEST_P(AppersonKeys, LoseASecondPageWithoutAnswers)
{
    const std::size_t versions = GetParam();
    const kelReaderType model = kelReaderTypeAppersonAdvantage1200;
    Session session(model, {5, 5}, {.sheets = {{.side1 = {{1}}}}, .settings = {{"key-slack-ms", "0"}}});
    session.reader().AnswerKey(keyOf(versions, 30, "0011,0012", 20));
    session.heard().onGetQuestionsOnPage = [](Int16&, Int16& number) { number = 20; };
    EXPECT_EQ(session.batch(1), 1U);
    session.expectNoFaults();
    EXPECT_EQ(session.key().page2, "");
    ASSERT_EQ(session.key().versions.size(), versions);
    for (std::size_t version = 0; version < versions; ++version)
        EXPECT_EQ(session.key().versions.at(static_cast<Int32>(version) + 1), stored(model, version, 20));
}

TEST_P(AppersonKeys, GoIntoTheBenchMarkInOneVersion)
{
    const kelReaderType model = kelReaderTypeAppersonBenchMark3000;
    for (const bool replies : {false, true}) {
        Session session(model, {5, 5},
                        {.sheets = {{.side1 = {{1}}}},
                         .settings = {{"k7-reply", replies ? "true" : "false"}, {"key-slack-ms", "0"}}});
        session.reader().AnswerKey(keyOf(GetParam(), 50, "0011", 50));
        EXPECT_EQ(session.batch(-1), 1U);
        session.expectNoFaults();
        EXPECT_TRUE(session.key().complete);
        EXPECT_EQ(session.key().page1, "0011");
        ASSERT_EQ(session.key().versions.size(), 1U);
        EXPECT_EQ(session.key().versions.at(1), stored(model, 0, 50));
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, AppersonKeys, testing::Values(1U, 2U, 3U, 4U));

TEST(AppersonSessions, ABenchMarkNeverGetsASecondPage)
{
    Session session(kelReaderTypeAppersonBenchMark3000, {5, 5},
                    {.sheets = {{.side1 = {{1}}}}, .settings = {{"key-slack-ms", "0"}}});
    session.reader().AnswerKey(keyOf(1, 50, "0011,0012", 50));
    session.heard().onGetQuestionsOnPage = [](Int16&, Int16& number) { number = 8; };
    EXPECT_EQ(session.batch(-1), 1U);
    session.expectNoFaults();
    EXPECT_EQ(session.key().page2, "");
    // Five times the questions of page 1 are left of it.
    EXPECT_EQ(session.key().versions.at(1), stored(kelReaderTypeAppersonBenchMark3000, 0, 40));
}

TEST(AppersonSessions, AFifthVersionIsARunTimeFailure)
{
    for (const kelReaderType model : {kelReaderTypeAppersonBenchMark3000, kelReaderTypeAppersonAdvantage1200}) {
        Session session(model, {5, 5}, {});
        session.reader().AnswerKey(keyOf(5, 3, "0011", 3));
        EXPECT_EQ(session.batch(1), 0U);
        ASSERT_EQ(session.heard().reports.size(), 1U);
        EXPECT_EQ(session.heard().reports[0].ErrorNumber, 9);
        EXPECT_THAT(session.heard().reports[0].ErrorSource,
                    testing::StartsWith("basApperson.KeyReaderBenchMark3000Advantage1200"));
        EXPECT_THAT(session.device().errors(), IsEmpty());
    }
}

TEST(AppersonSessions, CancellingInADownloadIsToldByItsStep)
{
    for (const char* command : {"S1", "K7", "K8", "K1", "Q", "K6"}) {
        SCOPED_TRACE(command);
        Session session(kelReaderTypeAppersonAdvantage1200, {5, 5}, {.settings = {{"silent", command}}});
        session.reader().AnswerKey(keyOf(std::string(command) == "S1" ? 2 : 1, 4, "0011,0012", 4));
        session.heard().onGetQuestionsOnPage = [](Int16&, Int16& number) { number = 2; };
        const std::map<std::string, std::string> withIdentifier = {{"K7", "K70011"}, {"K8", "K80012"}};
        cancelBehind(session, withIdentifier.contains(command) ? withIdentifier.at(command) : command);
        EXPECT_FALSE(bool(session.reader().StartReader()));
        ASSERT_EQ(session.heard().reports.size(), 1U);
        EXPECT_EQ(session.heard().reports[0].ErrorDescription, VBLM_RTString(186));
        EXPECT_EQ(session.heard().reports[0].ErrorTitle, VBLM_RTString(188));
    }
}

} // namespace
} // namespace kel::test
