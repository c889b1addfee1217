// SPDX-License-Identifier: MIT
// The component's surface as hosts see it: the type library, properties by vtable and by name, collections, failures.

#include "tests/windows/clients/Host.h"
#include "types/Enumerations.h"

#include <array>
#include <string_view>

namespace {

class Surface : public HostTest {};

struct Described {
    INVOKEKIND kind;
    DISPID id;
    SHORT offset;
    std::wstring name;
};

/// The members of an interface behind those of IDispatch, in their order.
std::vector<Described> membersOf(REFIID iid)
{
    std::array<wchar_t, MAX_PATH> path{};
    GetModuleFileNameW(server(), path.data(), static_cast<DWORD>(path.size()));
    Ptr<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(path.data(), REGKIND_NONE, library.out()), S_OK);
    Ptr<ITypeInfo> type;
    EXPECT_EQ(library->GetTypeInfoOfGuid(iid, type.out()), S_OK);
    TYPEATTR* attributes = nullptr;
    type->GetTypeAttr(&attributes);
    std::vector<Described> members;
    for (UINT index = 0; index < attributes->cFuncs; ++index) {
        FUNCDESC* function = nullptr;
        type->GetFuncDesc(index, &function);
        BSTR name = nullptr;
        UINT count = 0;
        type->GetNames(function->memid, &name, 1, &count);
        if (function->memid < 0x60000000)
            members.push_back({function->invkind, function->memid, function->oVft, name});
        SysFreeString(name);
        type->ReleaseFuncDesc(function);
    }
    type->ReleaseTypeAttr(attributes);
    return members;
}

/// The names in the order of the members, each accessor of a property once.
std::wstring names(REFIID iid)
{
    std::wstring all;
    std::wstring last;
    for (const Described& member : membersOf(iid)) {
        if (member.name != last)
            all += (all.empty() ? L"" : L" ") + member.name;
        last = member.name;
    }
    return all;
}

TEST_F(Surface, TheReadersMembersStandInTheirOrder)
{
    EXPECT_EQ(
        names(IID__clsKELReader),
        L"Barcodes Windows Profiles Printer fComm AnswerKey HelpID HelpFile ReaderGrade BaudRate SleepTime "
        L"DataBits Duplex DuplexForm Barcode Feeder FlowControl MarkCutOff MarkDiscrimination ReaderName "
        L"Side1TimingMarks Side2TimingMarks Side1Array Side2Array Side1Rows Side1Cols Side2Rows Side2Cols Parity "
        L"Port CancelScan ReaderType RecognitionThreshold Rejecter StopBits Timeout StartReader ReadPage ReadBatch "
        L"EndReader RejectPage EjectPage Windowing RecognitionMode LoadDefaults LoadSettings SaveSettings SetError "
        L"ShowOptions Locate Firmware");
    SHORT offset = 7 * sizeof(void*);
    for (const Described& member : membersOf(IID__clsKELReader)) {
        EXPECT_EQ(member.offset, offset) << std::string(member.name.begin(), member.name.end());
        offset = static_cast<SHORT>(offset + static_cast<SHORT>(sizeof(void*)));
    }
}

TEST_F(Surface, TheOtherClassesMembersStandInTheirOrder)
{
    EXPECT_EQ(names(IID__clsKELReaderWindow),
              L"StartRow NumRows RowGap StartCol NumCols ColGap Page Orientation NumItems NumChoices");
    EXPECT_EQ(names(IID__clsKELReaderWindows), L"Count Add Remove RemoveAll Item Exists _NewEnum");
    EXPECT_EQ(names(IID__clsKELReaderBarcode), L"Page Distance Length Symbology Orientation");
    EXPECT_EQ(names(IID__clsKELReaderBarcodes), L"Count Item Exists Add Remove RemoveAll _NewEnum");
    EXPECT_EQ(names(IID__clsKELReaderPrinter),
              L"SetType Enabled Initialized Active Buffer1 Buffer2 Buffer3 FilledBufferCount BufferCount Distance "
              L"MinPosition MaxPosition MaxCharacters");
    EXPECT_EQ(names(IID__clsKELReaderProfiles), L"Count Item Exists ProfileType Remove RemoveAll _NewEnum");
    EXPECT_TRUE(names(IID__clsKELReaderProfile)
                    .starts_with(L"ReaderGrade ReaderGradeEnabled ReaderGradeVisible Barcode BarcodeEnabled"));
    EXPECT_TRUE(names(IID__clsKELReaderProfile).ends_with(L"LocateEnabled FirmwareEnabled MaxCols"));
}

