// SPDX-License-Identifier: MIT
#include "platform/OmrApiBinding.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kel::omr_binding_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What arrived at the library's side.
std::vector<std::string> arrived;

void note(const std::string& name, std::initializer_list<std::int64_t> arguments = {})
{
    std::string line = name;
    for (const std::int64_t argument : arguments)
        line += ' ' + std::to_string(argument);
    arrived.push_back(line);
}

// The functions as a library in C has them.
extern "C" {

std::int32_t openDevice()
{
    note("open");
    return 11;
}

std::int32_t twoOut(std::int32_t* first, std::int32_t* second)
{
    note("two out", {*first, *second});
    *first = 3;
    *second = -4;
    return 12;
}

std::int32_t twoIn(std::int32_t first, std::int32_t second)
{
    note("two in", {first, second});
    return 13;
}

std::int32_t oneIn(std::int32_t value)
{
    note("one in", {value});
    return 14;
}

std::int32_t getMarks(std::int32_t side, std::int32_t* record, unsigned char* bytes)
{
    note("marks", {side, record[0], record[1], record[2]});
    record[1] = 63;
    bytes[0] = 7;
    bytes[9599] = 8;
    return 15;
}

std::int32_t area(std::int32_t* record)
{
    note("area", {record[0], record[1]});
    return 16;
}

std::int32_t checkDigit(unsigned char type, std::int32_t on)
{
    note("check digit", {type, on});
    return 17;
}

std::int32_t barcode(std::int32_t index, unsigned char* type, std::int32_t* length, unsigned char* bytes)
{
    note("barcode", {index, *type, *length});
    *type = 2;
    *length = 3;
    bytes[2] = 'z';
    return 18;
}

std::int32_t threeIn(std::int32_t first, std::int32_t second, std::int32_t third)
{
    note("three in", {first, second, third});
    return 19;
}

std::int32_t text(std::int32_t line, const char* words)
{
    note(std::string("text ") + words, {line});
    return 20;
}

} // extern "C"

/// A library of these functions, that notes what it is asked for.
class FakeLibrary final : public SymbolSource {
public:
    [[nodiscard]] void* find(const char* name) override
    {
        asked.emplace_back(name);
        if (missing)
            throw *missing;
        const auto entry = entries.find(name);
        return entry == entries.end() ? nullptr : entry->second;
    }

    template <class Function>
    void add(const char* name, Function* function)
    {
        entries[name] = reinterpret_cast<void*>(function);
    }

    std::map<std::string, void*> entries;
    std::vector<std::string> asked;
    std::optional<RuntimeFailure> missing;
};

class OmrApiBindingTest : public ::testing::Test {
protected:
    OmrApiBindingTest() { arrived.clear(); }

    FakeLibrary library;
    OmrApiBinding api{library};
};

TEST_F(OmrApiBindingTest, AsksForNothingBeforeACallAndForEachFunctionOnce)
{
    library.add("OMR_OpenDeviceUSB", openDevice);
    library.add("OMR_EjectSheet", oneIn);
    EXPECT_THAT(library.asked, IsEmpty());
    EXPECT_EQ(api.OMR_OpenDeviceUSB(), 11);
    EXPECT_EQ(api.OMR_OpenDeviceUSB(), 11);
    EXPECT_EQ(api.OMR_EjectSheet(3), 14);
    EXPECT_THAT(library.asked, ElementsAre("OMR_OpenDeviceUSB", "OMR_EjectSheet"));
    EXPECT_THAT(arrived, ElementsAre("open", "open", "one in 3"));
}

TEST_F(OmrApiBindingTest, HandsNumbersOverAndBack)
{
    library.add("OMR_GetReadingMethod", twoOut);
    library.add("OMR_SetReadingMethod", twoIn);
    library.add("OMR_GetSheetFeedMode", twoOut);
    library.add("OMR_GetBarcodeInfo", twoOut);
    library.add("OMR_SetPrintOrder", threeIn);
    Int32 first = 70000;
    Int32 second = -1;
    EXPECT_EQ(api.OMR_GetReadingMethod(first, second), 12);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(second, -4);
    EXPECT_EQ(api.OMR_GetSheetFeedMode(second, first), 12);
    EXPECT_EQ(api.OMR_GetBarcodeInfo(first, second), 12);
    EXPECT_EQ(api.OMR_SetReadingMethod(-2147483647 - 1, 2147483647), 13);
    EXPECT_EQ(api.OMR_SetPrintOrder(1, 2, 3), 19);
    EXPECT_THAT(arrived, ElementsAre("two out 70000 -1", "two out -4 3", "two out -4 3",
                                     "two in -2147483648 2147483647", "three in 1 2 3"));
}

