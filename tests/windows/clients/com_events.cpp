// SPDX-License-Identifier: MIT
// Sheets and events as a host gets them, from a simulated OMR2000 behind the port of the argument; and the host's own
// objects in the place of the carrier and of the error object.

#include "tests/windows/clients/ErrorLog.h"
#include "tests/windows/clients/OwnCarrier.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

constexpr DISPID kBeforeSheet = 1;
constexpr DISPID kReadSheet = 2;
constexpr DISPID kAfterSheet = 3;

/// How long a reader may take to reply on a busy machine, in seconds.
constexpr int kPatience = 300;

int portUnderTest = 0;

/// A reader of the model at the port, started.
Ptr<_clsKELReader> started()
{
    auto reader = newReader();
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(reader->LoadDefaults(kelReaderTypeChatsworthOMR2000, &result), S_OK);
    reader->put_Port(static_cast<short>(portUnderTest));
    reader->put_Timeout(kPatience);
    EXPECT_EQ(reader->StartReader(&result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    return reader;
}

bool readPage(_clsKELReader* reader)
{
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(reader->ReadPage(VARIANT_FALSE, &result), S_OK);
    return result != VARIANT_FALSE;
}

void end(_clsKELReader* reader)
{
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(reader->EndReader(&result), S_OK);
}

/// What an event's array holds at (row, column).
short& cell(const Call& event, UINT argument, LONG row, LONG column)
{
    EXPECT_EQ(event.argument(argument).vt, VT_BYREF | VT_ARRAY | VT_I2);
    std::array<LONG, 2> place{row, column};
    void* at = nullptr;
    EXPECT_EQ(SafeArrayPtrOfIndex(*event.argument(argument).pparray, place.data(), &at), S_OK);
    return *static_cast<short*>(at);
}

/// No reader reports anything, unless a test has an error object of its own.
class Events : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        reader_ = newReader();
        registered_ = std::make_unique<Registered>(reader_.get(), &log_.object);
    }
    void TearDown() override
    {
        EXPECT_EQ(std::string(log_.reports.begin(), log_.reports.end()), "")
            << std::string(log_.texts.begin(), log_.texts.end());
        registered_.reset();
        reader_ = Ptr<_clsKELReader>();
        HostTest::TearDown();
    }

private:
    Ptr<_clsKELReader> reader_;
    ErrorLog log_;
    std::unique_ptr<Registered> registered_;
};

TEST_F(Events, ComeInTheirOrderWithTheirArguments)
{
    const auto reader = started();
    std::wstring order;
    HostObject sink;
    sink.event(kBeforeSheet, [&](const Call& event) {
        order += L'B';
        EXPECT_EQ(event.argument(0).vt, VT_BYREF | VT_BOOL);
        EXPECT_EQ(*event.argument(0).pboolVal, VARIANT_FALSE);
        return S_OK;
    });
    sink.event(kReadSheet, [&](const Call& event) {
        order += L'R';
        EXPECT_EQ(event.count(), 4U);
        const SAFEARRAY* const side1 = *event.argument(0).pparray;
        EXPECT_EQ(SafeArrayGetDim(const_cast<SAFEARRAY*>(side1)), 2U);
        LONG lower = 0;
        SafeArrayGetLBound(const_cast<SAFEARRAY*>(side1), 1, &lower);
        EXPECT_EQ(lower, 1);
        EXPECT_EQ(*event.argument(1).pparray, nullptr); // never read
        const SAFEARRAY* const barcodes = *event.argument(2).pparray;
        LONG upper = -1;
        SafeArrayGetUBound(const_cast<SAFEARRAY*>(barcodes), 1, &upper);
        EXPECT_EQ(upper, 0); // one empty text
        EXPECT_EQ(*event.argument(3).pboolVal, VARIANT_FALSE);
        return S_OK;
    });
    sink.event(kAfterSheet, [&](const Call&) {
        order += L'A';
        return S_OK;
    });
    const Connection connection(reader.get(), &sink);
    EXPECT_TRUE(readPage(reader.get()));
    EXPECT_TRUE(readPage(reader.get()));
    end(reader.get());
    EXPECT_EQ(order, L"BRABRA");
}

