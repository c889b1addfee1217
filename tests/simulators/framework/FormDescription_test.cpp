#include "simulators/framework/FormDescription.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kel {
namespace {

std::string errorOf(std::string_view text)
{
    try {
        static_cast<void>(formFromJson(text));
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "taken";
}

TEST(FormDescription, IsReadFromJson)
{
    const FormDescription form = formFromJson(R"({
        "recognitionMode":"window","side1Rows":[63,20],"side1Cols":[48],"side2Rows":[],"side2Cols":[12],
        "windows":[{"StartRow":2,"NumRows":5,"RowGap":-1,"StartCol":3,"NumCols":4,"ColGap":1,"Page":1,"Orientation":1}],
        "barcodes":[{"Page":1,"Distance":100,"Length":50,"Symbology":1,"Orientation":2}]})");
    EXPECT_TRUE(form.windowMode);
    EXPECT_EQ(form.side1Rows, (std::vector<Int16>{63, 20}));
    EXPECT_EQ(form.side1Cols, (std::vector<Int16>{48}));
    EXPECT_TRUE(form.side2Rows.empty());
    EXPECT_EQ(form.side2Cols, (std::vector<Int16>{12}));
    EXPECT_EQ(form.windows, (std::vector<FormWindow>{{2, 5, -1, 3, 4, 1, 1, 1}}));
    EXPECT_EQ(form.barcodes, (std::vector<FormBarcode>{{1, 100, 50, 1, 2}}));
    EXPECT_EQ(formFromJson("{}"), FormDescription{});
    EXPECT_FALSE(formFromJson(R"({"recognitionMode":"page"})").windowMode);
}

TEST(FormDescription, MistakesNameTheirPlace)
{
    EXPECT_EQ(errorOf("[]"), "form: is no object");
    EXPECT_EQ(errorOf(R"({"rows":1})").find("form: unknown member \"rows\"; there are recognitionMode, side1Rows"), 0U);
    EXPECT_EQ(errorOf(R"({"recognitionMode":"both"})"), "recognitionMode: \"both\" is neither page nor window");
    EXPECT_EQ(errorOf(R"({"recognitionMode":1})"), "recognitionMode: 1 is no text");
    EXPECT_EQ(errorOf(R"({"side1Rows":63})"), "side1Rows: is no array");
    EXPECT_EQ(errorOf(R"({"side2Cols":[1,"2"]})"), "side2Cols, page 2: \"2\" is no whole number from -32768 to 32767");
    EXPECT_EQ(errorOf(R"({"windows":[{},{"Row":1}]})").find("window 2: unknown member \"Row\""), 0U);
    EXPECT_EQ(errorOf(R"({"windows":[{"StartRow":99999}]})"),
              "window 1, StartRow: 99999 is no whole number from -32768 to 32767");
    EXPECT_EQ(errorOf(R"({"windows":{}})"), "windows: is no array");
    EXPECT_EQ(errorOf(R"({"barcodes":[{"Length":null}]})"),
              "barcode 1, Length: null is no whole number from -2147483648 to 2147483647");
    EXPECT_EQ(errorOf(R"({"barcodes":1})"), "barcodes: is no array");
}

} // namespace
} // namespace kel
