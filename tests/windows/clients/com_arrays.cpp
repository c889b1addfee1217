// SPDX-License-Identifier: MIT
// Arrays of pages, which hosts set by vtable and by name: their bounds, what scripts have for them, and what is
// reported of one that is none.

#include "tests/windows/clients/ErrorLog.h"

namespace {

class PageArrays : public HostTest {};

TEST_F(PageArrays, KeepTheirBounds)
{
    const auto reader = newReader();
    SAFEARRAY* rows = numbers({63, 21});
    EXPECT_EQ(reader->put_Side1Rows(&rows), S_OK);
    SafeArrayDestroy(rows);
    SAFEARRAY* got = nullptr;
    EXPECT_EQ(reader->get_Side1Rows(&got), S_OK);
    LONG lower = 0;
    LONG upper = 0;
    SafeArrayGetLBound(got, 1, &lower);
    SafeArrayGetUBound(got, 1, &upper);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 2);
    short second = 0;
    SafeArrayGetElement(got, &upper, &second);
    EXPECT_EQ(second, 21);
    SafeArrayDestroy(got);

    // An array that was never set is none.
    EXPECT_EQ(reader->get_Side2Cols(&got), S_OK);
    EXPECT_EQ(got, nullptr);
}

TEST_F(PageArrays, MayBeAScripts)
{
    const auto reader = newReader();
    const auto secondPage = [&] {
        SAFEARRAY* got = nullptr;
        EXPECT_EQ(reader->get_Side1Cols(&got), S_OK);
        LONG index = 1;
        short element = 0;
        EXPECT_EQ(SafeArrayGetElement(got, &index, &element), S_OK);
        SafeArrayDestroy(got);
        return element;
    };

    // VBScript's Array(0, 48) is an array of variants from 0, in a variant that a variant refers to.
    Value array;
    array.get().parray = SafeArrayCreateVector(VT_VARIANT, 0, 2);
    array.get().vt = VT_ARRAY | VT_VARIANT;
    for (LONG index = 0; index < 2; ++index)
        SafeArrayPutElement(array.get().parray, &index, &Value(index == 0 ? 0 : 48).get());
    Value reference;
    reference.get().vt = VT_BYREF | VT_VARIANT;
    reference.get().pvarVal = &array.get();
    put(reader.get(), L"Side1Cols", reference);
    EXPECT_EQ(secondPage(), 48);
    put(reader.get(), L"Side1Cols", array);
    EXPECT_EQ(secondPage(), 48);

    // The same by reference, with numbers of the interface's own kind.
    Value typed;
    typed.get().parray = numbers({12});
    typed.get().vt = VT_ARRAY | VT_I2;
    reference.get().pvarVal = &typed.get();
    put(reader.get(), L"Side1Cols", reference);
    EXPECT_EQ(secondPage(), 12);
    reference.get().vt = VT_EMPTY;

    // JScript's [0, 77] is an object.
    Value length(2);
    Value first(0);
    Value second(77);
    HostObject script;
    script.property(L"length", length).property(L"0", first).property(L"1", second);
    EXPECT_EQ(call(reader.get(), L"Side1Cols", DISPATCH_PROPERTYPUT, {Value(&script)}).code, S_OK);
    EXPECT_EQ(secondPage(), 77);

    EXPECT_EQ(call(reader.get(), L"Side1Cols", DISPATCH_PROPERTYPUT, {Value(5)}).code, DISP_E_TYPEMISMATCH);
}

/// An array of some shape, as a variant that owns it.
Value shaped(VARTYPE type, const std::vector<SAFEARRAYBOUND>& bounds)
{
    Value array;
    array.get().parray =
        SafeArrayCreate(type, static_cast<UINT>(bounds.size()), const_cast<SAFEARRAYBOUND*>(bounds.data()));
    array.get().vt = static_cast<VARTYPE>(VT_ARRAY | type);
    return array;
}