TEST_F(Events, WhatTheHostChangesIsKept)
{
    const auto reader = started();
    HostObject first;
    first.event(kReadSheet, [&](const Call& event) {
        cell(event, 0, 2, 5) = 4321;
        // Other barcodes in the place of the old ones.
        SafeArrayDestroy(*event.argument(2).pparray);
        *event.argument(2).pparray = SafeArrayCreateVector(VT_BSTR, 1, 2);
        LONG index = 2;
        BSTR text = SysAllocString(L"0815");
        SafeArrayPutElement(*event.argument(2).pparray, &index, text);
        SysFreeString(text);
        // A second side where there was none.
        std::array<SAFEARRAYBOUND, 2> bounds{SAFEARRAYBOUND{3, 1}, SAFEARRAYBOUND{4, 1}};
        *event.argument(1).pparray = SafeArrayCreate(VT_I2, 2, bounds.data());
        cell(event, 1, 3, 4) = 7;
        return S_OK;
    });
    bool seen = false;
    HostObject second;
    second.event(kReadSheet, [&](const Call& event) {
        seen = cell(event, 0, 2, 5) == 4321 && cell(event, 1, 3, 4) == 7;
        LONG index = 2;
        BSTR text = nullptr;
        SafeArrayGetElement(*event.argument(2).pparray, &index, &text);
        EXPECT_STREQ(text, L"0815");
        SysFreeString(text);
        return S_OK;
    });
    second.event(kAfterSheet, [](const Call& event) {
        *event.argument(0).pboolVal = VARIANT_TRUE;
        return S_OK;
    });
    const Connection one(reader.get(), &first);
    const Connection two(reader.get(), &second);
    EXPECT_TRUE(readPage(reader.get()));
    EXPECT_TRUE(seen);

    SAFEARRAY* marks = nullptr;
    EXPECT_EQ(reader->get_Side1Array(&marks), S_OK);
    std::array<LONG, 2> place{2, 5};
    short mark = 0;
    EXPECT_EQ(SafeArrayGetElement(marks, place.data(), &mark), S_OK);
    EXPECT_EQ(mark, 4321);
    SafeArrayDestroy(marks);
    EXPECT_EQ(reader->get_Side2Array(&marks), S_OK);
    LONG rows = 0;
    EXPECT_EQ(SafeArrayGetUBound(marks, 1, &rows), S_OK);
    EXPECT_EQ(rows, 3);
    SafeArrayDestroy(marks);
    VARIANT_BOOL cancelScan = VARIANT_FALSE;
    reader->get_CancelScan(&cancelScan);
    EXPECT_EQ(cancelScan, VARIANT_TRUE);
    end(reader.get());
}

/// The mark that an array holds at a row and column.
short markOf(SAFEARRAY* marks, LONG row, LONG column)
{
    std::array<LONG, 2> place{row, column};
    short mark = -1;
    EXPECT_EQ(SafeArrayGetElement(marks, place.data(), &mark), S_OK);
    return mark;
}

TEST_F(Events, TheArraysOfAnEventAreTheReadersOwn)
{
    const auto reader = started();
    // By vtable, as a copy: the array that the reader gives is the caller's.
    const auto markOfReader = [&](LONG row, LONG column) {
        SAFEARRAY* marks = nullptr;
        EXPECT_EQ(reader->get_Side1Array(&marks), S_OK);
        const short mark = markOf(marks, row, column);
        SafeArrayDestroy(marks);
        return mark;
    };
    int sheets = 0;
    HostObject first;
    first.event(kReadSheet, [&](const Call& event) {
        EXPECT_EQ(markOfReader(2, 5), cell(event, 0, 2, 5));
        cell(event, 0, 2, 5) = 4321;
        EXPECT_EQ(markOfReader(2, 5), 4321);
        EXPECT_EQ(get(reader.get(), L"Side2Array").get().parray, nullptr);
        // In the place of a side that was not read.
        std::array<SAFEARRAYBOUND, 2> bounds{SAFEARRAYBOUND{3, 1}, SAFEARRAYBOUND{4, 1}};
        *event.argument(1).pparray = SafeArrayCreate(VT_I2, 2, bounds.data());
        cell(event, 1, 3, 4) = 7;
        EXPECT_EQ(markOf(get(reader.get(), L"Side2Array").get().parray, 3, 4), 7);
        return S_OK;
    });
    HostObject second;
    second.event(kReadSheet, [&](const Call& event) {
        EXPECT_EQ(markOfReader(2, 5), 4321);
        EXPECT_EQ(cell(event, 0, 2, 5), 4321);
        cell(event, 0, 2, 5) = 1234;
        ++sheets;
        return S_OK;
    });
    {
        const Connection one(reader.get(), &first);
        const Connection two(reader.get(), &second);
        EXPECT_TRUE(readPage(reader.get()));
    }
    EXPECT_EQ(sheets, 1);
    EXPECT_EQ(markOfReader(2, 5), 1234);
    // With no sink there, the next sheet is what the reader read.
    EXPECT_TRUE(readPage(reader.get()));
    EXPECT_NE(markOfReader(2, 5), 1234);
    end(reader.get());
}

