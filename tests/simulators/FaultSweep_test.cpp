// SPDX-License-Identifier: MIT
#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "tests/simulators/ShortSession.h"
#include "tests/support/LongRun.h"
#include "tests/support/SideBySide.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

// A reader that is unplugged, falls silent or sends a wrong byte, at every byte of a short session: the batch comes to
// its end, reports that in lines as they should be, and delivers no sheet that has not come whole. Every wait has an
// end, if only because somebody stops it.

namespace kel::test {
namespace {

using namespace std::chrono_literals;

using Lines = std::vector<std::string>;

/// A device that counts what it sends.
class CountedDevice final : public LineDevice {
public:
    explicit CountedDevice(LineDevice& device) : device_(device) {}

    void lineOpened(Moment now, const LineParameters& line) override { device_.lineOpened(now, line); }
    void lineClosed(Moment now) override { device_.lineClosed(now); }
    void byteFromHost(Moment now, Byte byte) override { device_.byteFromHost(now, byte); }
    [[nodiscard]] std::optional<Moment> nextEvent() const override { return device_.nextEvent(); }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        const std::optional<Byte> byte = device_.takeByte(now);
        sent_ += byte ? 1 : 0;
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return device_.hungUp(); }

    [[nodiscard]] std::size_t sent() const noexcept { return sent_; }

private:
    LineDevice& device_;
    std::size_t sent_ = 0;
};

struct Heard {
    Lines lines;
    std::size_t bytes = 0; ///< what the reader has sent
};

Heard underTheVirtualClock(const SweptModel& model, std::vector<Fault> faults)
{
    const ShortSession session(model);
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    const auto simulator = session.device(std::move(faults));
    CountedDevice device(*simulator);
    machine.attach(1, device);
    bool stopped = false;
    machine.at(10min, [&] { stopped = true; });
    Lines lines = session.scan([&] { return stopped; });
    EXPECT_FALSE(machine.line(1).isOpen());
    return {std::move(lines), device.sent()};
}

Lines overAPseudoTerminal(const SweptModel& model, std::vector<Fault> faults)
{
    const ShortSession session(model, {"Timeout=1", "SleepTime=25"});
    const std::unique_ptr<Platform> machine = makePosixPlatform();
    const PlatformScope scope(*machine);
    const auto device = session.device(std::move(faults));
    PtyDeviceHost pty(*device, {.link = {}, .paceHost = false});
    const PortOverride line(1, pty.deviceFile());
    pty.start();
    // Some waits for a sheet are ones for an operator, who gives up.
    const Moment patience = platform().pump().now() + 4s;
    Lines lines = session.scan([&] { return platform().pump().now() > patience; });
    pty.stop();
    pty.join();
    return lines;
}

nlohmann::json eventOf(const std::string& line)
{
    EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    nlohmann::json event = nlohmann::json::parse(line, nullptr, false);
    EXPECT_TRUE(event.is_object()) << line;
    return event.is_object() ? event : nlohmann::json{{"event", "none"}};
}

/// The sheets among the lines, which end with the one event of the end.
Lines sheetsOf(const Lines& lines)
{
    Lines sheets;
    for (const std::string& line : lines) {
        const nlohmann::json event = eventOf(line);
        EXPECT_EQ(event["event"] == "end", &line == &lines.back()) << line;
        if (event["event"] == "sheet")
            sheets.push_back(line);
        else if (event["event"] == "end")
            EXPECT_EQ(event["sheets"], sheets.size());
        else
            EXPECT_EQ(event["event"], "failure");
    }
    EXPECT_FALSE(lines.empty());
    return sheets;
}

/// How a sheet that was delivered may differ from the same without a fault.
enum class Likeness {
    Equal,   ///< not at all
    Partial, ///< marks are missing
    Shape,   ///< marks may be anything
};

/// A dialogue without checksums cannot know a wrong byte. And a Sekonic reader sends as many rows as have marks,
/// without a count or an end: a transfer that stalls is over, and the sheet has the marks that came. A reader that is
/// unplugged in real time stalls first: a busy host may see the hang-up later than that.
Likeness likenessOf(const SweptModel& model, Fault::Kind kind, bool realTime)
{
    if (kind == Fault::Kind::Garble)
        return Likeness::Shape;
    const bool endsByStalling = simulatedFamily(model.type) == SimulatedFamily::SekonicSerial;
    const bool stalls = kind == Fault::Kind::Silent || (kind == Fault::Kind::Unplug && realTime);
    return stalls && endsByStalling ? Likeness::Partial : Likeness::Equal;
}

void expectLike(const std::string& line, const std::string& whole, Likeness likeness)
{
    if (likeness == Likeness::Equal) {
        EXPECT_EQ(line, whole);
        return;
    }
    const nlohmann::json one = eventOf(line);
    const nlohmann::json other = eventOf(whole);
    for (const char* side : {"side1", "side2"}) {
        ASSERT_EQ(one[side].size(), other[side].size()) << line;
        for (std::size_t row = 0; row < one[side].size(); ++row) {
            ASSERT_EQ(one[side][row].size(), other[side][row].size()) << line;
            for (std::size_t column = 0; likeness == Likeness::Partial && column < one[side][row].size(); ++column) {
                const nlohmann::json& mark = one[side][row][column];
                EXPECT_TRUE(mark == 0 || mark == other[side][row][column]) << line;
            }
        }
    }
}

/// What has come of a session with a fault, held against the same without one.
void expectWhole(const Lines& lines, const Lines& wholeSheets, Likeness likeness)
{
    const Lines sheets = sheetsOf(lines);
    ASSERT_LE(sheets.size(), wholeSheets.size());
    for (std::size_t place = 0; place < sheets.size(); ++place)
        expectLike(sheets[place], wholeSheets[place], likeness);
}

class FaultSweep : public testing::TestWithParam<std::tuple<SweptModel, Fault>> {
protected:
    [[nodiscard]] static const SweptModel& model() { return std::get<0>(GetParam()); }
    [[nodiscard]] static Likeness likeness(bool realTime)
    {
        return likenessOf(model(), std::get<1>(GetParam()).kind, realTime);
    }

