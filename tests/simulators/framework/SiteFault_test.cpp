// SPDX-License-Identifier: MIT
#include "simulators/framework/SiteFault.h"

#include "tests/simulators/framework/LittleReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace kel {
namespace {

using namespace std::chrono_literals;

SimulatorOptions withSiteFaults(std::initializer_list<const char*> faults, Rate rate = Rate::Wire)
{
    SimulatorOptions options = withFaults({}, rate);
    for (const char* fault : faults)
        options.siteFaults.push_back(parseSiteFault(fault).value());
    return options;
}

std::string refusalOf(std::string_view text)
{
    try {
        static_cast<void>(parseSiteFault(text));
    } catch (const std::invalid_argument& refusal) {
        return refusal.what();
    }
    return "";
}

TEST(SiteFault, IsReadAndWritten)
{
    for (const char* text : {"wrong-speed", "wrong-speed:300", "wrong-parity:O", "clock-off:-3", "echo", "jam:7",
                             "switched-off:0", "other-model:24"})
        EXPECT_EQ(toText(parseSiteFault(text).value()), text);
    EXPECT_EQ(parseSiteFault("jam@sheet=3"), std::nullopt);
    EXPECT_EQ(parseSiteFault("burn"), std::nullopt);
}

TEST(SiteFault, RefusesAWrongArgument)
{
    EXPECT_EQ(refusalOf("echo:1"), "fault \"echo:1\": echo takes no argument");
    EXPECT_EQ(refusalOf("jam:0"), "fault \"jam:0\": SHEET is the number of a sheet, from 1");
    EXPECT_EQ(refusalOf("wrong-parity:e"), "fault \"wrong-parity:e\": N|E|O is N, E or O");
    EXPECT_EQ(refusalOf("lumps:"), "fault \"lumps:\": MS is a number");
    EXPECT_EQ(refusalOf("wrong-data-bits:9"), "fault \"wrong-data-bits:9\": 7|8 is 7 or 8");
}

TEST(SiteFault, EachHasItsNameAndItsSentence)
{
    std::set<std::string_view> names;
    for (const SiteFaultEntry& entry : siteFaults()) {
        EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
        EXPECT_EQ(&entryOf(entry.kind), &entry);
        EXPECT_TRUE(entry.sentence.ends_with('.')) << entry.name;
        EXPECT_EQ(entry.argument.empty(), entry.range.empty()) << entry.name;
    }
}

TEST(SiteFault, EachFamilyHasManyOfThem)
{
    for (const SimulatedFamily family : kSimulatedFamilies) {
        const auto count =
            std::ranges::count_if(siteFaults(), [&](const SiteFaultEntry& entry) { return entry.appliesTo(family); });
        EXPECT_GE(count, family == SimulatedFamily::SekonicUsb ? 6 : 12) << nameOf(family);
    }
}

TEST(SiteFault, AHostOfTheReadersSpeedHearsIt)
{
    for (const Rate rate : {Rate::Wire, Rate::Unlimited}) {
        LittleReader reader(withSiteFaults({"wrong-speed"}, rate));
        DeviceBench bench(reader);
        EXPECT_NE(bench.ask("R"), "0123456789");
        bench.close();
        bench.open({.baudRate = 19200});
        EXPECT_EQ(bench.ask("R"), "0123456789");
        bench.close();
        bench.open();
        EXPECT_NE(bench.ask("R"), "0123456789");
        EXPECT_TRUE(reader.errors().empty()); // what it did not understand is not the host's mistake
    }
}

TEST(SiteFault, AReaderThatSendsByItselfIsHeardAsRubbish)
{
    LittleReader reader(withSiteFaults({"wrong-speed:19200"}));
    DeviceBench bench(reader);
    reader.send("0123456789");
    const std::string heard = bench.wait(1s);
    EXPECT_FALSE(heard.empty());
    EXPECT_EQ(heard.find('3'), std::string::npos);
}

TEST(SiteFault, BytesOfAWrongParityComeAsQuestionMarks)
{
    LittleReader reader(withSiteFaults({"wrong-parity:E", "wrong-data-bits:7"}));
    DeviceBench bench(reader, {.parity = 'O', .dataBits = 7});
    reader.send("0123");
    EXPECT_EQ(bench.wait(1s), "????");
    bench.close();
    bench.open({.parity = 'E', .dataBits = 7});
    EXPECT_EQ(bench.ask("R"), "0123456789");
}

TEST(SiteFault, WithoutAWireTheHostIsSetAsTheModelUsuallyIs)
{
    SimulatorOptions options = withSiteFaults({"wrong-parity:O"});
    options.usualLine = "9600,E,7,1";
    options.wireShows = false;
    LittleReader reader(options);
    DeviceBench bench(reader); // a pseudo-terminal tells N and 8 of every line
    reader.send("0123");
    EXPECT_EQ(bench.wait(1s), "????");
}

TEST(SiteFault, ClocksAreALittleOffWithoutHarm)
{
    LittleReader right(withSiteFaults({}));
    DeviceBench exact(right, thousandBaud());
    SimulatorOptions options = withSiteFaults({"clock-off"});
    options.usualLine = "1000,N,8,1";
    LittleReader reader(options);
    DeviceBench bench(reader, thousandBaud());
    EXPECT_EQ(bench.ask("R"), "0123456789");
    exact.ask("R");
    const auto span = [](const DeviceBench& of) { return times(of).back() - times(of).front(); };
    EXPECT_EQ(span(exact), 90ms);
    EXPECT_NEAR(static_cast<double>(span(bench).count()), 90e6 / 1.02, 1e4);
}

TEST(SiteFault, HandshakingThatIsNotWiredKeepsTheReaderSilent)
{
    for (const Int32 handshaking : {0, 1, 2, 3}) {
        LittleReader reader(withSiteFaults({"handshaking-unwired"}));
        DeviceBench bench(reader, {.handshaking = handshaking});
        EXPECT_EQ(bench.ask("R"), "");
        EXPECT_EQ(reader.heardAt.empty(), handshaking >= 2);
    }
}

TEST(SiteFault, WithoutHandshakingLongRepliesLoseBytes)
{
    LittleReader reader(withSiteFaults({"handshaking-off:4"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), "0123468");
    EXPECT_EQ(bench.ask("R"), "0123468");
}

TEST(SiteFault, XonAndXoffAreSwallowed)
{
    LittleReader reader(withSiteFaults({"xon-xoff-swallowed"}));
    DeviceBench bench(reader);
    bench.send("\x11\x13R");
    EXPECT_EQ(reader.heardAt.size(), 1U);
    reader.send("1\x11"
                "2\x13"
                "3");
    EXPECT_EQ(bench.wait(1s), "0123456789123");
}

TEST(SiteFault, AnEchoComesBeforeTheReply)
{
    LittleReader reader(withSiteFaults({"echo"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), "R0123456789");
}

TEST(SiteFault, LumpsComeEverySoOften)
{
    LittleReader reader(withSiteFaults({"lumps:25"}));
    DeviceBench bench(reader, thousandBaud());
    EXPECT_EQ(bench.ask("R"), "0123456789");
    EXPECT_EQ(times(bench), (std::vector<Moment>{25ms, 25ms, 50ms, 50ms, 75ms, 75ms, 75ms, 100ms, 100ms, 125ms}));
}

TEST(SiteFault, ASwitchedOffReaderSaysNoMore)
{
    LittleReader reader(withSiteFaults({"switched-off:2"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("F"), "sheet 1:1");
    EXPECT_EQ(bench.ask("F"), "sheet");
    EXPECT_EQ(bench.ask("R"), "");
    bench.close();
    bench.open();
    EXPECT_EQ(bench.ask("R"), "");
    LittleReader never(withSiteFaults({"switched-off:0"}));
    DeviceBench other(never);
    EXPECT_EQ(other.ask("R"), "");
    EXPECT_TRUE(never.heardAt.empty());
}

TEST(SiteFault, PaperGoesWrongAtItsSheet)
{
    LittleReader jammed(withSiteFaults({"jam:2"}));
    DeviceBench first(jammed);
    EXPECT_EQ(first.ask("FF"), "sheet 1:1");
    EXPECT_EQ(jammed.lastFeed, LittleReader::Feed::Jam);

    LittleReader empty(withSiteFaults({"empty-feeder"}));
    DeviceBench second(empty);
    EXPECT_EQ(second.ask("FF"), "");
    EXPECT_EQ(empty.lastFeed, LittleReader::Feed::Empty);

    LittleReader two(withSiteFaults({"double-feed:2"}));
    DeviceBench third(two);
    EXPECT_EQ(third.ask("FFF"), "sheet 1:1sheet 2:3");
    EXPECT_EQ(two.lastFeed, LittleReader::Feed::Empty);
}

} // namespace
} // namespace kel
