// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/chatsworth/basChatsworth.h"

namespace kel::test {
namespace {

const std::vector<GuardCase> kChatsworthGuards = {
    {"basChatsworth.InitReaderCT", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypeChatsworthOMR2000);
         bench.line->failsAt(1);
         EXPECT_EQ(InitReaderCT(bench.reader), False);
     }},
    // The value of a mark would be one more than the largest number.
    {"basChatsworth.ReadPageCT", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypeChatsworthOMR2000);
         bench.reader.settings().RecognitionThreshold = 32767;
         EXPECT_EQ(ReadPageCT(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"basChatsworth.RejectPageCT", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->waiting = "\r";
         bench.line->onOutput = [&](std::string_view) { bench.line->failsAt(4); };
         EXPECT_EQ(RejectPageCT(bench.reader, True), False);
         EXPECT_EQ(bench.line->sent, "\x12\x1B"
                                     "EF\x12"
                                     "E");
     }},
};

const GuardTable chatsworthGuards("ChatsworthGuards", kChatsworthGuards);

} // namespace
} // namespace kel::test