TEST_F(Events, ASinkThatFailsStopsNobody)
{
    const auto reader = started();
    int heard = 0;
    HostObject failing;
    failing.event(kBeforeSheet, [](const Call& event) { return event.fail(E_FAIL, L"out of order"); });
    failing.event(kReadSheet, [](const Call&) { return DISP_E_TYPEMISMATCH; });
    HostObject listening;
    listening.event(kBeforeSheet, [&](const Call&) { return ++heard, S_OK; });
    listening.event(kReadSheet, [&](const Call&) { return ++heard, S_OK; });
    const Connection one(reader.get(), &failing);
    const Connection two(reader.get(), &listening);
    EXPECT_TRUE(readPage(reader.get()));
    EXPECT_EQ(heard, 2);
    end(reader.get());
}

TEST_F(Events, ASinkMayLeaveWhileItIsCalled)
{
    const auto reader = started();
    int heardByLeaving = 0;
    int heardByOther = 0;
    std::unique_ptr<Connection> leavingConnection;
    std::unique_ptr<Connection> otherConnection;
    HostObject leaving;
    HostObject other;
    leaving.event(kBeforeSheet, [&](const Call&) {
        ++heardByLeaving;
        leavingConnection->end();
        otherConnection->end(); // and takes another one with it, which then hears nothing
        return S_OK;
    });
    other.event(kBeforeSheet, [&](const Call&) { return ++heardByOther, S_OK; });
    leavingConnection = std::make_unique<Connection>(reader.get(), &leaving);
    otherConnection = std::make_unique<Connection>(reader.get(), &other);
    EXPECT_TRUE(readPage(reader.get()));
    EXPECT_TRUE(readPage(reader.get()));
    EXPECT_EQ(heardByLeaving, 1);
    EXPECT_EQ(heardByOther, 0);
    end(reader.get());
}

TEST_F(Events, TheHostMayLetGoOfTheReaderWhileItReads)
{
    auto begun = started();
    _clsKELReader* const reader = begun.get();
    reader->AddRef();
    begun = Ptr<_clsKELReader>();
    HostObject sink;
    Ptr<IConnectionPoint> point;
    DWORD cookie = 0;
    {
        Ptr<IConnectionPointContainer> container;
        reader->QueryInterface(IID_IConnectionPointContainer, container.outVoid());
        container->FindConnectionPoint(DIID___clsKELReader, point.out());
        point->Advise(&sink, &cookie);
    }
    sink.event(kAfterSheet, [&](const Call&) {
        point->Unadvise(cookie);
        point = Ptr<IConnectionPoint>();
        VARIANT_BOOL result = VARIANT_FALSE;
        reader->EndReader(&result);
        reader->Release();
        return S_OK;
    });
    EXPECT_TRUE(readPage(reader));
}

TEST_F(Events, AConnectionPointTellsWhatItIs)
{
    const auto reader = newReader();
    Ptr<IConnectionPointContainer> container;
    ASSERT_EQ(reader->QueryInterface(IID_IConnectionPointContainer, container.outVoid()), S_OK);
    Ptr<IConnectionPoint> point;
    EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, point.out()), CONNECT_E_NOCONNECTION);
    Ptr<IEnumConnectionPoints> points;
    ASSERT_EQ(container->EnumConnectionPoints(points.out()), S_OK);
    ASSERT_EQ(points->Next(1, point.out(), nullptr), S_OK);
    IID iid{};
    EXPECT_EQ(point->GetConnectionInterface(&iid), S_OK);
    EXPECT_TRUE(IsEqualIID(iid, DIID___clsKELReader));
    Ptr<IConnectionPointContainer> back;
    EXPECT_EQ(point->GetConnectionPointContainer(back.out()), S_OK);
    EXPECT_EQ(back.get(), container.get());

    HostObject sink;
    DWORD cookie = 0;
    EXPECT_EQ(point->Advise(&sink, &cookie), S_OK);
    Ptr<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(connections.out()), S_OK);
    CONNECTDATA connection{};
    ASSERT_EQ(connections->Next(1, &connection, nullptr), S_OK);
    EXPECT_EQ(connection.dwCookie, cookie);
    connection.pUnk->Release();
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
}

