// SPDX-License-Identifier: MIT
#include "failure/ToVariant.h"
#include "failure/VariantDump.h"
#include "types/Enumerations.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

struct Cell {
    int row;
};

class Window {
public:
    static constexpr const char* kClassName = "clsKELReaderWindow";
};

class External {
public:
    virtual ~External() = default;
};

/// Objects counted from 1.
struct Windows {
    Int32 Count() const { return 2; }
    Reference<Window> Item(Int32 lPosition) const { return lPosition == 1 ? makeReference<Window>() : nullptr; }
};

std::string dump(const Variant& value)
{
    return dumpOfValue("v", value);
}

TEST(VariantDump, WritesALineAValue)
{
    EXPECT_EQ(dump(EmptyValue{}), "    <v>{Empty}</v>\r\n");
    EXPECT_EQ(dump(NullValue{}), "    <v>{Null}</v>\r\n");
    EXPECT_EQ(dump(ObjectValue{}), "    <v>{Nothing}</v>\r\n");
    EXPECT_EQ(dump(DataObjectValue{.isNothing = true}), "    <v>{Nothing}</v>\r\n");
    EXPECT_EQ(dump(DataObjectValue{}), "    <v>{DataObject}</v>\r\n");
    EXPECT_EQ(dump(RecordValue{"kelReaderStruct"}), "    <v>{UDT - kelReaderStruct}</v>\r\n");
    EXPECT_EQ(dump(ObjectValue{"clsKELReader"}), "    <v>{clsKELReader}</v>\r\n");
    EXPECT_EQ(dump(True), "    <v>True</v>\r\n");
    EXPECT_EQ(dump(std::int64_t{-32768}), "    <v>-32768</v>\r\n");
    EXPECT_EQ(dump(1.5), "    <v>1.5</v>\r\n");
    EXPECT_EQ(dump(std::string()), "    <v></v>\r\n");
    EXPECT_EQ(dump(std::string("SRST\r")), "    <v>SRST\r</v>\r\n");
}

TEST(VariantDump, ShowsZeroBytesOfATextOneByOne)
{
    EXPECT_EQ(dump(std::string("\0a\0\0b", 5)), "    <v>{Null}a{Null}{Null}b</v>\r\n");
}

TEST(VariantDump, TellsTheNumberOfAValueWithoutAText)
{
    EXPECT_EQ(dump(MissingValue{}), "    <v>{Error 13 formatting for output}</v>\r\n");
    const ObjectValue failing{"Collection", []() -> std::vector<Variant> { throw RuntimeFailure(440, "gone"); }};
    EXPECT_EQ(dump(failing), "    <v>{Error 440 formatting for output}</v>\r\n");
}

TEST(VariantDump, ClosesATagWithItsBareName)
{
    EXPECT_EQ(dumpOfValue("s Index=\"1\"", std::string("x"), 98, 6), "      <s Index=\"1\">x</s>\r\n");
    EXPECT_EQ(dumpOfValue("s", NullValue{}, 99, 0), "<s>{Null}</s>\r\n");
}

TEST(VariantDump, NumbersTheElementsOfACollection)
{
    const Windows windows;
    EXPECT_EQ(dumpOfValue("kelWindows", collectionVariant(windows)),
              "    <kelWindows>\r\n"
              "      <kelWindows[1]>{clsKELReaderWindow}</kelWindows[1]>\r\n"
              "      <kelWindows[2]>{Nothing}</kelWindows[2]>\r\n"
              "    </kelWindows>\r\n");
    EXPECT_EQ(dump(ObjectValue{"Collection", [] { return std::vector<Variant>(); }}), "    <v>\r\n    </v>\r\n");
}

TEST(VariantDump, ListsTheElementsOfAnArray)
{
    const TextArray sBarcodeArr = TextArray::of(0, {"12345", std::string("\0", 1)});
    EXPECT_EQ(dumpOfValue("sBarcodeArr", toVariant(sBarcodeArr)),
              "    <sBarcodeArr>\r\n"
              "      <sBarcodeArr Index=\"0\">12345</sBarcodeArr>\r\n"
              "      <sBarcodeArr Index=\"1\">{Null}</sBarcodeArr>\r\n"
              "    </sBarcodeArr>\r\n");
}

TEST(VariantDump, CountsTwoDimensionsRowByRow)
{
    MarkArray iSide1Arr(2, 2);
    iSide1Arr(1, 2) = 7;
    iSide1Arr(2, 1) = -1;
    EXPECT_EQ(dump(toVariant(iSide1Arr)), "    <v>\r\n"
                                          "      <v Index=\"1,1\">0</v>\r\n"
                                          "      <v Index=\"1,2\">7</v>\r\n"
                                          "      <v Index=\"2,1\">-1</v>\r\n"
                                          "      <v Index=\"2,2\">0</v>\r\n"
                                          "    </v>\r\n");
}

TEST(VariantDump, GoesDownIntoArraysOfArrays)
{
    const PageArray inner = PageArray::of(1, {5});
    const ArrayValue outer({{1, 1}}, [&](auto) { return toVariant(inner); });
    EXPECT_EQ(dump(outer), "    <v>\r\n"
                           "      <v Index=\"1\">\r\n"
                           "        <v Index=\"1\" Index=\"1\">5</v>\r\n"
                           "      </v>\r\n"
                           "    </v>\r\n");
}

