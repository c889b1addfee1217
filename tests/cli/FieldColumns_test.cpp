// SPDX-License-Identifier: MIT
#include "tests/cli/CommandRun.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Words = std::vector<std::string>;

constexpr const char* kFieldForm = R"({"side1Rows":[2],"side1Cols":[3],"fields":[
    {"name":"Q","rows":[1,2],"columns":[1,3],"labels":"ABC"},
    {"name":"back","side":2,"row":1,"columns":[1,2]},
    {"name":"last","row":2,"column":3}]})";
constexpr const char* kAnswers = R"([{"side1":[[1,0,0],[0,1,1]]},{"side1":[[0,0,0],[0,0,1]]}])";

/// A scan of the two sheets with more words at the end.
CommandOutcome scanned(const Words& more)
{
    const TextFile sheets(kAnswers);
    Words words = simulatedScan({"--max-sheets", "2", "--sheets", sheets.path()});
    words.insert(words.end(), more.begin(), more.end());
    return runCommand(words);
}

TEST(FieldColumns, CsvHasTheColumnsOfTheForm)
{
    const TextFile form(kFieldForm);
    const CommandOutcome outcome = scanned({"--form", form.path(), "--fields", "--format", "csv"});
    EXPECT_EQ(outcome.output, "sheet,barcodes,rejected,printed,Q1,Q2,back,last\n"
                              "1,,false,false,A,*,,2\n"
                              "2,,false,false,-,C,,2\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(FieldColumns, JsonHasTheSameAndTheOtherEvents)
{
    const TextFile form(kFieldForm);
    const CommandOutcome outcome = scanned({"--form", form.path(), "--fields", "--reject-sheets", "2"});
    EXPECT_THAT(outcome.lines(),
                ElementsAre(R"({"event":"sheet","sheet":1,"barcodes":"","rejected":false,"printed":false,)"
                            R"("Q1":"A","Q2":"*","back":null,"last":2})",
                            R"({"event":"sheet","sheet":2,"barcodes":"","rejected":true,"printed":false,)"
                            R"("Q1":"-","Q2":"C","back":null,"last":2})",
                            R"({"event":"end","started":true,"sheets":2,"cancelScan":true,"result":true})"));
}

TEST(FieldColumns, AReplayHasThemToo)
{
    const TextFile form(kFieldForm);
    const TextFile trace("");
    const CommandOutcome scan =
        scanned({"--form", form.path(), "--fields", "--format", "csv", "--trace", trace.path()});
    ASSERT_EQ(scan.status, 0) << scan.errors;
    const CommandOutcome replay = runCommand({"replay", trace.path(), "--fields", "--format", "csv"});
    EXPECT_EQ(replay.output, scan.output);
    EXPECT_EQ(replay.status, 0) << replay.errors;
}

TEST(FieldColumns, AFormWithoutFieldsAndAFormatWithoutColumnsAreRefused)
{
    const TextFile bare(R"({"side1Rows":[2],"side1Cols":[3]})");
    const TextFile form(kFieldForm);
    struct Case {
        Words words;
        const char* sentence;
    };
    const char* const kNoFields =
        "--fields needs names for what is on a sheet: give a --form FILE that has \"fields\".";
    for (const auto& [words, sentence] :
         {Case{{"--fields"}, kNoFields}, Case{{"--fields", "--form", bare.path()}, kNoFields},
          Case{{"--fields", "--form", form.path(), "--format", "table"},
               "--fields goes with --format json and csv only; leave it out for table."}}) {
        const CommandOutcome outcome = scanned(words);
        EXPECT_THAT(outcome.errors, HasSubstr(sentence));
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.status, 2);
    }
}

} // namespace
} // namespace kel::test
