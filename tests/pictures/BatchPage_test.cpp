// SPDX-License-Identifier: MIT
#include "pictures/BatchPage.h"

#include "formats/Json.h"

#include <gmock/gmock.h>

namespace kel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

PictureForm formWithWindow()
{
    PictureForm form;
    form.side1Rows = 6;
    form.side1Columns = 8;
    form.scale = {.highest = 15, .threshold = 7, .hasShades = true};
    clsKELReaderWindow window;
    window.StartRow(2);
    window.NumRows(3);
    window.RowGap(1);
    window.StartCol(2);
    window.NumCols(4);
    window.ColGap(1);
    window.Page(1);
    window.Orientation(1);
    form.windows = {window};
    return form;
}

PictureSheet sheetWith(const std::vector<std::array<Int16, 3>>& marks)
{
    PictureSheet sheet;
    sheet.sheet = 1;
    sheet.side1 = MarkArray(6, 8);
    for (const auto& [row, column, value] : marks)
        sheet.side1(row, column) = value;
    return sheet;
}

/// A page that is kept in pieces, as they were written.
struct WrittenPage {
    explicit WrittenPage(const PictureForm& form)
        : page([this](const std::string& text) { pieces.push_back(text); }, "Reader </title>", form)
    {
    }

    /// The data of the last piece.
    [[nodiscard]] Json data() const
    {
        const std::string& piece = pieces.back();
        const std::size_t begin = piece.find('>') + 1;
        return Json::parse(piece.substr(begin, piece.rfind("</script>") - begin));
    }

    std::vector<std::string> pieces;
    BatchPage page;
};

TEST(BatchPage, NothingOfASheetCanEndItsBlock)
{
    WrittenPage written(formWithWindow());
    PictureSheet sheet = sheetWith({});
    sheet.barcodes = {"</script><script>alert(1)</script><!--"};
    sheet.record = {{"</script>", "<script>"}};
    written.page.sheet(sheet);
    const std::string& block = written.pieces.back();
    EXPECT_THAT(block, StartsWith("<script type=\"application/json\" data-is=\"sheet\">{"));
    EXPECT_EQ(block.find('<', 1), block.rfind("</script>\n"));
    EXPECT_EQ(written.data()["barcodes"][0], sheet.barcodes[0]);
}

TEST(BatchPage, EachSheetIsWrittenAtOnceAndALayoutOnce)
{
    WrittenPage written(formWithWindow());
    const std::size_t head = written.pieces.size();
    written.page.sheet(sheetWith({{1, 1, 9}}));
    written.page.sheet(sheetWith({{2, 2, 9}}));
    ASSERT_EQ(written.pieces.size(), head + 3);
    EXPECT_THAT(written.pieces[head], HasSubstr("data-is=\"layout\""));
    EXPECT_THAT(written.pieces[head + 1], HasSubstr("\"marks\":[[1,1,9],null]"));
    EXPECT_THAT(written.pieces[head + 2], HasSubstr("\"marks\":[[2,2,9],null]"));
}

TEST(BatchPage, DoubleMarksAreLinesOfAWindowWithMoreThanOneMarkThatCounts)
{
    WrittenPage written(formWithWindow());
    written.page.sheet(sheetWith({{2, 2, 7}, {2, 3, 15}, {2, 5, 9}, {4, 2, 9}, {4, 3, 9}}));
    EXPECT_EQ(written.data()["double"], 2);
    written.page.sheet(sheetWith({{2, 2, 7}, {2, 3, 6}, {3, 3, 9}, {2, 7, 15}, {6, 2, 9}, {6, 3, 9}}));
    EXPECT_EQ(written.data()["double"], 0);
}

TEST(BatchPage, AWindowReadColumnByColumnHasItsItemsInColumns)
{
    PictureForm form = formWithWindow();
    form.windows.front().Orientation(0);
    WrittenPage written(form);
    written.page.sheet(sheetWith({{2, 2, 9}, {3, 2, 9}}));
    EXPECT_EQ(written.data()["double"], 1);
    written.page.sheet(sheetWith({{2, 2, 9}, {2, 3, 9}}));
    EXPECT_EQ(written.data()["double"], 0);
}

TEST(BatchPage, ASheetWithAnAnswerButNoMarkIsNotBlank)
{
    WrittenPage written({});
    PictureSheet sheet;
    written.page.sheet(sheet);
    EXPECT_EQ(written.data()["blank"], true);
    sheet.record = {{"1", "B"}};
    written.page.sheet(sheet);
    EXPECT_EQ(written.data()["blank"], false);
}

TEST(BatchPage, AFailureStandsAfterTheSheetBeforeIt)
{
    WrittenPage written(formWithWindow());
    written.page.sheet(sheetWith({}));
    written.page.failure({.title = "Jam", .description = "x", .source = "y", .cause = "c", .remedy = "r"});
    EXPECT_EQ(written.data()["sheets"], 1);
    EXPECT_EQ(written.data()["remedy"], "r");
    written.page.end(true);
    EXPECT_EQ(written.data()["started"], true);
}

TEST(BatchPage, ThePolicyLetsNothingInFromElsewhere)
{
    const WrittenPage written({});
    const std::string& head = written.pieces.front();
    EXPECT_THAT(head, HasSubstr("default-src 'none'; style-src 'sha256-"));
    EXPECT_THAT(head, HasSubstr("script-src 'sha256-"));
    EXPECT_THAT(head, Not(HasSubstr("{{")));
    EXPECT_THAT(head, Not(HasSubstr("https://")));
}

} // namespace
} // namespace kel