TEST(VariantDump, CountsThreeDimensions)
{
    const ArrayValue array({{0, 0}, {1, 2}, {-1, -1}}, [](std::span<const Int32> at) {
        return Variant(std::int64_t{100 * at[0] + 10 * at[1] + at[2]});
    });
    EXPECT_EQ(dump(array), "    <v>\r\n"
                           "      <v Index=\"0,1,-1\">9</v>\r\n"
                           "      <v Index=\"0,2,-1\">19</v>\r\n"
                           "    </v>\r\n");
}

TEST(VariantDump, FailsAtTheFirstElementOfFourDimensionsAndMore)
{
    const auto element = [](std::span<const Int32>) { return Variant(std::int64_t{1}); };
    const std::string text = "    <v>\r\n"
                             "      {Error 9 formatting for output}\r\n"
                             "    </v>\r\n";
    EXPECT_EQ(dump(ArrayValue({{1, 2}, {1, 2}, {1, 2}, {1, 2}}, element)), text);
    EXPECT_EQ(dump(ArrayValue({{1, 2}, {1, 2}, {1, 2}, {1, 2}, {1, 2}}, element)), text);
}

TEST(VariantDump, SaysWhichDimensionHasNoBounds)
{
    const auto element = [](std::span<const Int32>) { return Variant(std::int64_t{1}); };
    const auto remark = [](const char* text) { return "    <v>\r\n      " + std::string(text) + "\r\n    </v>\r\n"; };
    EXPECT_EQ(dump(toVariant(PageArray())), remark("{UnInitialised Array}"));
    EXPECT_EQ(dump(toVariant(MarkArray())), remark("{UnInitialised Array}"));
    EXPECT_EQ(dump(toVariant(std::vector<Int32>())), remark("{UnInitialised Array}"));
    EXPECT_EQ(dump(ArrayValue({{1, 2}, {0, -1}}, element)), remark("{UnInitialised Array Dimension 2}"));
    EXPECT_EQ(dump(ArrayValue({{1, 2}, {1, 2}, {0, -1}}, element)), remark("{UnInitialised Array Dimension 3}"));
    EXPECT_EQ(dump(ArrayValue({{1, 2}, {1, 2}, {0, -1}, {1, 2}}, element)),
              remark("{UnInitialised Array Dimension 3}"));
}

TEST(VariantDump, EndsAnArrayAtTheElementThatFails)
{
    const ArrayValue array({{1, 3}}, [](std::span<const Int32> at) {
        if (at[0] == 2)
            throw RuntimeFailure(FailureCode::ObjectNotSet);
        return Variant(std::int64_t{at[0]});
    });
    EXPECT_EQ(dump(array), "    <v>\r\n"
                           "      <v Index=\"1\">1</v>\r\n"
                           "      {Error 91 formatting for output}\r\n"
                           "    </v>\r\n");
}

TEST(ToVariant, TakesEveryKindOfVariable)
{
    EXPECT_EQ(dump(toVariant(True)), "    <v>True</v>\r\n");
    EXPECT_EQ(dump(toVariant(false)), "    <v>False</v>\r\n");
    EXPECT_EQ(dump(toVariant(Int16{12})), "    <v>12</v>\r\n");
    EXPECT_EQ(dump(toVariant(Byte{255})), "    <v>255</v>\r\n");
    EXPECT_EQ(dump(toVariant(1.5F)), "    <v>1.5</v>\r\n");
    EXPECT_EQ(dump(toVariant("literal")), "    <v>literal</v>\r\n");
    EXPECT_EQ(dump(toVariant(std::string_view("view"))), "    <v>view</v>\r\n");
    EXPECT_EQ(dump(toVariant(std::optional<Int32>(3))), "    <v>3</v>\r\n");
    EXPECT_EQ(dump(toVariant(std::optional<Int32>())), "    <v>{Error 13 formatting for output}</v>\r\n");
    EXPECT_EQ(dump(toVariant(Reference<Window>())), "    <v>{Nothing}</v>\r\n");
    EXPECT_EQ(dump(toVariant(makeReference<Window>())), "    <v>{clsKELReaderWindow}</v>\r\n");
}

TEST(ToVariant, CannotLookIntoStructuredTypes)
{
    EXPECT_EQ(dumpOfValue("eReaderType", toVariant(kelReaderTypePDIVMR138)),
              "    <eReaderType>{Cannot dump external UDTs}</eReaderType>\r\n");
    EXPECT_EQ(dump(toVariant(External())), "    <v>{Cannot dump external UDTs}</v>\r\n");
    EXPECT_EQ(dump(toVariant(Cell{1})), "    <v>{Can't dump UDT parameters}</v>\r\n");
    EXPECT_EQ(dump(toVariant(Array1<Cell>(1, 2))), "    <v>{Cannot dump UDT arrays}</v>\r\n");
    EXPECT_EQ(dump(toVariant(std::vector<Cell>(2))), "    <v>{Cannot dump UDT arrays}</v>\r\n");
}

} // namespace
} // namespace kel::test