TEST_F(OmrApiBindingTest, HandsRecordsAndArraysOver)
{
    library.add("OMR_GetMarks", getMarks);
    library.add("OMR_SetBarCodeArea", area);
    library.add("OMR_GetBarcodeData", barcode);
    SRRead uRead{.lThreshold = 9, .lRows = 200, .lCols = 48};
    std::vector<Byte> bytes(9600);
    EXPECT_EQ(api.OMR_GetMarks(1, uRead, bytes.data()), 15);
    EXPECT_EQ(uRead.lRows, 63);
    EXPECT_EQ(uRead.lCols, 48);
    EXPECT_EQ(bytes[0], 7);
    EXPECT_EQ(bytes[9599], 8);
    SRBarcodeArea uArea{.lStart = 100, .lLength = 80};
    EXPECT_EQ(api.OMR_SetBarCodeArea(uArea), 16);
    Byte type = 0x40;
    Int32 length = 512;
    EXPECT_EQ(api.OMR_GetBarcodeData(4, type, length, bytes.data()), 18);
    EXPECT_EQ(type, 2);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(bytes[2], 'z');
    EXPECT_THAT(arrived, ElementsAre("marks 1 9 200 48", "area 100 80", "barcode 4 64 512"));
}

TEST_F(OmrApiBindingTest, HandsABytesArgumentAndTextsOver)
{
    library.add("OMR_SetBarCodeCheckDigit", checkDigit);
    library.add("OMR_SetPrintString", text);
    EXPECT_EQ(api.OMR_SetBarCodeCheckDigit(0xFF, 0), 17);
    EXPECT_EQ(api.OMR_SetPrintString(2, "A\xE9"), 20);
    EXPECT_THAT(arrived, ElementsAre("check digit 255 0", "text A\xE9 2"));
}

