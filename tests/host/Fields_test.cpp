// SPDX-License-Identifier: MIT
#include "host/Fields.h"

#include "host/Form.h"
#include "tests/host/Refusal.h"

#include <gmock/gmock.h>

namespace kel {
namespace {

using host::Field;
using host::FieldCell;
using host::FieldValue;
using testing::ElementsAre;

std::vector<Field> fields(const std::string& text, const std::string& more = "")
{
    return host::parseForm("{" + more + "\"fields\":[" + text + "]}", "form.json").fields;
}

std::string fieldsRefusal(const std::string& text, const std::string& more = "")
{
    return test::refusalOf([&] { return fields(text, more); });
}

std::vector<std::string> names(const std::vector<Field>& all)
{
    std::vector<std::string> result;
    for (const Field& field : all)
        result.push_back(field.name);
    return result;
}

/// A sheet of 4 rows and 10 columns with these cells marked on side 1.
host::Sheet sheetWith(const std::vector<FieldCell>& marked)
{
    host::Sheet sheet;
    sheet.number = 7;
    sheet.side1 = MarkArray(4, 10);
    for (const FieldCell& cell : marked)
        sheet.side1(cell.row, cell.column) = 5;
    return sheet;
}

constexpr const char* kQuestion = R"({"name":"Q1","row":3,"columns":[5,9],"labels":"ABCDE","multiple":"mark"})";

FieldValue question(const std::vector<FieldCell>& marked, const std::string& text = kQuestion)
{
    return host::valueOf(fields(text).front(), sheetWith(marked));
}

TEST(Fields, ARowOfChoicesIsOneField)
{
    const std::vector<Field> all = fields(kQuestion);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].name, "Q1");
    EXPECT_THAT(all[0].cells,
                ElementsAre(FieldCell{3, 5}, FieldCell{3, 6}, FieldCell{3, 7}, FieldCell{3, 8}, FieldCell{3, 9}));
    EXPECT_THAT(all[0].labels, ElementsAre("A", "B", "C", "D", "E"));
}

TEST(Fields, AMarkIsItsLabel)
{
    EXPECT_EQ(question({{3, 5}}), FieldValue("A"));
    EXPECT_EQ(question({{3, 9}, {2, 5}, {3, 4}, {3, 10}}), FieldValue("E"));
}

TEST(Fields, NoMarkAndSeveralAreValuesOfTheirOwn)
{
    EXPECT_EQ(question({}), FieldValue("-"));
    EXPECT_EQ(question({{3, 5}, {3, 7}}), FieldValue("*"));
}

TEST(Fields, AFormMayWantOtherValues)
{
    const std::string all = R"({"name":"Q1","row":3,"columns":[5,9],"labels":"ABCDE","multiple":"all","blank":"none"})";
    EXPECT_EQ(question({}, all), FieldValue("none"));
    EXPECT_EQ(question({{3, 7}, {3, 5}}, all), FieldValue("AC"));
}

TEST(Fields, WhatWasNotReadHasNoValue)
{
    EXPECT_EQ(question({{3, 5}}, R"({"name":"Q1","side":2,"row":3,"columns":[5,9]})"), FieldValue());
    EXPECT_EQ(question({{3, 5}}, R"({"name":"Q1","row":3,"columns":[5,11]})"), FieldValue());
    EXPECT_EQ(question({{3, 5}}, R"({"name":"Q1","row":5,"columns":[5,9]})"), FieldValue());
}

TEST(Fields, ASingleCellWithoutLabelsIsItsMark)
{
    const std::string absent = R"({"name":"absent","row":1,"column":2})";
    EXPECT_EQ(question({{1, 2}}, absent), FieldValue(Int32{5}));
    EXPECT_EQ(question({}, absent), FieldValue(Int32{0}));
    EXPECT_EQ(question({{1, 2}}, R"({"name":"absent","row":1,"column":2,"labels":["yes"],"blank":"no"})"),
              FieldValue("yes"));
}

