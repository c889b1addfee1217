// SPDX-License-Identifier: MIT
#include "recording/Transcript.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using Kind = TranscriptLine::Kind;

TranscriptLine line(Kind kind, std::string bytes = {}, double milliseconds = 0)
{
    return {.kind = kind, .bytes = std::move(bytes), .milliseconds = milliseconds};
}

std::string errorOf(std::string_view text)
{
    try {
        static_cast<void>(parseTranscript(text));
    } catch (const TranscriptError& error) {
        return error.what();
    }
    return "taken";
}

TEST(Transcript, ReadsHeadAndDialogue)
{
    const Transcript transcript = parseTranscript("# model: 13\n"
                                                  "# line: 19200,N,8,2\n"
                                                  "# just a remark\n"
                                                  "\n"
                                                  "> 1B \"SRST\" 0D   # reset\n"
                                                  "+ 3.5\n"
                                                  "< 0D\n"
                                                  "# not: a head line any more\n"
                                                  "! unplug\n");
    EXPECT_EQ(transcript.value("model"), "13");
    EXPECT_EQ(transcript.value("line"), "19200,N,8,2");
    EXPECT_EQ(transcript.value("not"), std::nullopt);
    EXPECT_EQ(transcript.head.size(), 2U);
    const std::vector<TranscriptLine> expected = {line(Kind::ToReader, "\x1BSRST\r"), line(Kind::Pause, {}, 3.5),
                                                  line(Kind::FromReader, "\r"), line(Kind::Unplug)};
    EXPECT_EQ(transcript.lines, expected);
    EXPECT_EQ(transcript.lines[0].number, 5);
    EXPECT_EQ(transcript.lines[3].number, 9);
}

TEST(Transcript, KeepsRepeatedHeadLinesAndColonsInTheirValues)
{
    const Transcript transcript =
        parseTranscript("# set: RecognitionThreshold=200\n# set: Port=1\n# form: {\"side1Rows\":[63]}\n");
    EXPECT_EQ(transcript.values("set"), (std::vector<std::string>{"RecognitionThreshold=200", "Port=1"}));
    EXPECT_EQ(transcript.value("form"), "{\"side1Rows\":[63]}");
    EXPECT_TRUE(transcript.values("none").empty());
}

TEST(Transcript, TakesWindowsLineEndsAByteOrderMarkAndNoLastLineEnd)
{
    const Transcript transcript = parseTranscript("\xEF\xBB\xBF# model: 24\r\n> \"Q\"\r\n< 00 ff");
    EXPECT_EQ(transcript.value("model"), "24");
    ASSERT_EQ(transcript.lines.size(), 2U);
    EXPECT_EQ(transcript.lines[1].bytes, std::string("\x00\xFF", 2));
}

TEST(Transcript, TakesBytesAndTextsWithoutBlanksBetween)
{
    EXPECT_EQ(parseTranscriptBytes("1B\"A#\"0D\"\"41"), "\x1B"
                                                        "A#\rA");
}

TEST(Transcript, CallsOfALibraryAreReadAndWritten)
{
    const std::string text = "@ OMR_CloseDevice = 1\n"
                             "@ OMR_GetMarks 0 5 200 48 = 1 63 48 : 00 0C \"=:\"\n"
                             "@ OMR_SetPrintString 1 \"a = b : c\" = 0\n"
                             "@ OMR_OpenDeviceUSB = failure 53 : \"File not found\"\n";
    const Transcript transcript = parseTranscript(text);
    ASSERT_EQ(transcript.lines.size(), 4U);
    EXPECT_EQ(transcript.lines[1].call, "OMR_GetMarks 0 5 200 48");
    EXPECT_EQ(transcript.lines[1].results, (std::vector<Int32>{1, 63, 48}));
    EXPECT_EQ(transcript.lines[1].bytes, std::string("\0\x0C=:", 4));
    EXPECT_EQ(transcript.lines[2].call, "OMR_SetPrintString 1 \"a = b : c\"");
    EXPECT_TRUE(transcript.lines[3].failed);
    EXPECT_EQ(writeTranscript(transcript), text);
}

