// SPDX-License-Identifier: MIT
// Every family against another side that sends without end, or drips: the session ends, and holds little.

#include "platform/PlatformAround.h"
#include "platform/TurnTimer.h"
#include "reader/clsKELReader.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/platform/FakeLine.h"
#include "tests/support/KeptReports.h"

#include <gtest/gtest.h>

#include <random>

namespace kel {
namespace {

using namespace std::chrono_literals;

/// A control whose line is a fake one, open from the beginning to the end.
class FakeControl final : public LineControl {
public:
    FakeControl(test::FakeLine& line, test::FakePump& pump) : LineControl(5), line_(line), pump_(pump) {}

private:
    class Open final : public OpenLine {
    public:
        Open(test::FakeLine& line, test::FakePump& pump) : line_(line), pump_(pump) { pump_.add(line_); }
        ~Open() override { pump_.remove(line_); }
        void set(const LineParameters&) override {}
        [[nodiscard]] ReceivedInput& input() override { return line_; }
        void send(std::string_view) override { line_.answerMayCome(); }

    private:
        test::FakeLine& line_;
        test::FakePump& pump_;
    };

    [[nodiscard]] std::unique_ptr<OpenLine> open(Int16, const LineParameters&) override
    {
        return std::make_unique<Open>(line_, pump_);
    }

    test::FakeLine& line_;
    test::FakePump& pump_;
};

class FakeCarrier final : public Carrier {
public:
    FakeCarrier(test::FakeLine& line, const std::shared_ptr<test::FakePump>& pump) : control_(line, *pump), timer_(pump)
    {
    }
    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return timer_; }

private:
    FakeControl control_;
    TurnTimer timer_;
};

/// A simulated machine but for its pump.
class FakeMachine final : public PlatformAround {
public:
    FakeMachine(Platform& machine, test::FakePump& pump) : PlatformAround(machine), pump_(pump) {}

    [[nodiscard]] MessagePump& pump() override { return pump_; }

private:
    test::FakePump& pump_;
};

class EndlessSenderTest : public ::testing::TestWithParam<kelReaderType> {
protected:
    EndlessSenderTest() : machine(simulated, *pump), scope(machine)
    {
        reader.LoadDefaults(GetParam());
        reader.Port(1);
        reader.Side1Rows(PageArray::of(1, {60}));
        reader.Side1Cols(PageArray::of(1, {12}));
        reader.fComm(Reference<Carrier>(makeReference<FakeCarrier>(line, pump)));
        reader.SetError(std::make_shared<test::KeptReports>());
    }
    ~EndlessSenderTest() override { reader.SetError(nullptr); }

    void endsWith(const std::function<char()>& next)
    {
        line.endless(next);
        Int32 reads = 0;
        reader.ReadBatch(False, 3, reads);
        EXPECT_LT(line.given(), 64 * ReceivedInput::kRoom);
    }

    test::FakeTime time;
    std::shared_ptr<test::FakePump> pump = std::make_shared<test::FakePump>(time);
    test::FakeLine line{time};
    SimulatedPlatform simulated;
    FakeMachine machine;
    PlatformScope scope;
    clsKELReader reader;
};

TEST_P(EndlessSenderTest, Zeros)
{
    endsWith([] { return '\0'; });
}

TEST_P(EndlessSenderTest, CarriageReturns)
{
    endsWith([] { return '\r'; });
}

TEST_P(EndlessSenderTest, Printable)
{
    endsWith([] { return 'A'; });
}

TEST_P(EndlessSenderTest, Random)
{
    std::mt19937 random(7);
    endsWith([&] { return static_cast<char>(random()); });
}

TEST_P(EndlessSenderTest, AByteJustBeforeEveryTimeOutEndsWithCancelScan)
{
    for (auto sent = 0ms; sent < 3 * 3600s; sent += 900ms)
        line.arrives(sent, "0");
    pump->hostPump([&] {
        if (time.passed() > 3600s)
            reader.CancelScan(True);
    });
    Int32 reads = 0;
    reader.ReadBatch(False, 3, reads);
    EXPECT_LT(time.passed(), 2 * 3600s);
}

INSTANTIATE_TEST_SUITE_P(EachFamily, EndlessSenderTest,
                         ::testing::Values(kelReaderTypeAppersonAdvantageLink, kelReaderTypeAppersonGradeMaster,
                                           kelReaderTypeAppersonBenchMark3000, kelReaderTypeAppersonAdvantage1200,
                                           kelReaderTypeNCSOpScan5, kelReaderTypeScanningSystemsSR601,
                                           kelReaderTypeScantronScanMark2500, kelReaderTypeScantron8000,
                                           kelReaderTypeChatsworthOMR2000, kelReaderTypeChatsworthALSAccelScanOMR,
                                           kelReaderTypeNCSEZData, kelReaderTypePDIVMR138));

} // namespace
} // namespace kel