TEST(Fields, ChoicesWithoutLabelsAreNumbered)
{
    EXPECT_EQ(question({{3, 6}}, R"({"name":"Q1","row":3,"columns":[5,9]})"), FieldValue("2"));
}

TEST(Fields, LabelsAreCharactersAndNotBytes)
{
    EXPECT_EQ(question({{3, 6}}, R"({"name":"Q1","row":3,"columns":[5,7],"labels":"äöü"})"), FieldValue("ö"));
}

TEST(Fields, RangesRunBothWaysAndInSteps)
{
    EXPECT_THAT(fields(R"({"name":"Q","row":1,"columns":[9,5],"colGap":2})")[0].cells,
                ElementsAre(FieldCell{1, 9}, FieldCell{1, 7}, FieldCell{1, 5}));
    EXPECT_THAT(fields(R"({"name":"Q","rows":[1,2],"column":4})")[0].cells,
                ElementsAre(FieldCell{1, 4}, FieldCell{2, 4}));
}

TEST(Fields, ABlockIsAFieldALine)
{
    const std::vector<Field> across = fields(R"({"name":"Q","rows":[1,3],"columns":[5,6]})");
    EXPECT_THAT(names(across), ElementsAre("Q1", "Q2", "Q3"));
    EXPECT_THAT(across[2].cells, ElementsAre(FieldCell{3, 5}, FieldCell{3, 6}));
    const std::vector<Field> down =
        fields(R"({"name":"digit ","rows":[1,3],"columns":[5,6],"choices":"down","labels":"012","first":0})");
    EXPECT_THAT(names(down), ElementsAre("digit 0", "digit 1"));
    EXPECT_THAT(down[1].cells, ElementsAre(FieldCell{1, 6}, FieldCell{2, 6}, FieldCell{3, 6}));
}

TEST(Fields, AWindowGivesItsCellsAndItsSide)
{
    const std::string windows = R"("windows":[
        {"StartRow":2,"NumRows":2,"RowGap":2,"StartCol":3,"NumCols":3,"ColGap":1,"Page":1,"Orientation":1},
        {"StartRow":9,"NumRows":3,"RowGap":-1,"StartCol":3,"NumCols":2,"ColGap":4,"Page":2,"Orientation":0}],)";
    const std::vector<Field> all = fields(R"({"name":"Q","window":1,"labels":"ABC"},{"name":"D","window":2})", windows);
    EXPECT_THAT(names(all), ElementsAre("Q1", "Q2", "D1", "D2"));
    EXPECT_EQ(all[1].side, 1);
    EXPECT_THAT(all[1].cells, ElementsAre(FieldCell{4, 3}, FieldCell{4, 4}, FieldCell{4, 5}));
    EXPECT_EQ(all[3].side, 2);
    EXPECT_THAT(all[3].cells, ElementsAre(FieldCell{7, 7}, FieldCell{8, 7}, FieldCell{9, 7}))
        << "a negative gap is read from low rows to high ones";
}

TEST(Fields, FieldsMayStandInFrontOfTheWindowsTheyName)
{
    const host::Form form = host::parseForm(
        R"({"fields":[{"name":"Q","window":1}],"windows":[{"StartRow":1,"NumRows":1,"StartCol":1,"NumCols":2,"ColGap":1}]})",
        "form.json");
    EXPECT_EQ(form.fields.size(), 1U);
}

TEST(Fields, ARowHasWhatEverySheetHasAndTheFields)
{
    host::Sheet sheet = sheetWith({{3, 6}});
    sheet.barcodes = TextArray::of(1, {"12", "", "\xE9"});
    sheet.rejected = true;
    const std::vector<Field> all = fields(kQuestion);
    EXPECT_THAT(host::columnsOf(all), ElementsAre("sheet", "barcodes", "rejected", "printed", "Q1"));
    EXPECT_THAT(host::rowOf(all, sheet), ElementsAre(FieldValue(Int32{7}), FieldValue("12 \xC3\xA9"), FieldValue(true),
                                                     FieldValue(false), FieldValue("B")));
}

