// SPDX-License-Identifier: MIT
#include "host/Form.h"

#include "simulators/platform/SimulatedPlatform.h"
#include "tests/host/Refusal.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace kel {
namespace {

using testing::StartsWith;

host::Form form(const std::string& text)
{
    return host::parseForm(text, "form.json");
}

std::string formRefusal(const std::string& text)
{
    return test::refusalOf([&] { return form(text); });
}

TEST(FormFile, EmptyFormReadsPagesAndHasNoSizes)
{
    const host::Form empty = form("{}");
    EXPECT_EQ(empty.recognitionMode, kelRecognitionTypePage);
    EXPECT_FALSE(empty.side1Rows || empty.side1Cols || empty.side2Rows || empty.side2Cols);
    EXPECT_TRUE(empty.windows.empty() && empty.barcodes.empty());
}

TEST(FormFile, WholeFormReachesTheReader)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    host::applyForm(
        form(R"({"recognitionMode":"window","side1Rows":[63,20],"side1Cols":[48],"side2Rows":[],"side2Cols":[9],
        "windows":[{"StartRow":2,"NumRows":5,"RowGap":-1,"StartCol":3,"NumCols":4,"ColGap":1,"Page":1,"Orientation":1},
                   {"StartRow":9}],
        "barcodes":[{"Page":1,"Distance":100,"Length":50,"Symbology":16,"Orientation":2}]})"),
        reader);
    EXPECT_EQ(reader.RecognitionMode(), kelRecognitionTypeWindow);
    EXPECT_EQ(reader.Side1Rows(), PageArray::of(1, {63, 20}));
    EXPECT_EQ(reader.Side1Cols(), PageArray::of(1, {48}));
    EXPECT_EQ(reader.Side2Rows(), PageArray::of(1, {}));
    EXPECT_EQ(reader.Side2Cols(), PageArray::of(1, {9}));
    ASSERT_EQ(reader.Windows()->Count(), 2);
    const auto window = reader.Windows()->Item(1);
    EXPECT_EQ(window->StartRow(), 2);
    EXPECT_EQ(window->NumRows(), 5);
    EXPECT_EQ(window->RowGap(), -1);
    EXPECT_EQ(window->StartCol(), 3);
    EXPECT_EQ(window->NumCols(), 4);
    EXPECT_EQ(window->ColGap(), 1);
    EXPECT_EQ(window->Page(), 1);
    EXPECT_EQ(window->Orientation(), 1);
    EXPECT_EQ(reader.Windows()->Item(2)->StartRow(), 9);
    EXPECT_EQ(reader.Windows()->Item(2)->NumRows(), 0);
    ASSERT_EQ(reader.Barcodes()->Count(), 1);
    const auto barcode = reader.Barcodes()->Item(1);
    EXPECT_EQ(barcode->Page(), 1);
    EXPECT_EQ(barcode->Distance(), 100);
    EXPECT_EQ(barcode->Length(), 50);
    EXPECT_EQ(barcode->Symbology(), kelBarcodeTypeCode128);
    EXPECT_EQ(barcode->Orientation(), kelBarcodeOrientationHorizontal);
}

TEST(FormFile, SizesThatAreNotGivenStayUnset)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    host::applyForm(form("{}"), reader);
    EXPECT_FALSE(reader.Side1Rows().isDimensioned());
    EXPECT_EQ(reader.RecognitionMode(), kelRecognitionTypePage);
}

TEST(FormFile, BrokenJsonNamesThePlace)
{
    EXPECT_EQ(formRefusal(""),
              "form.json is not JSON: line 1, column 1: syntax error while parsing value - unexpected end "
              "of input; expected '[', '{', or a literal.");
    EXPECT_THAT(formRefusal("{\"side1Rows\":\n[1,}"), StartsWith("form.json is not JSON: line 2, column 4: "));
    EXPECT_THAT(formRefusal("{} x"), StartsWith("form.json is not JSON: line 1, column 4: "));
    EXPECT_THAT(formRefusal("\xFF"), StartsWith("form.json is not JSON: line 1, column 1: "));
}

