// SPDX-License-Identifier: MIT
#include "simulators/apperson/RawMarkReader.h"

#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using Errors = std::vector<std::string>;

class RawMarkReaderTest : public ::testing::Test {
protected:
    void power(kelReaderType model, SheetFeeder sheets = {}, std::map<std::string, std::string> settings = {},
               std::initializer_list<const char*> faults = {})
    {
        SimulatorOptions options{
            .model = model, .sheets = std::move(sheets), .rate = Rate::Unlimited, .settings = std::move(settings)};
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        reader_.emplace(std::move(options));
        bench_.emplace(*reader_);
    }

    std::string ask(std::string_view bytes, Moment time = 10s) { return bench_->ask(bytes, time); }

    void expectError(const std::string& text) { EXPECT_EQ(reader_->errors(), Errors{text}); }

    std::optional<RawMarkReader> reader_;
    std::optional<DeviceBench> bench_;
};

TEST_F(RawMarkReaderTest, AnAdvantageLinkSendsABlock)
{
    power(kelReaderTypeAppersonAdvantageLink, {{.side1 = {{1, 2, 3}, {199, 0, 250}}}}, {{"columns", "3"}});
    EXPECT_EQ(ask("T1\r"), "OK\r\n");
    EXPECT_EQ(ask("FB\r"), "OK\r\n");
    EXPECT_EQ(ask("FD\r"), "\1\2\3UUUUUUUUUUU\xC7\0\xC7\xC8"s);
    EXPECT_EQ(ask("FE\r"), "OK\r\n");
    EXPECT_EQ(ask("T2\r"), "OK\r\n");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(RawMarkReaderTest, AGradeMasterSendsBits)
{
    power(kelReaderTypeAppersonGradeMaster,
          {{.side1 = {{1, 0, 0, 0, 1}, {0, 1}}, .barcodes = {"0123456789"}}, {}, {.fields = {{"Error Code", "7"}}}});
    for (const char* command : {"A1\r", "S8\r", "M3\r"})
        EXPECT_EQ(ask(command), "OK\r\n");
    EXPECT_EQ(ask("P\r"), "0123456789U206\x31\x42\xD9");
    EXPECT_EQ(ask("P\r"), "Blank ID# U206\xD9");
    EXPECT_EQ(ask("P\r"), "Error     U7  \xD9");
    EXPECT_EQ(ask("S9\r"), "OK\r\n");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(RawMarkReaderTest, NoRowEndsTheBlockOfAGradeMaster)
{
    power(kelReaderTypeAppersonGradeMaster, {{.side1 = MarkRows(40, std::vector<Int16>(5, 1))}});
    ask("A1\rS8\rM3\r");
    const std::string block = ask("P\r");
    ASSERT_EQ(block.size(), 14U + 40U + 1U);
    for (std::size_t place = 0; place + 1 < block.size(); ++place)
        EXPECT_LT(static_cast<Byte>(block[place]), 217);
}

TEST_F(RawMarkReaderTest, WhatGoesWrongIsToldByTheBlockOrBehindIt)
{
    power(kelReaderTypeAppersonAdvantageLink, {{.fields = {{"Status", "206"}}}, {.fields = {{"End Code", "7"}}}, {}},
          {{"fault-tail", "\"xx\""}}, {"jam@sheet=3"});
    ask("T1\r");
    ask("FB\r");
    EXPECT_EQ(ask("FD\r"), "\xCExx");
    ask("FB\r");
    EXPECT_EQ(ask("FD\r"), "\xC8");
    EXPECT_EQ(ask("FE\r"), "\axx");
    ask("FB\r");
    EXPECT_EQ(ask("FD\r"), "\xCExx");
    EXPECT_EQ(reader_->errors(), Errors{});
}

TEST_F(RawMarkReaderTest, AnEmptyFeederIsSilenceOrACode)
{
    power(kelReaderTypeAppersonGradeMaster, {}, {{"reader-grade", "true"}});
    ask("S8\rM3\r");
    EXPECT_EQ(ask("P\r", 3600s), "");
    reader_->putSheet({});
    EXPECT_EQ(bench_->wait(1s), "Blank ID# U206\xD9");
    power(kelReaderTypeAppersonAdvantageLink, {}, {{"empty-code", "204"}, {"fault-tail", ""}});
    ask("T1\r");
    ask("FB\r");
    EXPECT_EQ(ask("FD\r"), "\xCC");
}

TEST_F(RawMarkReaderTest, CommandsHaveTheirOrder)
{
    const std::vector<std::pair<std::string, std::string>> mistakes = {
        {"FB\r", "command FB before T1"},
        {"T1\rFD\r", "command FD without FB before it"},
        {"T1\rFE\r", "command FE before the sheet has been sent"},
        {"T1\rFB\rFB\r", "command FB while a sheet is under way"},
        {"T1\rT1\r", "command T1 where the start goes on with reading"},
        {"T1\rP\r", "unknown command \"P\""},
        {"T1\r\n\r", "unknown command 0A"},
        {"T1FB\r", "no CR after \"T1\""},
    };
    for (const auto& [bytes, mistake] : mistakes) {
        power(kelReaderTypeAppersonAdvantageLink, {{}});
        ask(bytes);
        ASSERT_FALSE(reader_->errors().empty()) << mistake;
        EXPECT_EQ(reader_->errors().front(), mistake);
    }
    power(kelReaderTypeAppersonGradeMaster, {{}});
    ask("A1\rM3\r");
    expectError("command M3 where the start goes on with S8");
    power(kelReaderTypeAppersonGradeMaster, {{}});
    ask("A1\rS8\rM3\r");
    bench_->send("P\r");
    ask("P\r");
    expectError("command P while a sheet is under way");
    power(kelReaderTypeAppersonAdvantageLink, {{}, {}});
    ask("T1\r");
    ask("FB\r");
    ask("FD\r");
    ask("FB\r");
    expectError("command FB though the sheet before it was not done with FE");
}

TEST_F(RawMarkReaderTest, TheEndGivesUpWhatIsUnderWay)
{
    power(kelReaderTypeAppersonGradeMaster, {{}});
    ask("A1\rS8\rM3\r");
    bench_->send("P\r");
    EXPECT_EQ(ask("S9\r"), "OK\r\n");
    EXPECT_EQ(reader_->errors(), Errors{});
}

} // namespace
} // namespace kel
