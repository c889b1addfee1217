// SPDX-License-Identifier: MIT
#include "simulators/apperson/DataLineReader.h"

#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;

using Errors = std::vector<std::string>;

class DataLineReaderTest : public ::testing::Test {
protected:
    void power(kelReaderType model, SheetFeeder sheets = {}, std::map<std::string, std::string> settings = {})
    {
        settings.insert({"key-slack-ms", "0"});
        reader_.emplace(SimulatorOptions{
            .model = model, .sheets = std::move(sheets), .rate = Rate::Unlimited, .settings = std::move(settings)});
        bench_.emplace(*reader_);
    }

    std::string ask(std::string_view bytes, Moment time = 20ms) { return bench_->ask(bytes, time); }

    void expectError(const std::string& text) { EXPECT_EQ(reader_->errors(), Errors{text}); }

    std::optional<DataLineReader> reader_;
    std::optional<DeviceBench> bench_;
};

const SimulatedSheet kSheet{.side1 = {{1, 1}, {0, 0}, {0, 1}}, .fields = {{"Student ID", "77"}, {"Page 1 ID", "0042"}}};

TEST_F(DataLineReaderTest, ABenchMarkSendsLinesUntilItsFeederIsEmpty)
{
    power(kelReaderTypeAppersonBenchMark3000, {kSheet});
    for (const char* command : {"R1", "M6", "I1", "A9", "R6", "S1", "M0", "B1"})
        EXPECT_EQ(ask(command), "OK\r\n") << command;
    const std::string line = bench_->wait(300ms);
    EXPECT_EQ(line.substr(0, 12), "77          ");
    EXPECT_EQ(line.substr(16, 5), ",0042");
    EXPECT_EQ(line.substr(118), ",AB,,B,A\r\n");
    EXPECT_EQ(ask("A7"), "");
    EXPECT_EQ(bench_->wait(10s), "Z1\r\n");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(DataLineReaderTest, AnAdvantage1200SendsByItself)
{
    power(kelReaderTypeAppersonAdvantage1200, {kSheet});
    for (const char* command : {"R1", "M6", "M0", "M8"})
        EXPECT_EQ(ask(command), "OK\r\n") << command;
    const std::string line = bench_->wait(10s);
    EXPECT_EQ(line.substr(0, 11), "77        1");
    EXPECT_EQ(line.substr(14, 14), "0000,0042,0000");
    EXPECT_EQ(line.substr(32), ",AB,,B,A\r\n");
    reader_->putSheet(kSheet);
    EXPECT_EQ(bench_->wait(10s), line);
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(DataLineReaderTest, AStartHasItsOrder)
{
    power(kelReaderTypeAppersonBenchMark3000);
    ask("R1M6A9");
    expectError("command A9 where the start goes on with I1");
    power(kelReaderTypeAppersonBenchMark3000);
    ask("R1M6I1A9R6S1B1");
    expectError("command B1 before M0");
    power(kelReaderTypeAppersonAdvantage1200);
    ask("R1M0M8");
    expectError("command M0 where the start goes on with M6");
    power(kelReaderTypeAppersonAdvantage1200, {}, {{"reader-grade", "true"}});
    ask("R1M6");
    expectError("command M6 where the start goes on with M0");
    power(kelReaderTypeAppersonAdvantage1200);
    ask("M6");
    expectError("command M6 before R1");
}

TEST_F(DataLineReaderTest, EachModelHasItsOwnCommands)
{
    for (const char* command : {"B1", "A6", "A7", "I1"}) {
        power(kelReaderTypeAppersonAdvantage1200);
        ask("R1");
        EXPECT_EQ(ask(command), "");
        EXPECT_EQ(reader_->errors().size(), 1U) << command;
    }
    power(kelReaderTypeAppersonBenchMark3000);
    ask("R1M8");
    expectError("unknown command \"M8\"");
}

TEST_F(DataLineReaderTest, RefusesAndKeepsSilent)
{
    power(kelReaderTypeAppersonAdvantage1200, {}, {{"refuse", "R1"}});
    EXPECT_EQ(ask("R1"), "NO\r\n");
    power(kelReaderTypeAppersonAdvantage1200, {}, {{"silent", "M6,M0"}});
    EXPECT_EQ(ask("R1"), "OK\r\n");
    EXPECT_EQ(ask("M6"), "");
}

TEST_F(DataLineReaderTest, KeepsAKey)
{
    power(kelReaderTypeAppersonAdvantage1200);
    ask("R1");
    for (const char* command : {"S1", "E90025K70011", "K80012", "K1"})
        EXPECT_EQ(ask(command), "OK\r\n") << command;
    EXPECT_EQ(ask("10000", 10ms), "");
    EXPECT_EQ(ask("01100", 10ms), "");
    EXPECT_EQ(ask("Q"), "OK\r\n");
    for (const char* command : {"S2", "E90025K70011", "K80012", "K1"})
        ask(command);
    ask("00001", 10ms);
    ask("Q");
    EXPECT_FALSE(reader_->key().complete);
    EXPECT_EQ(ask("K6"), "OK\r\n");
    EXPECT_TRUE(reader_->key().complete);
    EXPECT_EQ(reader_->key().page1 + reader_->key().page2 + reader_->key().essay, "001100120025");
    EXPECT_EQ(reader_->key().versions, (std::map<Int32, std::string>{{1, "1000001100"}, {2, "00001"}}));
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(DataLineReaderTest, PiecesHaveTheirSizeAndTheirPauses)
{
    const auto key = [&](kelReaderType model) {
        power(model);
        ask("R1");
        ask("K70011");
        ask("K1");
    };
    key(kelReaderTypeAppersonAdvantage1200);
    ask("10000", 9ms);
    ask("Q");
    expectError("a piece of a key too soon after the one before it");
    key(kelReaderTypeAppersonAdvantage1200);
    ask("1000001000Q");
    expectError("a piece of a key too soon after the one before it");
    key(kelReaderTypeAppersonAdvantage1200);
    ask("100", 10ms);
    ask("00", 10ms);
    ask("Q");
    expectError("a piece of 3 characters in a key");
    key(kelReaderTypeAppersonAdvantage1200);
    ask("1000Q");
    expectError("a key of 4 digits");
    key(kelReaderTypeAppersonAdvantage1200);
    ask("10002", 10ms);
    ask("Q");
    expectError("the byte 32 in a key");
    key(kelReaderTypeAppersonBenchMark3000);
    ask("\x1F\x20Q");
    expectError("the byte 20 in a key");
}

TEST_F(DataLineReaderTest, ADownloadHasItsOrder)
{
    const std::map<std::string, std::string> mistakes = {
        {"K1", "command K1 without K7 before it"},
        {"K80012", "command K8 without K7 before it"},
        {"K6", "command K6 without a key before it"},
        {"S2", "command S2 where the key of version 1 comes"},
        {"K70011E90001", "command E9 after K7"},
        {"E900x1", "command E9 with \"00x1\""},
        {"K70011M6", "command M6 though the keys were not ended with K6"},
        {"E90000", "command E9 though the essay has no points"},
        {"E90025E90025", "command E9 a second time"},
        {"K70011K80012K80012", "command K8 a second time"},
        {"M6K70011", "command K7 after the first step of the start"},
        {"M6S1", "command S1 after the first step of the start"},
        {"M6M0M8K70011", "command K7 though the reader is ready to read"},
    };
    for (const auto& [bytes, mistake] : mistakes) {
        power(kelReaderTypeAppersonAdvantage1200);
        ask("R1");
        ask(bytes);
        ASSERT_FALSE(reader_->errors().empty()) << bytes;
        EXPECT_EQ(reader_->errors().front(), mistake);
    }
}

TEST_F(DataLineReaderTest, TheOnlyKeyHasNoVersion)
{
    power(kelReaderTypeAppersonAdvantage1200);
    for (const char* command : {"R1", "S1", "K70011", "K1"})
        ask(command);
    ask("10000", 10ms);
    ask("Q");
    EXPECT_EQ(reader_->errors(), Errors{});
    ask("K6");
    expectError("command S1 for a key that is the only one");
}

TEST_F(DataLineReaderTest, EachSessionMayHaveAKey)
{
    power(kelReaderTypeAppersonAdvantage1200);
    const auto download = [&] {
        for (const char* command : {"K70011", "K1"})
            ask(command);
        ask("10000", 10ms);
        ask("Q");
        ask("K6");
    };
    for (int session = 1; session <= 2; ++session) {
        ask("R1");
        download();
    }
    EXPECT_EQ(reader_->errors(), Errors{});
    download();
    ASSERT_FALSE(reader_->errors().empty());
    EXPECT_EQ(reader_->errors().front(), "command K7 after a key that was ended");
}

TEST_F(DataLineReaderTest, RepliesComeAsTheyAreOnTheWireButForTheLast)
{
    power(kelReaderTypeAppersonAdvantage1200, {}, {});
    const auto moments = [&](std::string_view command) {
        SimulatorOptions options{.model = kelReaderTypeAppersonAdvantage1200};
        reader_.emplace(std::move(options));
        bench_.emplace(*reader_, LineParameters{.baudRate = 1000});
        ask("R1", 1s);
        const std::size_t before = bench_->arrivals().size();
        ask(command, 1s);
        return bench_->arrivals().back().at - bench_->arrivals().at(before).at;
    };
    EXPECT_EQ(moments("M6"), 30ms);
    EXPECT_EQ(moments("R1"), 0ms);
}

TEST_F(DataLineReaderTest, AHostThatGivesUpStartsAnew)
{
    power(kelReaderTypeAppersonAdvantage1200, {kSheet});
    ask("R1");
    ask("K70011");
    ask("K1");
    ask("R1");
    for (const char* command : {"M6", "M0", "M8"})
        EXPECT_EQ(ask(command), "OK\r\n");
    EXPECT_EQ(ask("R1", 10s), "OK\r\n"); // and no sheet
    EXPECT_EQ(reader_->errors(), Errors{});
}

} // namespace
} // namespace kel