TEST(Transcript, MistakesAreToldWithTheirLine)
{
    EXPECT_EQ(errorOf("\n> 1B 4\n"), "line 2: \"4\" is neither two hexadecimal digits nor a text in quotes");
    EXPECT_EQ(errorOf("> 1B4F\n"), "line 1: \"1B4F\" is neither two hexadecimal digits nor a text in quotes");
    EXPECT_EQ(errorOf("> \"AB\n"), "line 1: a text has no closing quote");
    EXPECT_EQ(errorOf("> \"A\tB\"\n"),
              "line 1: a quoted text holds printable ASCII only; write other bytes as two hexadecimal digits");
    EXPECT_EQ(errorOf("# x: y\n>   # nothing\n"), "line 2: no bytes");
    EXPECT_EQ(errorOf("+ soon\n"), "line 1: \"soon\" is not a number of milliseconds");
    EXPECT_EQ(errorOf("+ -1\n"), "line 1: \"-1\" is not a number of milliseconds");
    EXPECT_EQ(errorOf("+ nan\n"), "line 1: \"nan\" is not a number of milliseconds");
    EXPECT_EQ(errorOf("+ 1e12\n"), "line 1: \"1e12\" is not a number of milliseconds");
    EXPECT_EQ(errorOf("! explode\n"), "line 1: \"explode\" is not an event; the only event is unplug");
    EXPECT_EQ(errorOf("@ OMR_FeedSheet\n"), "line 1: write a call as: OMR_CloseDevice = 0");
    EXPECT_EQ(errorOf("@ Format = 1\n"), "line 1: write a call as: OMR_CloseDevice = 0");
    EXPECT_EQ(errorOf("@ OMR_FeedSheet =\n"), "line 1: a call without a result");
    EXPECT_EQ(errorOf("@ OMR_FeedSheet = 1 x\n"), "line 1: \"x\" does not begin with a number in range");
    EXPECT_EQ(errorOf("@ OMR_FeedSheet = 1x\n"), "line 1: \"1x\" does not begin with a number in range");
    EXPECT_EQ(errorOf("@ OMR_FeedSheet = 99999999999\n"),
              "line 1: \"99999999999\" does not begin with a number in range");
    EXPECT_EQ(errorOf("41 42\n"), "line 1: a line begins with #, >, <, +, ! or @, not with \"4\"");
    try {
        static_cast<void>(parseTranscript("> 41\n\n\n? 42\n"));
        FAIL();
    } catch (const TranscriptError& error) {
        EXPECT_EQ(error.line(), 4);
    }
}

TEST(Transcript, WritesBytesAsDigitsAndTexts)
{
    EXPECT_EQ(transcriptBytes("\x1BSRST\r"), "1B \"SRST\" 0D");
    EXPECT_EQ(transcriptBytes("a\"b"), "\"a\" 22 \"b\"");
    EXPECT_EQ(transcriptBytes(std::string("\x00\x7F\xFF", 3)), "00 7F FF");
    EXPECT_EQ(transcriptBytes(" ~"), "\" ~\"");
    EXPECT_EQ(transcriptBytes(""), "");
}

TEST(Transcript, EveryByteComesThroughItsNotation)
{
    std::string all;
    for (int value = 0; value < 256; ++value)
        all += static_cast<char>(value);
    EXPECT_EQ(parseTranscriptBytes(transcriptBytes(all)), all);
}

TEST(Transcript, WhatIsWrittenReadsAsTheSame)
{
    Transcript transcript;
    transcript.head = {{"model", "13"}, {"set", "A=1"}, {"set", "B=2"}};
    transcript.lines = {line(Kind::ToReader, "\x1BQSTS\r"), line(Kind::Pause, {}, 0.125),
                        line(Kind::FromReader, std::string("\x00 \"0", 4)), line(Kind::Pause, {}, 86400000),
                        line(Kind::Unplug)};
    const std::string text = writeTranscript(transcript);
    EXPECT_EQ(text, "# model: 13\n# set: A=1\n# set: B=2\n> 1B \"QSTS\" 0D\n+ 0.125\n< 00 \" \" 22 \"0\"\n"
                    "+ 86400000\n! unplug\n");
    const Transcript again = parseTranscript(text);
    EXPECT_EQ(again.head, transcript.head);
    EXPECT_EQ(again.lines, transcript.lines);
}

} // namespace
} // namespace kel
