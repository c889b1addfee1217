// SPDX-License-Identifier: MIT
#include "platform/ReceivedInput.h"
#include "simulators/SimulatorTable.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/simulators/DeviceBench.h"

#include <gmock/gmock.h>

// Readers that send sheet after sheet unasked, in no time, to a host that does not take them: they feed as far as the
// line has room, however high the pile is.

namespace kel {
namespace {

using Commands = std::vector<std::string>;
using Settings = std::map<std::string, std::string>;

/// How a reader is brought to sending, and what its line is like.
struct Unasked {
    const char* name;
    kelReaderType model;
    Commands start;
    Settings settings;
    Rate rate = Rate::Unlimited;
    const char* fault = nullptr;
};

// The reply to the last command comes before the first sheet.
const Settings kAfterTheReply = {{"feed-ms", "0"}, {"first-ms", "50"}};
const Commands kBenchMarkStart = {"R1", "M6", "I1", "A9", "R6", "S1", "M0", "B1"};

const Unasked kReaders[] = {
    {"BenchMark3000", kelReaderTypeAppersonBenchMark3000, kBenchMarkStart, kAfterTheReply},
    {"Advantage1200", kelReaderTypeAppersonAdvantage1200, {"R1", "M6", "M0", "M8"}, kAfterTheReply},
    {"OMR1100",
     kelReaderTypeChatsworthOMR1100,
     {"\x12"
      "R7777I00E"},
     {{"feed-ms", "0"}}},
    {"AtTheSpeedOfTheLine", kelReaderTypeAppersonBenchMark3000, kBenchMarkStart, kAfterTheReply, Rate::Wire},
    {"ThroughAnAdapter", kelReaderTypeAppersonBenchMark3000, kBenchMarkStart, kAfterTheReply, Rate::Unlimited, "lumps"},
    {"OfAnotherSpeed", kelReaderTypeAppersonBenchMark3000, kBenchMarkStart, kAfterTheReply, Rate::Unlimited,
     "clock-off:1"},
};

constexpr std::uint64_t kPile = 100'000;
constexpr std::uint64_t kShortestSheet = 64; // what each of them sends of a sheet, at the least

// So much waits in the reader to be sent, so much on a wire where something is wrong, and so much at the host's end.
constexpr std::uint64_t kMostAhead = 3 * ReceivedInput::kRoom / kShortestSheet;

std::unique_ptr<Simulator> readerOf(const Unasked& unasked, std::uint64_t sheets)
{
    SimulatorOptions options{
        .seeded = SeededSheets{.seed = 3, .count = sheets}, .rate = unasked.rate, .settings = unasked.settings};
    if (unasked.fault)
        options.siteFaults = {parseSiteFault(unasked.fault).value()};
    return makeSimulator(unasked.model, std::move(options));
}

/// What a reader sends at first to whoever takes everything at once.
std::string sentUnhindered(Unasked unasked, std::size_t length)
{
    unasked.rate = Rate::Unlimited;
    unasked.fault = nullptr;
    const std::unique_ptr<Simulator> reader = readerOf(unasked, length / kShortestSheet);
    DeviceBench bench(*reader);
    std::string sent;
    for (const std::string& command : unasked.start)
        sent = bench.ask(command);
    return sent.substr(0, length);
}

class HighPile : public testing::TestWithParam<Unasked> {};

TEST_P(HighPile, IsFedAsTheLineHasRoom)
{
    constexpr std::size_t kTaken = 3 * ReceivedInput::kRoom;
    const std::unique_ptr<Simulator> reader = readerOf(GetParam(), kPile);
    std::uint64_t fed = 0;
    reader->onLog([&](const SheetRecord& entry) { fed += entry.event == SheetEvent::Fed ? 1 : 0; });
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    machine.attach(1, *reader);
    const std::unique_ptr<SerialControl> control = machine.newSerialControl();
    control->CommPort(1);
    control->Settings(usualLine(GetParam().model));
    control->PortOpen(True);
    for (const std::string& command : GetParam().start) {
        static_cast<void>(control->Input());
        control->Output(command);
        Sleep(100);
    }

    Sleep(60'000);
    EXPECT_EQ(control->InBufferCount(), static_cast<Int32>(ReceivedInput::kRoom));
    EXPECT_GT(fed, 0U);
    EXPECT_LE(fed, kMostAhead);

    std::string taken;
    while (taken.size() < kTaken) {
        taken += control->Input();
        Sleep(60'000);
    }
    EXPECT_TRUE(taken.starts_with(sentUnhindered(GetParam(), kTaken))); // pages of text are no message
    EXPECT_LE(fed, kMostAhead + taken.size() / kShortestSheet);
    EXPECT_THAT(reader->errors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Readers, HighPile, testing::ValuesIn(kReaders),
                         [](const auto& reader) { return reader.param.name; });

} // namespace
} // namespace kel
