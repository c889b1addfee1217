// SPDX-License-Identifier: MIT
#include "tests/cli/CommandRun.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace kel::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Pictures : public testing::Test {
protected:
    [[nodiscard]] std::filesystem::path inside(const std::string& name) const { return folder_.path() / name; }

    [[nodiscard]] std::string textOf(const std::string& name) const { return fileText(inside(name)); }

    TemporaryFolder folder_;
};

TEST_F(Pictures, AScanPutsOneASheetIntoAFolder)
{
    const CommandOutcome outcome = runCommand(simulatedScan(
        {"--count", "3", "--max-sheets", "3", "--reject-sheets", "2", "--pictures", inside("new/folder").string()},
        "13"));
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(inside("new/folder")))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre("000001.svg", "000002.svg", "000003.svg"));
    EXPECT_THAT(textOf("new/folder/000001.svg"), AllOf(StartsWith("<svg "), HasSubstr("Sheet 1, marks on side 1: ")));
    EXPECT_THAT(textOf("new/folder/000002.svg"), HasSubstr(">REJECTED<"));
}

TEST_F(Pictures, WithoutAFolderNothingIsRead)
{
    std::ofstream(inside("file")) << "kept";
    const CommandOutcome outcome =
        runCommand({"scan", "--model", "13", "--simulate", "--max-sheets", "1", "--pictures", inside("file").string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(inside("file").string()), HasSubstr("cannot be made")));
    EXPECT_EQ(textOf("file"), "kept");
    EXPECT_EQ(outcome.output, "");
}

TEST_F(Pictures, ABatchIsAPageOfHtml)
{
    const CommandOutcome outcome =
        runCommand(simulatedScan({"--count", "2", "--max-sheets", "2", "--format", "html"}, "13"));
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(outcome.lines().back(),
                "<script type=\"application/json\" data-is=\"end\">{\"started\":true}</script>");
}

TEST_F(Pictures, AFormIsShownBeforeASheetIsRead)
{
    const TextFile form(R"({"side1Rows": [10], "side1Cols": [12],
        "windows": [{"StartRow": 2, "NumRows": 2, "RowGap": 1, "StartCol": 3, "NumCols": 2, "ColGap": 1,
                     "Page": 1, "Orientation": 1}]})");
    const CommandOutcome outcome = runCommand({"form", form.path(), "--picture", inside("form.svg").string()});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.lines(), ElementsAre("Side 1: 10 rows, 12 columns", "Read windows: 1", "Barcode zones: 0"));
    EXPECT_THAT(textOf("form.svg"), AllOf(StartsWith("<svg "), HasSubstr("<text x=\"35\" y=\"27\">4</text>")));
}

TEST_F(Pictures, AWrongWindowOfAFormIsSaidAndStillDrawn)
{
    const TextFile form(R"({"side1Rows": [10], "side1Cols": [12],
        "windows": [{"StartRow": 10, "NumRows": 2, "RowGap": 1, "StartCol": 3, "NumCols": 2, "ColGap": 1,
                     "Page": 1, "Orientation": 1}]})");
    const CommandOutcome outcome =
        runCommand({"form", form.path(), "--model", "13", "--picture", inside("form.svg").string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "kelreader: Window 1 reaches row 11, column 4; side 1 has 10 rows and 12 columns.\n");
    EXPECT_THAT(textOf("form.svg"), HasSubstr("class=\"outside\""));
}

} // namespace
} // namespace kel::test