TEST_F(OmrApiBindingTest, EveryFunctionGoesToItsOwnName)
{
    library.add("OMR_OpenDeviceUSB", openDevice);
    library.add("OMR_CloseDevice", openDevice);
    library.add("OMR_GetLastError", openDevice);
    library.add("OMR_GetReadingMethod", twoOut);
    library.add("OMR_SetReadingMethod", twoIn);
    library.add("OMR_GetNumberOfColumnsToRead", openDevice);
    library.add("OMR_SetNumberOfColumnsToRead", oneIn);
    library.add("OMR_SetBackSensorUnit", oneIn);
    library.add("OMR_GetSheetFeedMode", twoOut);
    library.add("OMR_SetSheetFeedMode", twoIn);
    library.add("OMR_FeedSheet", openDevice);
    library.add("OMR_GetMarks", getMarks);
    library.add("OMR_EjectSheet", oneIn);
    library.add("OMR_GetBarcodeReaderUnit", openDevice);
    library.add("OMR_SetBarcodeReaderUnit", oneIn);
    library.add("OMR_SetBarCodeArea", area);
    library.add("OMR_SetBarCodeReadType", oneIn);
    library.add("OMR_SetBarCodeCheckDigit", checkDigit);
    library.add("OMR_GetBarcodeInfo", twoOut);
    library.add("OMR_GetBarcodeData", barcode);
    library.add("OMR_SetPrintOrder", threeIn);
    library.add("OMR_SetPrintPosition", oneIn);
    library.add("OMR_SetPrintString", text);

    Int32 one = 0;
    Int32 two = 0;
    Byte type = 0;
    SRRead uRead;
    SRBarcodeArea uArea;
    std::vector<Byte> bytes(9600);
    api.OMR_OpenDeviceUSB();
    api.OMR_CloseDevice();
    api.OMR_GetLastError();
    api.OMR_GetReadingMethod(one, two);
    api.OMR_SetReadingMethod(1, 2);
    api.OMR_GetNumberOfColumnsToRead();
    api.OMR_SetNumberOfColumnsToRead(1);
    api.OMR_SetBackSensorUnit(1);
    api.OMR_GetSheetFeedMode(one, two);
    api.OMR_SetSheetFeedMode(1, 2);
    api.OMR_FeedSheet();
    api.OMR_GetMarks(0, uRead, bytes.data());
    api.OMR_EjectSheet(1);
    api.OMR_GetBarcodeReaderUnit();
    api.OMR_SetBarcodeReaderUnit(1);
    api.OMR_SetBarCodeArea(uArea);
    api.OMR_SetBarCodeReadType(1);
    api.OMR_SetBarCodeCheckDigit(1, 2);
    api.OMR_GetBarcodeInfo(one, two);
    api.OMR_GetBarcodeData(1, type, two, bytes.data());
    api.OMR_SetPrintOrder(1, 2, 3);
    api.OMR_SetPrintPosition(1);
    api.OMR_SetPrintString(1, "");
    EXPECT_THAT(library.asked,
                ElementsAre("OMR_OpenDeviceUSB", "OMR_CloseDevice", "OMR_GetLastError", "OMR_GetReadingMethod",
                            "OMR_SetReadingMethod", "OMR_GetNumberOfColumnsToRead", "OMR_SetNumberOfColumnsToRead",
                            "OMR_SetBackSensorUnit", "OMR_GetSheetFeedMode", "OMR_SetSheetFeedMode", "OMR_FeedSheet",
                            "OMR_GetMarks", "OMR_EjectSheet", "OMR_GetBarcodeReaderUnit", "OMR_SetBarcodeReaderUnit",
                            "OMR_SetBarCodeArea", "OMR_SetBarCodeReadType", "OMR_SetBarCodeCheckDigit",
                            "OMR_GetBarcodeInfo", "OMR_GetBarcodeData", "OMR_SetPrintOrder", "OMR_SetPrintPosition",
                            "OMR_SetPrintString"));
    EXPECT_EQ(arrived.size(), library.asked.size());
}

TEST_F(OmrApiBindingTest, FailsWhereTheLibraryLacksAFunctionAndLooksAgainNextTime)
{
    for (int attempt = 1; attempt <= 2; ++attempt) {
        try {
            api.OMR_FeedSheet();
            FAIL();
        } catch (const RuntimeFailure& failure) {
            EXPECT_EQ(failure.number(), 453);
            EXPECT_EQ(failure.text(), "Can't find DLL entry point OMR_FeedSheet in OMRAPI.DLL");
        }
    }
    library.add("OMR_FeedSheet", openDevice);
    EXPECT_EQ(api.OMR_FeedSheet(), 11);
    EXPECT_EQ(library.asked.size(), 3U);
}

TEST_F(OmrApiBindingTest, FailsWithTheLibraryItself)
{
    library.missing.emplace(FailureCode::FileNotFound, "File not found: OMRAPI.DLL");
    EXPECT_THROW(api.OMR_CloseDevice(), RuntimeFailure);
    library.missing.reset();
    library.add("OMR_CloseDevice", openDevice);
    EXPECT_EQ(api.OMR_CloseDevice(), 11);
}

TEST_F(OmrApiBindingTest, TellsWhichFunctionsThereAre)
{
    library.add("OMR_GetPrintOrder", openDevice);
    EXPECT_TRUE(api.has(OmrFunction::OMR_GetPrintOrder));
    EXPECT_FALSE(api.has(OmrFunction::OMR_FormatMessage));
    EXPECT_THAT(arrived, IsEmpty());
}

TEST(OmrFunctions, HaveNamesOfTheirOwn)
{
    std::set<std::string> names;
    for (std::size_t i = 0; i < kOmrFunctionCount; ++i)
        names.insert(omrFunctionName(static_cast<OmrFunction>(i)));
    EXPECT_EQ(names.size(), 30U);
    EXPECT_STREQ(omrFunctionName(OmrFunction::OMR_FormatMessage), "OMR_FormatMessage");
    EXPECT_STREQ(omrFunctionName(OmrFunction::OMR_GetBackSensorUnit), "OMR_GetBackSensorUnit");
}

} // namespace
} // namespace kel::omr_binding_test