    /// The fault at each byte in a long run, otherwise at some that are spread over the session.
    [[nodiscard]] std::vector<Fault> faults(std::size_t sample) const
    {
        const std::size_t count = std::min(whole_.bytes, sampled(whole_.bytes, sample));
        std::vector<Fault> all(count, std::get<1>(GetParam()));
        for (std::size_t place = 0; place < count; ++place)
            all[place].byte = static_cast<Int32>(1 + place * whole_.bytes / count);
        return all;
    }

    /// The session without a fault.
    void SetUp() override
    {
        whole_ = underTheVirtualClock(model(), {});
        sheets_ = sheetsOf(whole_.lines);
        ASSERT_EQ(sheets_.size(), std::size_t{ShortSession::kSheets});
    }

    Heard whole_;
    Lines sheets_;
};

TEST_P(FaultSweep, UnderTheVirtualClock)
{
    for (const Fault& fault : faults(8)) {
        SCOPED_TRACE(toText(fault));
        expectWhole(underTheVirtualClock(model(), {fault}).lines, sheets_, likeness(false));
        tally("sessions with a fault under the virtual clock", 1);
    }
}

class FaultSweepOverAPseudoTerminal : public FaultSweep {};

/// The sessions mostly wait for what does not come, side by side.
TEST_P(FaultSweepOverAPseudoTerminal, AndAlsoThere)
{
    constexpr std::size_t kSideBySide = 8;
    const std::vector<Fault> all = faults(2);
    const std::size_t parts = std::min(kSideBySide, all.size());
    inParallel(parts, [&](std::size_t part) {
        for (const Fault& fault : partOf(all, part, parts)) {
            SCOPED_TRACE(toText(fault));
            expectWhole(overAPseudoTerminal(model(), {fault}), sheets_, likeness(true));
            tally("sessions with a fault over a pseudo-terminal", 1);
        }
    });
}

const auto kAll =
    testing::Combine(testing::ValuesIn(kSweptModels),
                     testing::Values(Fault{.kind = Fault::Kind::Unplug}, Fault{.kind = Fault::Kind::Silent},
                                     Fault{.kind = Fault::Kind::Garble, .value = 85}));

std::string nameOfSweep(const testing::TestParamInfo<std::tuple<SweptModel, Fault>>& info)
{
    const Fault::Kind kind = std::get<1>(info.param).kind;
    const char* word = kind == Fault::Kind::Unplug ? "Unplug" : kind == Fault::Kind::Silent ? "Silent" : "Garble";
    return nameOf(std::get<0>(info.param)) + word;
}

INSTANTIATE_TEST_SUITE_P(Models, FaultSweep, kAll, nameOfSweep);
INSTANTIATE_TEST_SUITE_P(Models, FaultSweepOverAPseudoTerminal, kAll, nameOfSweep);

} // namespace
} // namespace kel::test
