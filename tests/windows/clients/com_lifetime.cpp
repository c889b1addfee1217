// SPDX-License-Identifier: MIT
// Nothing is left behind: by objects, by sessions, by the server itself. The port of a simulated OMR2000 is the
// argument: one that starts without a wait, since Wine itself leaves 360 bytes behind with each wait for a port's
// input.

#include "tests/windows/clients/Host.h"

#include <psapi.h>

#include <cstdlib>

namespace {

int portUnderTest = 0;

class Lifetime : public HostTest {};

HRESULT canUnload()
{
    return serverExport<HRESULT(WINAPI*)()>("DllCanUnloadNow")();
}

struct Usage {
    DWORD handles = 0;
    SIZE_T heap = 0;
};

/// The bytes that are in use in all heaps of the process, and its handles.
Usage usage()
{
    Usage now;
    GetProcessHandleCount(GetCurrentProcess(), &now.handles);
    std::array<HANDLE, 64> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD index = 0; index < count; ++index) {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[index], &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
                now.heap += entry.cbData;
        }
    }
    return now;
}

/// Runs a body often, and looks at what is in use after a tenth as many times and at the end.
template <class Body>
void leaksNothing(int times, Body&& body)
{
    for (int time = 0; time < times / 10; ++time)
        body();
    const Usage before = usage();
    for (int time = 0; time < times; ++time)
        body();
    const Usage after = usage();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(static_cast<long long>(after.heap) - static_cast<long long>(before.heap), 0);
}

TEST_F(Lifetime, TenThousandReadersLeaveNothing)
{
    leaksNothing(10000, [] { newReader(); });
}

TEST_F(Lifetime, ObjectsOfAReaderLeaveNothing)
{
    const auto reader = newReader();
    HostObject sink;
    leaksNothing(500, [&] {
        const Connection connection(reader.get(), &sink);
        const Value profiles = get(reader.get(), L"Profiles");
        const Value enumerator = get(profiles.object(), L"_NewEnum");
        const Value carrier = get(reader.get(), L"fComm");
        const Value control = get(carrier.object(), L"mscComm");
        const Value windows = get(reader.get(), L"Windows");
        get(windows.object(), L"Add",
            {Value(static_cast<IDispatch*>(create<_clsKELReaderWindow>(CLSID_clsKELReaderWindow).get()))});
        get(windows.object(), L"RemoveAll");
        SAFEARRAY* rows = numbers({63, 63});
        reader->put_Side1Rows(&rows);
        SafeArrayDestroy(rows);
        put(get(reader.get(), L"Printer").object(), L"Buffer1", Value(L"a line of some length, to be printed"));
        put(reader.get(), L"AnswerKey", Value(&sink));
        put(reader.get(), L"AnswerKey", Value(static_cast<IDispatch*>(nullptr)));
        get(reader.get(), L"SetError", {Value(&sink)});
        get(reader.get(), L"SetError", {Value(static_cast<IDispatch*>(nullptr))});
    });
}

TEST_F(Lifetime, AHundredSessionsLeaveNothing)
{
    const auto reader = newReader();
    VARIANT_BOOL result = VARIANT_FALSE;
    reader->LoadDefaults(kelReaderTypeChatsworthOMR2000, &result);
    reader->put_Port(static_cast<short>(portUnderTest));
    reader->put_SleepTime(0);
    leaksNothing(100, [&] {
        ASSERT_EQ(reader->StartReader(&result), S_OK);
        ASSERT_EQ(result, VARIANT_TRUE);
        ASSERT_EQ(reader->EndReader(&result), S_OK);
    });
}

TEST_F(Lifetime, TheServerMayGoWhenEverythingIsReleased)
{
    {
        const auto reader = newReader();
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);

    Value printer;
    {
        const auto reader = newReader();
        printer = get(reader.get(), L"Printer");
    }
    EXPECT_EQ(canUnload(), S_FALSE); // the printer outlives its reader
    EXPECT_FALSE(get(printer.object(), L"Enabled").truth());
    printer = Value();
    EXPECT_EQ(canUnload(), S_OK);

    using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    {
        Ptr<IClassFactory> factory;
        serverExport<GetClassObject>("DllGetClassObject")(CLSID_clsKELReader, IID_IClassFactory, factory.outVoid());
        EXPECT_EQ(canUnload(), S_FALSE);
        factory->LockServer(TRUE);
    }
    EXPECT_EQ(canUnload(), S_FALSE);
    {
        Ptr<IClassFactory> factory;
        serverExport<GetClassObject>("DllGetClassObject")(CLSID_clsKELReader, IID_IClassFactory, factory.outVoid());
        factory->LockServer(FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);

    // The error object of a host that has gone is let go of.
    HostObject error;
    get(newReader().get(), L"SetError", {Value(&error)});
    EXPECT_GT(error.references, 1);
    EXPECT_EQ(canUnload(), S_OK);
    EXPECT_EQ(error.references, 1);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    portUnderTest = argc > 1 ? std::atoi(argv[1]) : 4;
    return RUN_ALL_TESTS();
}
