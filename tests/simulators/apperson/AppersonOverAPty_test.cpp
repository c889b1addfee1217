// SPDX-License-Identifier: MIT
#include "contract/AnswerKey.h"
#include "simulators/apperson/DataLineReader.h"
#include "tests/simulators/apperson/AppersonRoundTrip.h"
#include "tests/support/LongRun.h"
#include "tests/support/PtyReader.h"

namespace kel::test {
namespace {

constexpr std::uint64_t kSheetsOverAPty = 250;
constexpr std::uint64_t kSample = 10;

SimulatorOptions atOnce(SimulatorOptions options, kelReaderType model)
{
    options.rate = Rate::Unlimited;
    options.settings["feed-ms"] = "0";
    options.settings["reply-ms"] = "0";
    // A line that is there before the host has taken the last reply of the start is taken for a part of it.
    if (model == kelReaderTypeAppersonAdvantage1200)
        options.settings["first-ms"] = "200";
    return options;
}

/// A simulated reader behind a pseudo-terminal.
class AppersonPtyReader {
public:
    AppersonPtyReader(kelReaderType model, SimulatorOptions options)
        : device_(makeSimulator(model, atOnce(std::move(options), model))), line_(model, *device_)
    {
        // A sheet that never comes would be waited for without end.
        platform().pump().hostPump([this, end = platform().pump().now() + kPatience] {
            if (platform().pump().now() > end)
                reader().CancelScan(True);
        });
    }

    [[nodiscard]] clsKELReader& reader() { return line_.reader(); }
    [[nodiscard]] RecordingHost& heard() { return line_.heard(); }
    [[nodiscard]] const DataLineReader& device() const { return dynamic_cast<const DataLineReader&>(*device_); }

    /// At the end of the session: only then the device may be looked into.
    void expectNoComplaints()
    {
        line_.finish();
        EXPECT_THAT(device_->errors(), testing::IsEmpty());
        for (const ErrorReport& report : heard().reports)
            ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    }

private:
    std::unique_ptr<Simulator> device_; // outlives the line
    PtyReader line_;
};

class AppersonRoundTripOverAPseudoTerminal : public testing::TestWithParam<AppersonSession> {};

TEST_P(AppersonRoundTripOverAPseudoTerminal, EverySheet)
{
    const std::uint64_t sheets = sampled(kSheetsOverAPty, kSample);
    tally("sheets over a pseudo-terminal", sheets);
    AppersonPtyReader bench(GetParam().model, optionsOf(GetParam(), sheets));
    AppersonRoundTrip(bench, GetParam()).expectAll(sheets);
}

/// An Advantage 1200 sends by itself, and a busy host is late: in a long run alone, on a machine that keeps time.
std::vector<AppersonSession> sessionsOfThisRun()
{
    std::vector<AppersonSession> sessions = kAppersonSessions;
    if (!longRun())
        std::erase_if(sessions,
                      [](const auto& session) { return session.model == kelReaderTypeAppersonAdvantage1200; });
    return sessions;
}

INSTANTIATE_TEST_SUITE_P(Sessions, AppersonRoundTripOverAPseudoTerminal, testing::ValuesIn(sessionsOfThisRun()),
                         [](const auto& session) { return session.param.name; });

// The readers find fault with pieces that come too fast; in a long run, on a machine that keeps time.
TEST(AppersonKeysOverAPseudoTerminal, GoIntoBothReaders)
{
    for (const kelReaderType model : {kelReaderTypeAppersonBenchMark3000, kelReaderTypeAppersonAdvantage1200}) {
        const bool bench = model == kelReaderTypeAppersonBenchMark3000;
        SimulatorOptions options;
        if (!longRun())
            options.settings["key-slack-ms"] = "3600000";
        AppersonPtyReader line(model, std::move(options));
        const auto key = makeReference<AnswerKey>();
        key->FormIDs("0011");
        for (Int32 question = 1; question <= 20; ++question)
            key->AddQuestion("Question", {"A", "B", "C", "D", "E"}, {question % 2 == 0 ? "A" : "B,E", "C"});
        line.reader().AnswerKey(key);
        Int32 count = 0;
        EXPECT_TRUE(bool(line.reader().ReadBatch(False, 0, count)));
        line.expectNoComplaints();
        EXPECT_TRUE(line.device().key().complete);
        std::string first;
        std::string second;
        for (Int32 question = 1; question <= 20; ++question) {
            first += bench ? (question % 2 == 0 ? "\x01" : "\x12") : question % 2 == 0 ? "10000" : "01001";
            second += "00100";
        }
        using Versions = std::map<Int32, std::string>;
        EXPECT_EQ(line.device().key().versions, bench ? (Versions{{1, first}}) : (Versions{{1, first}, {2, second}}));
    }
}

} // namespace
} // namespace kel::test