TEST_F(Surface, TheEventsHaveTheirNumbers)
{
    const std::array<std::wstring_view, 7> expected{L"BeforeSheet",       L"ReadSheet",  L"AfterSheet",
                                                    L"BeforePrint",       L"AfterPrint", L"TranslateData",
                                                    L"GetQuestionsOnPage"};
    const auto events = membersOf(DIID___clsKELReader);
    ASSERT_EQ(events.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_EQ(events[index].id, static_cast<DISPID>(index) + 1);
        EXPECT_EQ(events[index].name, expected[index]);
    }
}

TEST_F(Surface, WhatIsInternalIsRefused)
{
    const auto reader = newReader();
    for (const wchar_t* name : {L"LargestSide1Rows", L"LargestSide2Cols", L"BarcodeArray", L"TranslateDataEvent",
                                L"GetQuestionsOnPageEvent", L"fPComm", L"LoadValue", L"SaveValue"})
        EXPECT_EQ(call(reader.get(), name, DISPATCH_PROPERTYGET).code, DISP_E_UNKNOWNNAME) << name;
    // The setters of what may be read.
    EXPECT_EQ(call(reader.get(), L"Side1TimingMarks", DISPATCH_PROPERTYPUT, {Value(1)}).code, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(call(reader.get(), L"ReaderName", DISPATCH_PROPERTYPUT, {Value(L"x")}).code, DISP_E_MEMBERNOTFOUND);
    const auto printer = get(reader.get(), L"Printer");
    EXPECT_EQ(call(printer.object(), L"Initialized", DISPATCH_PROPERTYPUT, {Value(true)}).code, DISP_E_MEMBERNOTFOUND);
}

TEST_F(Surface, EveryPublicClassCanBeCreated)
{
    EXPECT_TRUE(create<_clsKELReader>(CLSID_clsKELReader));
    EXPECT_TRUE(create<_clsKELReaderBarcode>(CLSID_clsKELReaderBarcode));
    EXPECT_TRUE(create<_clsKELReaderBarcodes>(CLSID_clsKELReaderBarcodes));
    EXPECT_TRUE(create<_clsKELReaderWindow>(CLSID_clsKELReaderWindow));
    EXPECT_TRUE(create<_clsKELReaderWindows>(CLSID_clsKELReaderWindows));
    EXPECT_TRUE(create<_clsKELReaderPrinter>(CLSID_clsKELReaderPrinter));
    EXPECT_TRUE(create<_clsKELReaderProfile>(CLSID_clsKELReaderProfile));
    EXPECT_TRUE(create<_clsKELReaderProfiles>(CLSID_clsKELReaderProfiles));

    using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    Ptr<IClassFactory> factory;
    EXPECT_EQ(serverExport<GetClassObject>("DllGetClassObject")(IID_IUnknown, IID_IClassFactory, factory.outVoid()),
              CLASS_E_CLASSNOTAVAILABLE);
    ASSERT_EQ(
        serverExport<GetClassObject>("DllGetClassObject")(CLSID_clsKELReader, IID_IClassFactory, factory.outVoid()),
        S_OK);
    Ptr<IUnknown> object;
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, object.outVoid()), CLASS_E_NOAGGREGATION);
}

TEST_F(Surface, PropertiesByVtable)
{
    const auto reader = newReader();
    VARIANT_BOOL cancelScan = VARIANT_FALSE;
    EXPECT_EQ(reader->get_CancelScan(&cancelScan), S_OK);
    EXPECT_EQ(cancelScan, VARIANT_TRUE);
    EXPECT_EQ(reader->put_CancelScan(2), S_OK);
    EXPECT_EQ(reader->get_CancelScan(&cancelScan), S_OK);
    EXPECT_EQ(cancelScan, 2); // as it was set

    short port = -1;
    EXPECT_EQ(reader->put_Port(99), S_OK);
    EXPECT_EQ(reader->get_Port(&port), S_OK);
    EXPECT_EQ(port, 99);
    EXPECT_EQ(reader->get_Port(nullptr), E_POINTER);

    float stopBits = 0;
    EXPECT_EQ(reader->put_StopBits(1.5F), S_OK);
    EXPECT_EQ(reader->get_StopBits(&stopBits), S_OK);
    EXPECT_EQ(stopBits, 1.5F);

    EXPECT_EQ(reader->put_BaudRate(static_cast<kelReaderBaudRate>(4800)), S_OK);
    kelReaderBaudRate baudRate{};
    EXPECT_EQ(reader->get_BaudRate(&baudRate), S_OK);
    EXPECT_EQ(baudRate, 4800);
}

