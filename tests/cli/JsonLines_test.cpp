// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "types/LineText.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

MarkArray marks(Int32 rows, Int32 columns)
{
    return MarkArray(rows, columns);
}

host::Sheet smallSheet()
{
    host::Sheet sheet;
    sheet.number = 1;
    sheet.side1 = marks(2, 3);
    sheet.side1(1, 2) = 1;
    sheet.side1(2, 3) = -7;
    sheet.side1TimingMarks = 63;
    sheet.barcodes = TextArray(0, 0);
    return sheet;
}

TEST(JsonLines, SheetHasItsMembersInOrderAndItsMarksRowByRow)
{
    EXPECT_EQ(jsonLine(smallSheet()),
              R"({"event":"sheet","sheet":1,"side1":[[0,1,0],[0,0,-7]],"side2":[],"side1TimingMarks":63,)"
              R"("side2TimingMarks":-1,"barcodes":[""],"rejected":false,"printed":false})");
}

TEST(JsonLines, SheetTellsAllBarcodesAndWhatBecameOfIt)
{
    host::Sheet sheet;
    sheet.number = 12;
    sheet.barcodes = TextArray::of(1, {"12", "", "a\"b"});
    sheet.rejected = true;
    sheet.printed = true;
    EXPECT_EQ(jsonLine(sheet), R"({"event":"sheet","sheet":12,"side1":[],"side2":[],"side1TimingMarks":-1,)"
                               R"("side2TimingMarks":-1,"barcodes":["12","","a\"b"],"rejected":true,"printed":true})");
}

TEST(JsonLines, UndimensionedBarcodesAreAnEmptyArray)
{
    host::Sheet sheet;
    EXPECT_NE(jsonLine(sheet).find(R"("barcodes":[],)"), std::string::npos);
}

TEST(JsonLines, RecordStandsBehindTheRest)
{
    host::Sheet sheet = smallSheet();
    sheet.record.emplace();
    sheet.record->Add("Student ID", "77");
    sheet.record->Add(Int32{1}, "A\tB");
    EXPECT_TRUE(jsonLine(sheet).ends_with(R"("printed":false,"record":{"Student ID":"77","1":"A\tB"}})"));
}

TEST(JsonLines, FailureHasItsMembersInOrder)
{
    EXPECT_EQ(jsonLine(host::Failure{.line = 7,
                                     .number = 8002,
                                     .type = 1,
                                     .description = "no\r\nport",
                                     .source = "basRead.ReaderInit",
                                     .title = "Port"}),
              R"({"event":"failure","line":7,"number":8002,"type":1,"description":"no\r\nport",)"
              R"("source":"basRead.ReaderInit","title":"Port"})");
}

TEST(JsonLines, EndHasItsMembersInOrder)
{
    EXPECT_EQ(jsonLine(host::BatchEnd{.started = true, .sheets = 3, .cancelScan = true, .result = true}),
              R"({"event":"end","started":true,"sheets":3,"cancelScan":true,"result":true})");
    EXPECT_EQ(jsonLine(host::BatchEnd{}),
              R"({"event":"end","started":false,"sheets":0,"cancelScan":false,"result":false})");
}

TEST(JsonLines, BytesThatAreNoUtf8AreTakenAsLatin1)
{
    EXPECT_EQ(validUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(validUtf8("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(validUtf8("\xC3"), "\xC3\x83");
    EXPECT_EQ(validUtf8("\x80\xFF"), "\xC2\x80\xC3\xBF");
    EXPECT_EQ(validUtf8("\xE2\x82\xAC \xF0\x9F\x98\x80"), "\xE2\x82\xAC \xF0\x9F\x98\x80");
    // An overlong slash, a surrogate, a code beyond the last: no UTF-8.
    EXPECT_EQ(validUtf8("\xC0\xAF"), "\xC3\x80\xC2\xAF");
    EXPECT_EQ(validUtf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80");
    EXPECT_EQ(validUtf8("\xF4\x90\x80\x80"), "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80");
}

TEST(JsonLines, EveryByteIsValidJson)
{
    std::string all;
    for (int code = 0; code < 256; ++code)
        all += static_cast<char>(code);
    host::Sheet sheet;
    sheet.barcodes = TextArray::of(0, {all});
    const Json parsed = Json::parse(jsonLine(sheet));
    EXPECT_EQ(lineOfText(parsed["barcodes"][0].get<std::string>()), all);
}

TEST(JsonLines, TextOfALineIsNeverTakenForUtf8)
{
    host::Sheet sheet;
    sheet.barcodes = TextArray::of(0, {"\xC4\x81"});
    EXPECT_EQ(Json::parse(jsonLine(sheet))["barcodes"][0], "\xC3\x84\xC2\x81");
}

TEST(JsonLines, WritesALineAnEventAndTellsAFailureBesides)
{
    std::string written;
    std::string told;
    JsonLines lines([&](const std::string& line) { written += line; }, [&](const std::string& text) { told += text; });
    lines.failure({.number = 5, .description = "It\r\n\tfails", .source = "basX.Y", .title = "T"});
    lines.end({});
    EXPECT_EQ(written, R"({"event":"failure","line":0,"number":5,"type":0,"description":"It\r\n\tfails",)"
                       R"("source":"basX.Y","title":"T"})"
                       "\n"
                       R"({"event":"end","started":false,"sheets":0,"cancelScan":false,"result":false})"
                       "\n");
    EXPECT_EQ(told, "T: It fails (5, basX.Y)\n");
}

} // namespace
} // namespace kel
