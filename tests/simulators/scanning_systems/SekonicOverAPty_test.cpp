// SPDX-License-Identifier: MIT
#include "tests/simulators/scanning_systems/SekonicRoundTrip.h"
#include "tests/support/LongRun.h"
#include "tests/support/PtyReader.h"
#include "tests/support/SideBySide.h"

namespace kel::test {
namespace {

// A thousand sheets over all sessions in a long run. A reply is over when nothing has come for one pause of the host,
// and a session waits for many pauses: several of them run side by side.
constexpr std::size_t kSheetsOverAPty = 84;
constexpr std::size_t kSample = 5;
constexpr std::size_t kParts = 5;
constexpr Int32 kPause = 25;
constexpr Int32 kPauseOfABusyMachine = 250;

/// What a round trip needs of a simulated reader behind a pseudo-terminal.
class SekonicPtyReader {
public:
    SekonicPtyReader(const SekonicSession& session, const std::vector<SimulatedSheet>& sheets)
        : device_(makeSimulator(session.model, optionsWith(session, sheets))),
          line_(session.model, *device_, true, false)
    {
        reader().SleepTime(longRun() ? kPause : kPauseOfABusyMachine);
        describeForm(reader(), session);
    }

    [[nodiscard]] clsKELReader& reader() { return line_.reader(); }
    [[nodiscard]] RecordingHost& heard() { return line_.heard(); }
    [[nodiscard]] const std::vector<SheetRecord>& log() const { return device_->log(); }

    /// At the end of the session: only then the device may be looked into.
    void expectNoComplaints()
    {
        line_.finish();
        EXPECT_THAT(device_->errors(), testing::IsEmpty());
    }

private:
    static SimulatorOptions optionsWith(const SekonicSession& session, const std::vector<SimulatedSheet>& sheets)
    {
        SimulatorOptions options = optionsOf(session, {{"feed-ms", "5"}});
        options.sheets = SheetFeeder::of(sheets);
        options.rate = Rate::Unlimited;
        return options;
    }

    std::unique_ptr<Simulator> device_; // outlives the line
    PtyReader line_;
};

class SekonicRoundTripOverAPseudoTerminal : public testing::TestWithParam<SekonicSession> {};

TEST_P(SekonicRoundTripOverAPseudoTerminal, EverySheetItsPrintAndItsWay)
{
    const std::vector<SimulatedSheet> sheets = randomSekonicSheets(GetParam(), sampled(kSheetsOverAPty, kSample));
    tally("sheets over a pseudo-terminal", sheets.size());
    sideBySide(kParts, [&](std::size_t part) {
        SCOPED_TRACE("part " + std::to_string(part));
        const std::vector<SimulatedSheet> pile = partOf(sheets, part, kParts);
        SekonicPtyReader bench(GetParam(), pile);
        SekonicRoundTrip(bench, GetParam(), pile).expectAll();
    });
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicRoundTripOverAPseudoTerminal, testing::ValuesIn(kSekonicSessions),
                         nameOfSession);

} // namespace
} // namespace kel::test
