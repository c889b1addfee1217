// SPDX-License-Identifier: MIT
#include "stream/EntryMessage.h"

#include "formats/Json.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::HasSubstr;

Entry sheetEntry()
{
    host::Sheet sheet;
    sheet.number = 12;
    sheet.side1.ReDim(3, 4);
    sheet.side1(1, 2) = 9;
    sheet.side1(3, 4) = -1;
    sheet.side1TimingMarks = 3;
    sheet.barcodes = TextArray::of(1, {"caf\xE9", ""});
    sheet.rejected = true;
    sheet.printedLines = {"1"};
    sheet.record.emplace();
    sheet.record->Add("Name", std::string("Zo\xEB"));
    sheet.record->Add(12, Int32{3});
    return {.id = 5,
            .identity = "abc-5",
            .origin = {.store = "abc", .station = "hall 2", .reader = "left", .batch = "monday"},
            .time = "2024-01-31T12:00:00.250Z",
            .what = ReadSheetEntry{
                .setup = {.model = kelReaderTypeScantronScanMark2500, .threshold = 7, .form = R"({"side1Rows":[63]})"},
                .sheet = sheet}};
}

Entry reportEntry()
{
    Entry entry = sheetEntry();
    entry.what = ReportEntry{.afterSheet = 4,
                             .failure = {.line = 1,
                                         .number = 8020,
                                         .type = 2,
                                         .description = "no answer",
                                         .source = "basScantron.X",
                                         .title = "Read Error"}};
    return entry;
}

std::string refusalOf(const std::string& content)
{
    try {
        static_cast<void>(entryIn(content));
    } catch (const JsonRefusal& refusal) {
        return refusal.what();
    }
    return "it is taken";
}

/// A message with one of its members set, at a path like "/sheet/number".
std::string changed(const char* path, const Json& value)
{
    Json message = parseJson(messageOf(sheetEntry(), "k").content);
    message[Json::json_pointer(path)] = value;
    return message.dump();
}

TEST(EntryMessage, HasASheetAsJson)
{
    const StreamMessage message = messageOf(sheetEntry(), "kelreader");
    EXPECT_EQ(message.subject, "kelreader.sheet.hall_2.left");
    EXPECT_EQ(message.identity, "abc-5");
    EXPECT_EQ(message.content,
              R"({"version":1,"identity":"abc-5","store":"abc","station":"hall 2","reader":"left","batch":"monday",)"
              R"("time":"2024-01-31T12:00:00.250Z","sheet":{"number":12,"model":13,"threshold":7,)"
              R"("side1":{"rows":3,"columns":4,"marks":[[1,2,9],[3,4,-1]]},"side2":null,"side1TimingMarks":3,)"
              R"("side2TimingMarks":-1,"barcodes":["café",""],"record":{"Name":"Zoë","12":3},"rejected":true,)"
              R"("printed":false,"printedLines":["1"],"form":{"side1Rows":[63]}}})");
}

TEST(EntryMessage, GivesASheetBackAsItWas)
{
    const Entry sent = sheetEntry();
    const Entry entry = entryIn(messageOf(sent, "k").content);
    EXPECT_EQ(entry.id, 0);
    EXPECT_EQ(entry.identity, sent.identity);
    EXPECT_EQ(entry.origin, sent.origin);
    EXPECT_EQ(entry.time, sent.time);
    ASSERT_TRUE(entry.sheet());
    const host::Sheet& sheet = entry.sheet()->sheet;
    const host::Sheet& before = sent.sheet()->sheet;
    EXPECT_EQ(entry.sheet()->setup.model, kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(entry.sheet()->setup.threshold, 7);
    EXPECT_EQ(entry.sheet()->setup.form, sent.sheet()->setup.form);
    EXPECT_EQ(sheet.number, 12);
    EXPECT_EQ(sheet.side1, before.side1);
    EXPECT_FALSE(sheet.side2.isDimensioned());
    EXPECT_EQ(sheet.barcodes, before.barcodes);
    EXPECT_EQ(sheet.printedLines, before.printedLines);
    EXPECT_EQ(sheet.record->Items(), before.record->Items());
    EXPECT_TRUE(sheet.rejected);
}

TEST(EntryMessage, GivesAReportBackAsItWas)
{
    const Entry sent = reportEntry();
    const StreamMessage message = messageOf(sent, "k");
    EXPECT_EQ(message.subject, "k.report.hall_2.left");
    const Entry entry = entryIn(message.content);
    ASSERT_TRUE(entry.report());
    EXPECT_EQ(entry.report()->afterSheet, 4);
    EXPECT_EQ(entry.report()->failure.number, 8020);
    EXPECT_EQ(entry.report()->failure.description, "no answer");
    EXPECT_EQ(entry.report()->failure.source, "basScantron.X");
    EXPECT_EQ(entry.report()->failure.title, "Read Error");
}

TEST(EntryMessage, KeepsAFormThatIsNoJson)
{
    Entry sent = sheetEntry();
    std::get<ReadSheetEntry>(sent.what).setup.form = "{half";
    EXPECT_EQ(entryIn(messageOf(sent, "k").content).sheet()->setup.form, "{half");
}

TEST(EntryMessage, RefusesWhatHoldsNoEntry)
{
    EXPECT_THAT(refusalOf(""), HasSubstr("is not JSON"));
    EXPECT_THAT(refusalOf("7"), HasSubstr("has to be an object"));
    EXPECT_THAT(refusalOf("{}"), HasSubstr("has no \"version\""));
    EXPECT_THAT(refusalOf(changed("/version", 2)), HasSubstr("version is 2, and this program reads version 1"));
    EXPECT_THAT(refusalOf(changed("/report", nullptr)), HasSubstr("either a \"sheet\" or a \"report\""));
    EXPECT_THAT(refusalOf(changed("/identity", "")), HasSubstr("identity is empty"));
    EXPECT_THAT(refusalOf(changed("/time", "noon")), HasSubstr("time is not a time"));
    EXPECT_THAT(refusalOf(changed("/sheet/number", 0)), HasSubstr("number has to be a whole number from 1"));
    EXPECT_THAT(refusalOf(changed("/sheet/model", kReaderTypeCount)),
                HasSubstr("model has to be a whole number from 0 to " + std::to_string(kReaderTypeCount - 1)));
    EXPECT_THAT(refusalOf(changed("/sheet/side1/marks/0/0", 4)), HasSubstr("whole number from 1 to 3"));
    EXPECT_THAT(refusalOf(changed("/sheet/side1/rows", 1e9)), HasSubstr("rows"));
    EXPECT_THAT(refusalOf(changed("/sheet/extra", 1)), HasSubstr("extra"));
    Json message = parseJson(messageOf(sheetEntry(), "k").content);
    message["sheet"].erase("barcodes");
    EXPECT_THAT(refusalOf(message.dump()), HasSubstr("has no \"barcodes\""));
}

} // namespace
} // namespace kel::test