TEST_F(Surface, PropertiesByName)
{
    const auto reader = newReader();
    put(reader.get(), L"ReaderType", Value(24));
    EXPECT_EQ(get(reader.get(), L"readerTYPE").number(), 24);
    EXPECT_EQ(get(reader.get(), L"ReaderName").text(), L"Peripheral Dynamics Inc. VMR138");
    EXPECT_EQ(get(reader.get(), L"Parity").text(), L"N");
    put(reader.get(), L"Parity", Value(L"E"));
    EXPECT_EQ(get(reader.get(), L"Parity").text(), L"E");
    put(reader.get(), L"HelpFile", Value(L"C:\\H\u00e4lp.chm"));
    EXPECT_EQ(get(reader.get(), L"HelpFile").text(), L"C:\\H\u00e4lp.chm");
    put(reader.get(), L"HelpFile", Value(L""));
    put(reader.get(), L"Timeout", Value(L"77")); // a host's own type
    EXPECT_EQ(get(reader.get(), L"Timeout").type(), VT_I4);
    EXPECT_EQ(get(reader.get(), L"Timeout").number(), 77);
    EXPECT_EQ(call(reader.get(), L"Port", DISPATCH_PROPERTYPUT, {Value(70000)}).code, DISP_E_OVERFLOW);
    EXPECT_EQ(call(reader.get(), L"Port", DISPATCH_PROPERTYPUT, {Value(L"seven")}).code, DISP_E_TYPEMISMATCH);
    EXPECT_TRUE(get(reader.get(), L"LoadDefaults", {Value(13)}).truth());
    EXPECT_EQ(get(reader.get(), L"ReaderType").number(), 13);
}

TEST_F(Surface, PrintLinesHoldAByteACharacter)
{
    const auto reader = newReader();
    const Value printer = get(reader.get(), L"Printer");
    put(printer.object(), L"Buffer1", Value(L"na\u00efve \u20ac"));
    EXPECT_EQ(get(printer.object(), L"Buffer1").text(), L"na\u00efve \u20ac");
    put(printer.object(), L"Buffer1", Value(L"\u4e2d"));
    EXPECT_EQ(get(printer.object(), L"Buffer1").text(), L"?");
}