TEST(Fields, WhatIsWrongIsSaidInOneSentenceWithItsPlace)
{
    const std::string windows = R"("windows":[{"StartRow":1,"NumRows":1,"StartCol":1,"NumCols":2,"ColGap":1}],)";
    const std::string sizes = R"("side1Rows":[63],"side1Cols":[48],)";
    struct Case {
        const char* field;
        const char* sentence;
    };
    for (const auto& [field, sentence] : {
             Case{R"({"row":1,"column":1})", "fields[0] has no name."},
             {R"({"name":"Q"})", "fields[0] does not say where it is: give a row and columns, or a window."},
             {R"({"name":"Q","row":1})", "fields[0] does not say where it is: give a row and columns, or a window."},
             {R"({"name":"Q","row":0,"column":1})", "fields[0].row has to be a whole number from 1 to 32767, not 0."},
             {R"({"name":"Q","row":64,"column":1})", "fields[0].row reaches row 64, but side 1 has 63 rows."},
             {R"({"name":"Q","row":1,"columns":[44,52]})",
              "fields[0].columns reaches column 52, but side 1 has 48 columns."},
             {R"({"name":"Q","row":1,"columns":[5]})",
              "fields[0].columns has 1 number; write the first and the last, as [5, 9]."},
             {R"({"name":"Q","row":1,"rows":[1,2],"column":1})",
              "fields[0].rows repeats the place of the field; give one of row and rows."},
             {R"({"name":"Q","row":1,"columns":[1,4],"colGap":2})",
              "fields[0].columns does not lead from 1 to 4 in steps of 2."},
             {R"({"name":"Q","row":1,"columns":[1,4],"labels":"ABC"})", "fields[0].labels has 3 labels for 4 cells."},
             {R"({"name":"Q","row":1,"columns":[1,3],"labels":"ABA"})", "fields[0].labels has the label \"A\" twice."},
             {R"({"name":"Q","row":1,"columns":[1,2],"labels":"A*"})",
              "fields[0].labels has the label \"*\", which stands for several marks."},
             {R"({"name":"Q","row":1,"columns":[1,2],"labels":"A-"})",
              "fields[0].labels has the label \"-\", which stands for no mark."},
             {R"({"name":"Q","row":1,"columns":[1,2],"labels":7})",
              "fields[0].labels has to be a text with one character for each choice, or an array of texts."},
             {R"({"name":"Q","row":1,"column":1,"multiple":"darkest"})",
              R"(fields[0].multiple has to be "mark" or "all", not "darkest".)"},
             {R"({"name":"Q","window":2})", "fields[0].window is 2, but the form has 1 window."},
             {R"({"name":"Q","window":1,"row":2})",
              "fields[0] has a window, which says where the field is; leave out side, rows and columns."},
             {R"({"name":"sheet","row":1,"column":1})", "fields[0] makes a second column \"sheet\"."},
             {R"({"name":"Q1","row":1,"column":1},{"name":"Q","rows":[1,2],"columns":[3,4]})",
              "fields[1] makes a second column \"Q1\"."},
             {R"({"name":"Q","row":1,"columns":[1,48],"label":"A"})",
              "fields[0] has an unknown key \"label\"; the nearest are labels and name."},
         })
        EXPECT_EQ(fieldsRefusal(field, windows + sizes), std::string("form.json: ") + sentence);
}

TEST(Fields, AFieldBeyondAllBoundsIsRefusedBeforeItIsMade)
{
    EXPECT_EQ(fieldsRefusal(R"({"name":"Q","rows":[1,32767],"columns":[1,200]})"),
              "form.json: fields[0] makes more than 10000 columns of the form.");
    EXPECT_EQ(fieldsRefusal(R"({"name":"Q","row":1,"columns":[1,32767]})"),
              "form.json: fields[0] has 32767 choices; the limit is 200.");
}

} // namespace
} // namespace kel
