// SPDX-License-Identifier: MIT
#include "tests/simulators/ezdata/PackedRoundTrip.h"
#include "tests/support/LongRun.h"
#include "tests/support/PtyReader.h"
#include "tests/support/SideBySide.h"

// Sheets with packed marks through a real line. The dialogues are full of fixed pauses: a page of an EZData takes half
// a second at least, and a reader that sends by itself must not be ahead of its host. So each model's sheets are read
// in sessions side by side; but a user may watch 128 lines at once on most systems, and other tests run meanwhile.

namespace kel::test {
namespace {

constexpr std::size_t kSheets = 300;
constexpr std::size_t kSample = 16;
constexpr std::size_t kSampleSessions = 2;

struct PackedModel {
    kelReaderType type;
    bool feeder;
    Int32 mostRows;
    const char* feedMilliseconds; // from the start of a sheet, or from the sheet before, to the page
    std::size_t sessions;
    bool rejects; // whether it sends sheets out
};

constexpr Int32 kEZDataRows = 150;
constexpr Int32 kChatsworthRows = 128;
constexpr const char* kAfterTheReply = "10";
constexpr const char* kAfterTheHostsLook = "2500"; // it counts the answer after 500
constexpr const char* kAfterTheHostsWork = "2000"; // of a tenth of a second, when it finds a processor at once

const PackedModel kPackedModels[] = {
    {kelReaderTypeNCSEZData, false, kEZDataRows, kAfterTheHostsLook, 25, true},
    {kelReaderTypeChatsworthACF100, false, kEZDataRows, kAfterTheHostsLook, 25, true},
    {kelReaderTypeChatsworthOMR1100, false, kChatsworthRows, kAfterTheHostsWork, 10, false},
    {kelReaderTypeChatsworthOMR2000, true, kChatsworthRows, kAfterTheReply, 3, false},
    {kelReaderTypeChatsworthALSAccelScanOMR, false, kChatsworthRows, kAfterTheReply, 3, true},
    {kelReaderTypeChatsworthACF200, false, kChatsworthRows, kAfterTheHostsWork, 10, false},
    {kelReaderTypeChatsworthACF200, true, kChatsworthRows, kAfterTheReply, 3, false},
    {kelReaderTypeChatsworthACP200, false, kChatsworthRows, kAfterTheHostsWork, 10, false},
    {kelReaderTypeChatsworthACP200, true, kChatsworthRows, kAfterTheReply, 3, false},
};

/// What a round trip needs of a simulated reader behind a pseudo-terminal.
class PackedPtyReader {
public:
    PackedPtyReader(const PackedModel& model, const std::vector<SimulatedSheet>& sheets)
        : device_(makeSimulator(
              model.type, {.sheets = SheetFeeder::of(sheets), .rate = Rate::Unlimited, .settings = settingsOf(model)})),
          line_(model.type, *device_, true, false)
    {
        reader().Feeder(model.feeder);
        reader().SleepTime(5);
    }

    [[nodiscard]] clsKELReader& reader() { return line_.reader(); }
    [[nodiscard]] RecordingHost& heard() { return line_.heard(); }
    [[nodiscard]] std::vector<Int32> logged(SheetEvent event) const { return sheetsLogged(*device_, event); }

    /// At the end of the session: only then the device may be looked into.
    void expectNoComplaints()
    {
        line_.finish();
        EXPECT_THAT(device_->errors(), testing::IsEmpty());
    }

private:
    static std::map<std::string, std::string> settingsOf(const PackedModel& model)
    {
        std::map<std::string, std::string> settings = {{"feed-ms", model.feedMilliseconds}};
        if (model.type == kelReaderTypeChatsworthACF100)
            settings["threshold"] = "76"; // what the host wants, or each start takes two seconds more
        return settings;
    }

    std::unique_ptr<Simulator> device_; // outlives the line
    PtyReader line_;
};

class PackedRoundTripOverAPseudoTerminal : public testing::TestWithParam<PackedModel> {};

TEST_P(PackedRoundTripOverAPseudoTerminal, EverySheetAndItsWay)
{
    const PackedModel& model = GetParam();
    const std::vector<SimulatedSheet> sheets = randomSheets(sampled(kSheets, kSample), model.mostRows, 21);
    const std::size_t sessions = sampled(model.sessions, kSampleSessions);
    tally("sheets over a pseudo-terminal", sheets.size());
    sideBySide(sessions, [&](std::size_t session) {
        SCOPED_TRACE("session " + std::to_string(session));
        const std::vector<SimulatedSheet> pile = partOf(sheets, session, sessions);
        PackedPtyReader bench(model, pile);
        expectRoundTrip(bench, pile, model.mostRows);
        std::vector<Int32> rejected;
        std::vector<Int32> ejected;
        const auto last = static_cast<Int32>(pile.size());
        for (Int32 sheet = 7; sheet <= last && model.rejects; sheet += 7)
            rejected.push_back(sheet);
        if (model.rejects && last % 7 != 0)
            ejected.push_back(last);
        EXPECT_EQ(bench.logged(SheetEvent::Rejected), rejected);
        EXPECT_EQ(bench.logged(SheetEvent::Ejected), ejected);
    });
}

/// All in a long run, on a machine that keeps time; otherwise those whose host waits for each reply and for each sheet.
std::vector<PackedModel> modelsOfThisRun()
{
    std::vector<PackedModel> models(std::begin(kPackedModels), std::end(kPackedModels));
    if (!longRun())
        std::erase_if(models, [](const PackedModel& model) { return model.feedMilliseconds != kAfterTheReply; });
    return models;
}

INSTANTIATE_TEST_SUITE_P(Models, PackedRoundTripOverAPseudoTerminal, testing::ValuesIn(modelsOfThisRun()),
                         [](const auto& model) {
                             return "Model" + std::to_string(model.param.type) + (model.param.feeder ? "Feeder" : "");
                         });

} // namespace
} // namespace kel::test