TEST_F(Surface, AFailureHasItsNumberAndItsText)
{
    BoxReader boxes; // the component tells of it too, before it goes on to the host
    const auto reader = newReader();
    LONG value = 0;
    EXPECT_EQ(reader->get_HelpID(static_cast<kelReaderHelpID>(1), &value), static_cast<HRESULT>(0x800A0009));
    Ptr<IErrorInfo> information;
    ASSERT_EQ(GetErrorInfo(0, information.out()), S_OK);
    BSTR description = nullptr;
    information->GetDescription(&description);
    EXPECT_STREQ(description, L"Subscript out of range");
    SysFreeString(description);
    IID iid{};
    information->GetGUID(&iid);
    EXPECT_TRUE(IsEqualIID(iid, IID__clsKELReader));

    Ptr<ISupportErrorInfo> supports;
    ASSERT_EQ(reader->QueryInterface(IID_ISupportErrorInfo, supports.outVoid()), S_OK);
    EXPECT_EQ(supports->InterfaceSupportsErrorInfo(IID__clsKELReader), S_OK);
    EXPECT_EQ(supports->InterfaceSupportsErrorInfo(IID_IErrorInfo), S_FALSE);

    const Outcome outcome = call(reader.get(), L"HelpID", DISPATCH_PROPERTYGET, {Value(1)});
    EXPECT_EQ(outcome.code, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.failure, static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(outcome.description, L"Subscript out of range");

    EXPECT_EQ(call(reader.get(), L"HelpID", DISPATCH_PROPERTYPUT, {Value(0), Value(1234)}).code, S_OK);
    EXPECT_EQ(get(reader.get(), L"HelpID", {Value(0)}).number(), 1234);
}

TEST_F(Surface, TheSameObjectIsTheSameReference)
{
    const auto reader = newReader();
    for (const wchar_t* name : {L"Barcodes", L"Windows", L"Profiles", L"Printer", L"fComm"})
        EXPECT_EQ(get(reader.get(), name).object(), get(reader.get(), name).object()) << name;
    const Value once = get(reader.get(), L"Printer");
    EXPECT_EQ(get(reader.get(), L"Printer").object(), once.object());

    const Value profiles = get(reader.get(), L"Profiles");
    const Value byKey = get(profiles.object(), L"Item", {Value(L"40")});
    EXPECT_EQ(get(profiles.object(), L"Item", {Value(2)}).object(), byKey.object());

    const auto other = newReader();
    put(other.get(), L"Printer", once);
    EXPECT_EQ(get(other.get(), L"Printer").object(), once.object());
    put(other.get(), L"Printer", Value(static_cast<IDispatch*>(nullptr)));
    EXPECT_EQ(get(other.get(), L"Printer").object(), nullptr);
}

TEST_F(Surface, AnObjectOfAnotherKindIsRefused)
{
    const auto reader = newReader();
    const Value windows = get(reader.get(), L"Windows");
    HostObject foreign;
    for (const Value& wrong : {windows, Value(&foreign)}) {
        Ptr<_clsKELReaderPrinter> pretended;
        wrong.object()->QueryInterface(IID_IDispatch, pretended.outVoid());
        EXPECT_EQ(reader->putref_Printer(pretended.get()), static_cast<HRESULT>(0x800A000D));
    }
}

TEST_F(Surface, ModelsByKeyAndByPosition)
{
    const auto reader = newReader();
    const Value profiles = get(reader.get(), L"Profiles");
    const auto name = [&](const Value& index) {
        return get(get(profiles.object(), L"Item", {index}).object(), L"ReaderName").text();
    };
    EXPECT_EQ(get(profiles.object(), L"Count").number(), kel::kReaderTypeCount);
    EXPECT_EQ(name(Value(L"40")), L"Apperson Advantage 1200");
    EXPECT_EQ(name(Value(2)), L"Apperson Advantage 1200");
    EXPECT_EQ(name(Value(short{2})), L"Apperson Advantage 1200");
    EXPECT_EQ(name(Value(2.5)), L"Apperson Advantage 1200"); // halves go to the even neighbour
    EXPECT_EQ(get(profiles.object(), L"Item", {Value(L"99")}).object(), nullptr);
    EXPECT_EQ(get(profiles.object(), L"Item", {Value(43)}).object(), nullptr);
    EXPECT_TRUE(get(profiles.object(), L"Exists", {Value(L"0")}).truth());
    EXPECT_FALSE(get(profiles.object(), L"Exists", {Value(0)}).truth());
    EXPECT_FALSE(get(profiles.object(), L"Exists", {Value(L" 0")}).truth());
    EXPECT_FALSE(get(profiles.object(), L"Exists", {profiles}).truth());

    // What a script passes: a variant that refers to a variant.
    Value index(L"24");
    Value reference;
    reference.get().vt = VT_BYREF | VT_VARIANT;
    reference.get().pvarVal = &index.get();
    EXPECT_EQ(name(reference), L"Peripheral Dynamics Inc. VMR138");
    reference.get().vt = VT_EMPTY;

    // The default member.
    VARIANT key = Value(L"13").get();
    key.bstrVal = SysAllocString(L"13");
    DISPPARAMS parameters{&key, nullptr, 1, 0};
    Value found;
    EXPECT_EQ(profiles.object()->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_PROPERTYGET, &parameters, found.out(),
                                        nullptr, nullptr),
              S_OK);
    SysFreeString(key.bstrVal);
    EXPECT_EQ(get(found.object(), L"ReaderType").number(), 13);

    put(profiles.object(), L"ProfileType", Value(1));
    EXPECT_EQ(get(profiles.object(), L"Count").number(), 5);
}