TEST_F(PageArrays, OfTheWrongShapeAreReportedByTheirProperty)
{
    const auto reader = newReader();
    SAFEARRAY* before = numbers({12, 34});
    for (const auto set : {&_clsKELReader::put_Side1Rows, &_clsKELReader::put_Side1Cols, &_clsKELReader::put_Side2Rows,
                           &_clsKELReader::put_Side2Cols})
        EXPECT_EQ((reader.get()->*set)(&before), S_OK);
    SafeArrayDestroy(before);

    const Value square = shaped(VT_I2, {SAFEARRAYBOUND{2, 1}, SAFEARRAYBOUND{2, 1}});
    const Value words = shaped(VT_BSTR, {SAFEARRAYBOUND{1, 1}});
    LONG index = 1;
    SafeArrayPutElement(words.get().parray, &index, Value(L"x").get().bstrVal);
    const Value large = shaped(VT_I4, {SAFEARRAYBOUND{1, 1}});
    LONG tooLarge = 70000;
    SafeArrayPutElement(large.get().parray, &index, &tooLarge);
    const Value objects = shaped(VT_VARIANT, {SAFEARRAYBOUND{1, 1}});
    SafeArrayPutElement(objects.get().parray, &index, &Value(static_cast<IDispatch*>(reader.get())).get());

    struct Property {
        const wchar_t* name;
        HRESULT (STDMETHODCALLTYPE _clsKELReader::*put)(SAFEARRAY**);
    };
    const std::array properties{
        Property{L"Side1Rows", &_clsKELReader::put_Side1Rows}, Property{L"Side1Cols", &_clsKELReader::put_Side1Cols},
        Property{L"Side2Rows", &_clsKELReader::put_Side2Rows}, Property{L"Side2Cols", &_clsKELReader::put_Side2Cols}};
    const std::array<std::pair<const Value*, const wchar_t*>, 4> wrong{
        {{&square, L"9"}, {&words, L"13"}, {&large, L"6"}, {&objects, L"13"}}};
    for (const Property& property : properties) {
        for (const auto& [array, number] : wrong) {
            ErrorLog log;
            const Registered registered(reader.get(), &log.object);
            const std::wstring expected = std::wstring(number) + L"/0 clsKELReader." + property.name;
            SAFEARRAY* given = array->get().parray;
            EXPECT_EQ((reader.get()->*property.put)(&given), S_OK);
            EXPECT_TRUE(log.reports.starts_with(expected)) << std::string(log.reports.begin(), log.reports.end());
            const std::wstring byVtable = std::exchange(log.reports, L"");
            // By name, as a value and as a reference to one.
            EXPECT_EQ(call(reader.get(), property.name, DISPATCH_PROPERTYPUT, {*array}).code, S_OK);
            EXPECT_EQ(std::exchange(log.reports, L""), byVtable);
            Value reference;
            reference.get().vt = static_cast<VARTYPE>(VT_BYREF | array->type());
            reference.get().pparray = &given;
            EXPECT_EQ(call(reader.get(), property.name, DISPATCH_PROPERTYPUT, {reference}).code, S_OK);
            EXPECT_EQ(log.reports, byVtable);
        }
        const Value after = get(reader.get(), property.name);
        short second = 0;
        LONG page = 2;
        EXPECT_EQ(SafeArrayGetElement(after.get().parray, &page, &second), S_OK);
        EXPECT_EQ(second, 34); // as it was
    }
}

TEST_F(PageArrays, OfAScriptAreReportedTheSameWay)
{
    const auto reader = newReader();
    ErrorLog log;
    const Registered registered(reader.get(), &log.object);
    Value length(1);
    Value first(L"twelve");
    HostObject script;
    script.property(L"length", length).property(L"0", first);
    EXPECT_EQ(call(reader.get(), L"Side2Rows", DISPATCH_PROPERTYPUT, {Value(&script)}).code, S_OK);
    EXPECT_TRUE(log.reports.starts_with(L"13/0 clsKELReader.Side2Rows"));
}

} // namespace
