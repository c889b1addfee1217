// SPDX-License-Identifier: MIT
// A host that loads the server, works with it and lets it go, over and over: each time it is gone altogether, and what
// it had put into the process is gone with it. The argument is the port of a simulated OMR2000.

#include <windows.h>

#include <ocidl.h>
#include <oleauto.h>

// Defines the identifiers.
#include <initguid.h>

#include "KELReader81U.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

const wchar_t* const kServer = L"KELReader81U.dll";
int portUnderTest = 0;

/// What one thread does with the server.
void work()
{
    const HMODULE server = LoadLibraryW(kServer);
    ASSERT_NE(server, nullptr);
    const auto entry = [&](const char* name) { return reinterpret_cast<void*>(GetProcAddress(server, name)); };
    const auto getClassObject =
        reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(entry("DllGetClassObject"));
    const auto canUnloadNow = reinterpret_cast<HRESULT(WINAPI*)()>(entry("DllCanUnloadNow"));

    void* factory = nullptr;
    ASSERT_EQ(getClassObject(CLSID_clsKELReader, IID_IClassFactory, &factory), S_OK);
    void* object = nullptr;
    ASSERT_EQ(static_cast<IClassFactory*>(factory)->CreateInstance(nullptr, IID__clsKELReader, &object), S_OK);
    static_cast<IClassFactory*>(factory)->Release();
    auto* const reader = static_cast<_clsKELReader*>(object);
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(reader->LoadDefaults(kelReaderTypeChatsworthOMR2000, &result), S_OK);
    reader->put_Port(static_cast<short>(portUnderTest));
    reader->put_SleepTime(0);
    EXPECT_EQ(reader->StartReader(&result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_EQ(canUnloadNow(), S_FALSE);
    EXPECT_EQ(reader->EndReader(&result), S_OK);
    reader->Release();
    EXPECT_EQ(canUnloadNow(), S_OK);
    ASSERT_TRUE(FreeLibrary(server));
}

/// One thread that loads the server, works with it, and ends after the end of its apartment.
void workOnAThread()
{
    std::thread([] {
        CoInitialize(nullptr);
        work();
        CoUninitialize();
    }).join();
}

DWORD handles()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

bool faultHeard = false;

/// Goes on after the failing statement, a store of two bytes' length.
LONG CALLBACK onFault(EXCEPTION_POINTERS* fault)
{
    if (fault->ExceptionRecord->ExceptionCode != static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION))
        return EXCEPTION_CONTINUE_SEARCH;
    faultHeard = true;
#if defined(_WIN64)
    fault->ContextRecord->Rip += 2;
#else
    fault->ContextRecord->Eip += 2;
#endif
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(Reload, LeavesNothingButTheServer)
{
    for (int time = 0; time < 20; ++time)
        ASSERT_NO_FATAL_FAILURE(workOnAThread());
    const DWORD before = handles();
    for (int time = 0; time < 200; ++time)
        ASSERT_NO_FATAL_FAILURE(workOnAThread());
    EXPECT_EQ(handles(), before);
    EXPECT_NE(GetModuleHandleW(kServer), nullptr);
}

TEST(Reload, LeavesTheHostsFaultsToTheHost)
{
    ASSERT_NO_FATAL_FAILURE(workOnAThread());
    // After all others: the server's own handler is asked first.
    void* const handler = AddVectoredExceptionHandler(0, &onFault);
#if defined(_WIN64)
    asm volatile("xor %%eax, %%eax\n\tmovl %%eax, (%%rax)" ::: "rax", "memory");
#else
    asm volatile("xor %%eax, %%eax\n\tmovl %%eax, (%%eax)" ::: "eax", "memory");
#endif
    RemoveVectoredExceptionHandler(handler);
    EXPECT_TRUE(faultHeard);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    portUnderTest = argc > 1 ? std::atoi(argv[1]) : 3;
    return RUN_ALL_TESTS();
}