TEST_F(Surface, WindowsAreAddedAndWalkedThrough)
{
    const auto reader = newReader();
    const Value windows = get(reader.get(), L"Windows");
    const auto window = [](int row) {
        const auto made = create<_clsKELReaderWindow>(CLSID_clsKELReaderWindow);
        made->put_StartRow(static_cast<short>(row));
        return Value(static_cast<IDispatch*>(made.get()));
    };
    get(windows.object(), L"Add", {window(1)});
    get(windows.object(), L"Add", {window(3)});
    get(windows.object(), L"Add", {window(2), Value(2)}); // before the second
    EXPECT_EQ(get(windows.object(), L"Count").number(), 3);
    EXPECT_TRUE(get(windows.object(), L"Exists", {Value(3)}).truth());
    EXPECT_FALSE(get(windows.object(), L"Exists", {Value(4)}).truth());
    EXPECT_FALSE(get(windows.object(), L"Exists", {Value(L"1")}).truth()); // there are no keys
    EXPECT_EQ(get(windows.object(), L"Item", {Value(0)}).object(), nullptr);

    const Value enumerator = get(windows.object(), L"_NewEnum");
    ASSERT_EQ(enumerator.type(), VT_UNKNOWN);
    Ptr<IEnumVARIANT> walk;
    ASSERT_EQ(enumerator.get().punkVal->QueryInterface(IID_IEnumVARIANT, walk.outVoid()), S_OK);
    int expected = 1;
    Value item;
    ULONG fetched = 0;
    while (walk->Next(1, item.out(), &fetched) == S_OK)
        EXPECT_EQ(get(item.object(), L"StartRow").number(), expected++);
    EXPECT_EQ(expected, 4);
    EXPECT_EQ(walk->Reset(), S_OK);
    EXPECT_EQ(walk->Skip(2), S_OK);
    Ptr<IEnumVARIANT> copy;
    EXPECT_EQ(walk->Clone(copy.out()), S_OK);
    EXPECT_EQ(copy->Next(1, item.out(), nullptr), S_OK);
    EXPECT_EQ(get(item.object(), L"StartRow").number(), 3);
    EXPECT_EQ(copy->Skip(1), S_FALSE);

    get(windows.object(), L"RemoveAll");
    EXPECT_EQ(get(windows.object(), L"Count").number(), 0);
}

TEST_F(Surface, BarcodeZonesKeepTheirValues)
{
    const auto reader = newReader();
    const auto zone = create<_clsKELReaderBarcode>(CLSID_clsKELReaderBarcode);
    EXPECT_EQ(zone->put_Symbology(kelBarcodeTypeCode128), S_OK);
    EXPECT_EQ(zone->put_Orientation(kelBarcodeOrientationHorizontal), S_OK);
    const Value zones = get(reader.get(), L"Barcodes");
    get(zones.object(), L"Add", {Value(static_cast<IDispatch*>(zone.get()))});
    const Value found = get(zones.object(), L"Item", {Value(1)});
    EXPECT_EQ(found.object(), static_cast<IDispatch*>(zone.get()));
    EXPECT_EQ(get(found.object(), L"Symbology").number(), 16);
    EXPECT_EQ(get(found.object(), L"Orientation").number(), 2);
}

TEST_F(Surface, TheClassTellsItsTypesAndItsEvents)
{
    const auto reader = newReader();
    Ptr<IProvideClassInfo2> provides;
    ASSERT_EQ(reader->QueryInterface(IID_IProvideClassInfo2, provides.outVoid()), S_OK);
    GUID events{};
    EXPECT_EQ(provides->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events), S_OK);
    EXPECT_TRUE(IsEqualGUID(events, DIID___clsKELReader));
    Ptr<ITypeInfo> type;
    ASSERT_EQ(provides->GetClassInfo(type.out()), S_OK);
    TYPEATTR* attributes = nullptr;
    type->GetTypeAttr(&attributes);
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, CLSID_clsKELReader));
    type->ReleaseTypeAttr(attributes);
}

TEST_F(Surface, TheOwnCarrierIsReachedByName)
{
    const auto reader = newReader();
    const Value carrier = get(reader.get(), L"fComm");
    const Value control = get(carrier.object(), L"mscComm");
    EXPECT_EQ(get(carrier.object(), L"MSCCOMM").object(), control.object());
    put(control.object(), L"Settings", Value(L"19200,E,7,2"));
    EXPECT_EQ(get(control.object(), L"Settings").text(), L"19200,E,7,2");
    EXPECT_FALSE(get(control.object(), L"PortOpen").truth());
    const Outcome closed = call(control.object(), L"Input", DISPATCH_PROPERTYGET);
    EXPECT_EQ(closed.code, DISP_E_EXCEPTION);
    EXPECT_EQ(closed.failure, static_cast<HRESULT>(0x800A0000 | 8018));
    const Value timer = get(carrier.object(), L"tmrScan");
    EXPECT_EQ(get(timer.object(), L"Interval").number(), 10000);
    EXPECT_FALSE(get(timer.object(), L"Enabled").truth());
    EXPECT_EQ(call(carrier.object(), L"Caption", DISPATCH_PROPERTYGET).code, DISP_E_UNKNOWNNAME);

    // Another reader may use it, and takes it for what it is.
    const auto other = newReader();
    put(other.get(), L"fComm", carrier);
    EXPECT_EQ(get(other.get(), L"fComm").object(), carrier.object());
}

} // namespace