TEST_F(Events, AHostsObjectTakesThePlaceOfTheCarrier)
{
    const auto reader = newReader();
    const Value own = get(reader.get(), L"fComm");
    OwnCarrier carrier(own.object());
    put(reader.get(), L"fComm", Value(&carrier.object()));
    EXPECT_EQ(get(reader.get(), L"fComm").object(), &carrier.object());

    get(reader.get(), L"LoadDefaults", {Value(21)});
    put(reader.get(), L"Port", Value(portUnderTest));
    put(reader.get(), L"Timeout", Value(kPatience));
    EXPECT_TRUE(get(reader.get(), L"StartReader").truth());
    EXPECT_EQ(carrier.settings, L"9600,E,7,1");
    EXPECT_TRUE(get(reader.get(), L"ReadPage", {Value(false)}).truth());
    get(reader.get(), L"EndReader");
    EXPECT_EQ(carrier.accesses()[L"Output"], 2);
    EXPECT_GT(carrier.accesses()[L"Input"], 10);
    EXPECT_GT(carrier.accesses()[L"InBufferCount"], 10);
    EXPECT_EQ(carrier.accesses()[L"Interval"], 1);

    EXPECT_EQ(get(reader.get(), L"Side1Array").type(), VT_ARRAY | VT_I2);
    put(reader.get(), L"fComm", own);
    EXPECT_EQ(get(reader.get(), L"fComm").object(), own.object());
}

TEST_F(Events, ReportsGoToTheErrorObject)
{
    const auto reader = newReader();
    ErrorLog log;
    const Registered registered(reader.get(), &log.object);
    get(reader.get(), L"LoadDefaults", {Value(24)});
    put(reader.get(), L"Port", Value(17));
    EXPECT_FALSE(get(reader.get(), L"StartReader").truth());
    EXPECT_EQ(log.reports, L"8002/1 basRead.ReaderInit\n");
    log.reports.clear();

    // An index of a collection that is none is reported where it is used.
    const Value windows = get(reader.get(), L"Windows");
    get(windows.object(), L"Remove", {Value(1)});
    get(windows.object(), L"Remove", {Value(L"one")});
    EXPECT_EQ(log.reports.substr(0, 2), L"9/");
    EXPECT_NE(log.reports.find(L"\n5/0 clsKELReaderWindows.Remove"), std::wstring::npos);
}

TEST_F(Events, AnErrorObjectThatFailsGivesOneBox)
{
    const auto reader = newReader();
    ErrorLog log;
    log.fails = true;
    const Registered registered(reader.get(), &log.object);
    get(reader.get(), L"LoadDefaults", {Value(24)});
    put(reader.get(), L"Port", Value(0));
    BoxReader boxes;
    EXPECT_FALSE(get(reader.get(), L"StartReader").truth());
    const std::wstring said = boxes.texts();
    EXPECT_NE(said.find(L"(#1001) no paper"), std::wstring::npos) << std::string(said.begin(), said.end());
    EXPECT_NE(said.find(L"8002"), std::wstring::npos);
    EXPECT_EQ(std::count(said.begin(), said.end(), L'#'), 1);
}

TEST_F(Events, AnErrorObjectWithoutItsMembersIsAFailureToo)
{
    const auto reader = newReader();
    HostObject empty;
    const Registered registered(reader.get(), &empty);
    BoxReader boxes;
    get(reader.get(), L"LoadDefaults", {Value(99)});
    const std::wstring said = boxes.texts();
    EXPECT_NE(said.find(L"(#438) Object doesn't support this property or method"), std::wstring::npos)
        << std::string(said.begin(), said.end());
}

TEST_F(Events, ReportsOfAnotherApartmentReachTheErrorObject)
{
    const auto reader = newReader();
    ErrorLog log;
    const Registered registered(reader.get(), &log.object);
    bool done = false;
    std::thread other([&] {
        CoInitialize(nullptr);
        {
            const auto readerThere = newReader();
            get(readerThere.get(), L"LoadDefaults", {Value(99)});
        }
        CoUninitialize();
        done = true;
        PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
    });
    const DWORD begun = GetTickCount();
    while (!done && GetTickCount() - begun < 5000) {
        MSG message;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    }
    other.join();
    EXPECT_NE(log.reports.find(L"clsKELReader.LoadDefaults"), std::wstring::npos);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    portUnderTest = argc > 1 ? std::atoi(argv[1]) : 3;
    return RUN_ALL_TESTS();
}
