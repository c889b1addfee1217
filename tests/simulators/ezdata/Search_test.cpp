// SPDX-License-Identifier: MIT
#include "tests/simulators/ezdata/PackedRoundTrip.h"

namespace kel::test {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kSearchProbe = "\x12R7777\x12I00\x12"
                                          "E";

/// A device that answers everything that ends in "E" with the same.
class Parrot final : public Simulator {
public:
    explicit Parrot(std::string answer) : Simulator({.rate = Rate::Unlimited}), answer_(std::move(answer)) {}

private:
    void onByte(Byte byte) override
    {
        if (byte == 'E')
            send(answer_);
    }

    std::string answer_;
};

class SearchTest : public testing::Test {
protected:
    std::unique_ptr<Simulator> reader(kelReaderType model)
    {
        return makeSimulator(model, {.settings = {{"version", "  Rev 3.1 "}}});
    }

    void expectAllClosed()
    {
        for (Int16 port = 1; port <= 16; ++port)
            EXPECT_FALSE(host_.machine.line(port).isOpen()) << port;
    }

    std::vector<Int32> failureNumbers()
    {
        std::vector<Int32> numbers;
        for (const ErrorReport& report : host_.heard().reports) {
            numbers.push_back(report.ErrorNumber);
            EXPECT_THAT(report.ErrorSource, testing::StartsWith("basNCSEZData."));
        }
        return numbers;
    }

    ReaderHost host_;
};

constexpr kelReaderType kSearched[] = {kelReaderTypeNCSEZData, kelReaderTypeChatsworthACF100,
                                       kelReaderTypeChatsworthOMR1100, kelReaderTypeChatsworthOMR2000,
                                       kelReaderTypeChatsworthALSAccelScanOMR};
constexpr kelReaderType kNotSearched[] = {kelReaderTypeChatsworthACF200, kelReaderTypeChatsworthACP200};

TEST_F(SearchTest, PassesEveryPortThatIsNotTheReaders)
{
    for (const kelReaderType model : kSearched) {
        Parrot silent("");
        Parrot other("G?");
        Parrot longer("GG\r");
        Parrot shorter("G");
        const std::unique_ptr<Simulator> right = reader(model);
        host_.reader().LoadDefaults(model);
        host_.reader().Port(9);
        host_.heard().reports.clear();
        host_.machine.portState(1, PortState::Absent);
        host_.machine.portState(2, PortState::Busy);
        host_.machine.portState(3, PortState::NotPermitted);
        host_.machine.attach(4, silent);
        host_.machine.attach(5, other);
        host_.machine.attach(6, longer);
        host_.machine.attach(7, shorter);
        host_.machine.attach(8, *right);
        EXPECT_EQ(host_.reader().Locate(0), True) << model;
        EXPECT_EQ(host_.reader().Port(), 8);
        EXPECT_EQ(failureNumbers(), (std::vector<Int32>{8002, 8005, 8010}));
        EXPECT_THAT(right->errors(), testing::IsEmpty());
        expectAllClosed();
    }
    for (Int16 port = 4; port <= 8; ++port) {
        std::string expected;
        for ([[maybe_unused]] const kelReaderType model : kSearched)
            expected += kSearchProbe;
        EXPECT_EQ(host_.machine.line(port).sent(), expected) << port;
    }
}

TEST_F(SearchTest, TriesTheGivenPortFirstAndAgainInItsTurn)
{
    Parrot silent("");
    const std::unique_ptr<Simulator> right = reader(kelReaderTypeNCSEZData);
    host_.reader().LoadDefaults(kelReaderTypeNCSEZData);
    host_.machine.attach(12, *right);
    EXPECT_EQ(host_.reader().Locate(12), True);
    EXPECT_EQ(host_.reader().Port(), 12);
    EXPECT_TRUE(failureNumbers().empty());

    for (Int16 port = 1; port <= 16; ++port)
        host_.machine.attach(port, silent);
    EXPECT_EQ(host_.reader().Locate(3), False);
    EXPECT_EQ(host_.reader().Port(), 12);
    EXPECT_EQ(host_.machine.line(3).sent(), std::string(kSearchProbe) + std::string(kSearchProbe));
    EXPECT_EQ(host_.machine.line(16).sent(), kSearchProbe);
    EXPECT_TRUE(failureNumbers().empty());
    expectAllClosed();
}

TEST_F(SearchTest, NobodyAtAllIsAReportAPort)
{
    host_.reader().LoadDefaults(kelReaderTypeChatsworthACF100);
    EXPECT_EQ(host_.reader().Locate(0), False);
    EXPECT_EQ(failureNumbers(), std::vector<Int32>(16, 8002));
    expectAllClosed();
}

TEST_F(SearchTest, ModelsThatAreNotSearchedForTouchNoLine)
{
    for (const kelReaderType model : kNotSearched) {
        Parrot right("G\r");
        host_.reader().LoadDefaults(model);
        host_.machine.attach(1, right);
        EXPECT_EQ(host_.reader().Locate(1), False);
        EXPECT_TRUE(host_.machine.line(1).actions().empty());
    }
}

TEST_F(SearchTest, TheVersionIsTrimmed)
{
    std::vector<kelReaderType> models(std::begin(kSearched), std::end(kSearched));
    models.insert(models.end(), std::begin(kNotSearched), std::end(kNotSearched));
    for (const kelReaderType model : models) {
        const std::unique_ptr<Simulator> right = reader(model);
        host_.connect(model, *right);
        std::string version = "as it was";
        EXPECT_EQ(host_.reader().Firmware(version), True) << model;
        EXPECT_EQ(version, "Rev 3.1");
        EXPECT_THAT(right->errors(), testing::IsEmpty());
        expectAllClosed();
    }
    EXPECT_TRUE(failureNumbers().empty());
}

TEST_F(SearchTest, NoVersionLeavesTheTextAsItWas)
{
    for (const char* answer : {"", "Rev 3.1 G", "Rev 3.1\r", "?\r"}) {
        Parrot device(answer);
        host_.connect(kelReaderTypeNCSEZData, device);
        std::string version = "as it was";
        EXPECT_EQ(host_.reader().Firmware(version), False) << answer;
        EXPECT_EQ(version, "as it was");
        expectAllClosed();
    }
    EXPECT_TRUE(failureNumbers().empty());

    host_.machine.portState(1, PortState::Busy);
    std::string version = "as it was";
    EXPECT_EQ(host_.reader().Firmware(version), False);
    EXPECT_EQ(version, "as it was");
    EXPECT_EQ(failureNumbers(), std::vector<Int32>{8005});
    expectAllClosed();
}

TEST_F(SearchTest, AnUnpluggedReaderLeavesNoPortOpen)
{
    for (const bool firmware : {false, true}) {
        const std::unique_ptr<Simulator> right =
            makeSimulator(kelReaderTypeNCSEZData, {.faults = {parseFault("unplug@byte=2")}});
        host_.connect(kelReaderTypeNCSEZData, *right);
        std::string version = "as it was";
        EXPECT_EQ(firmware ? host_.reader().Firmware(version) : host_.reader().Locate(1), False);
        EXPECT_EQ(version, "as it was");
        expectAllClosed();
    }
}

} // namespace
} // namespace kel::test