TEST(FormFile, UnknownKeysAreRefused)
{
    EXPECT_EQ(formRefusal(R"({"side1Row":[1]})"), "form.json: the file has an unknown key \"side1Row\"; the nearest "
                                                  "are side1Rows, side2Rows and side1Cols.");
    EXPECT_EQ(formRefusal(R"({"windows":[{},{"Rows":1}]})"), "form.json: windows[1] has an unknown key \"Rows\"; the "
                                                             "nearest are NumRows, RowGap and StartRow.");
    EXPECT_THAT(formRefusal(R"({"barcodes":[{"page":1}]})"),
                StartsWith("form.json: barcodes[0] has an unknown key \"page\"; the nearest is Page."));
}

TEST(FormFile, NegativeSizesAreRefused)
{
    EXPECT_EQ(formRefusal(R"({"side1Rows":[63,-1]})"),
              "form.json: side1Rows[1] has to be a whole number from 0 to 32767, not -1.");
    EXPECT_EQ(formRefusal(R"({"windows":[{"NumRows":-5}]})"),
              "form.json: windows[0].NumRows has to be a whole number from 0 to 32767, not -5.");
    EXPECT_EQ(formRefusal(R"({"windows":[{"NumCols":-5}]})"),
              "form.json: windows[0].NumCols has to be a whole number from 0 to 32767, not -5.");
    EXPECT_EQ(formRefusal(R"({"barcodes":[{"Length":-1}]})"),
              "form.json: barcodes[0].Length has to be a whole number from 0 to 32767, not -1.");
}

TEST(FormFile, NumbersThatDoNotFitAreRefused)
{
    EXPECT_EQ(formRefusal(R"({"side2Cols":[32768]})"),
              "form.json: side2Cols[0] has to be a whole number from 0 to 32767, not 32768.");
    EXPECT_EQ(formRefusal(R"({"side2Cols":[18446744073709551615]})"),
              "form.json: side2Cols[0] has to be a whole number from 0 to 32767, not 18446744073709551615.");
    EXPECT_EQ(formRefusal(R"({"windows":[{"StartRow":-32769}]})"),
              "form.json: windows[0].StartRow has to be a whole number from -32768 to 32767, not -32769.");
    EXPECT_EQ(
        formRefusal(R"({"barcodes":[{"Symbology":2147483648}]})"),
        "form.json: barcodes[0].Symbology has to be a whole number from -2147483648 to 2147483647, not 2147483648.");
}

TEST(FormFile, WrongTypesAreRefused)
{
    EXPECT_EQ(formRefusal("[]"), "form.json: the file has to be an object, not an array.");
    EXPECT_EQ(formRefusal(R"({"side1Rows":63})"), "form.json: side1Rows has to be an array, not a number.");
    EXPECT_EQ(formRefusal(R"({"side1Rows":["63"]})"), "form.json: side1Rows[0] has to be a whole number, not a text.");
    EXPECT_EQ(formRefusal(R"({"side1Rows":[1.5]})"),
              "form.json: side1Rows[0] has to be a whole number from 0 to 32767, not 1.5.");
    EXPECT_EQ(formRefusal(R"({"windows":[5]})"), "form.json: windows[0] has to be an object, not a number.");
    EXPECT_EQ(formRefusal(R"({"windows":null})"), "form.json: windows has to be an array, not null.");
    EXPECT_EQ(formRefusal(R"({"windows":[{"Page":true}]})"),
              "form.json: windows[0].Page has to be a whole number, not a truth value.");
    EXPECT_EQ(formRefusal(R"({"recognitionMode":"pages"})"),
              R"(form.json: recognitionMode has to be "page" or "window", not "pages".)");
    EXPECT_EQ(formRefusal(R"({"recognitionMode":1})"), "form.json: recognitionMode has to be a text, not a number.");
}

TEST(FormFile, FileThatCannotBeReadIsRefused)
{
    try {
        static_cast<void>(host::readFormFile("/nonexistent/form.json"));
        FAIL();
    } catch (const host::UsageError& error) {
        EXPECT_STREQ(error.what(), "The form file /nonexistent/form.json cannot be read: No such file or directory.");
    }
    try {
        static_cast<void>(host::readFormFile("/"));
        FAIL();
    } catch (const host::UsageError& error) {
        EXPECT_STREQ(error.what(), "The form file / cannot be read: Is a directory.");
    }
}

TEST(FormFile, FileIsRead)
{
    const auto file = std::filesystem::path(testing::TempDir()) / "FormFile_test.json";
    std::ofstream(file) << R"({"side1Rows":[7]})";
    EXPECT_EQ(host::readFormFile(file).side1Rows, (std::vector<Int16>{7}));
    std::filesystem::remove(file);
}

} // namespace
} // namespace kel
