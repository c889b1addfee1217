// SPDX-License-Identifier: MIT
// What the COM server costs a host in C++: a line for each figure, its name and nanoseconds.
// Usage: com_costs first     CreateObject, from the first statement of the program to the reader
//        com_costs nothing   no object: a program that ends at once, to compare with
//        com_costs calls     calls of a reader, and readers made and released

#include <windows.h>

#include <objbase.h>

// The identifiers of what follows are defined here, not only declared.
#include <initguid.h>

#include "KELReader81U.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <string_view>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWrongUsage = 2;
constexpr int kNoReader = 1;

double nanosecondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
}

void tell(const char* name, double nanoseconds)
{
    std::printf("%s %.0f\n", name, nanoseconds);
}

/// The best of some rounds: what else the machine did is in the others.
template <class Body>
double costOf(int times, Body&& body)
{
    double best = std::numeric_limits<double>::max();
    for (int round = 0; round < 5; ++round) {
        const auto begin = Clock::now();
        for (int time = 0; time < times; ++time)
            body();
        best = std::min(best, nanosecondsSince(begin) / times);
    }
    return best;
}

/// As a host does it that knows the component by its name.
_clsKELReader* createObject()
{
    CLSID classID{};
    void* reader = nullptr;
    if (FAILED(CLSIDFromProgID(L"KELReader81U.clsKELReader", &classID)) ||
        FAILED(CoCreateInstance(classID, nullptr, CLSCTX_INPROC_SERVER, IID__clsKELReader, &reader)))
        return nullptr;
    return static_cast<_clsKELReader*>(reader);
}

void measureCalls(_clsKELReader& reader)
{
    short port = 0;
    tell("PropertyByVtable", costOf(1'000'000, [&] { reader.get_Port(&port); }));

    auto* name = const_cast<LPOLESTR>(L"Port");
    DISPID id = 0;
    reader.GetIDsOfNames(IID_NULL, &name, 1, 0, &id);
    DISPPARAMS none{};
    VARIANT value{};
    const auto getPort = [&] { reader.Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr); };
    tell("PropertyByIDispatch", costOf(100'000, getPort));
    tell("PropertyByName", costOf(100'000, [&] {
             reader.GetIDsOfNames(IID_NULL, &name, 1, 0, &id);
             getPort();
         }));
}

void measureCreation()
{
    void* found = nullptr;
    if (FAILED(CoGetClassObject(CLSID_clsKELReader, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &found)))
        return;
    auto* const factory = static_cast<IClassFactory*>(found);
    tell("Creation", costOf(1000, [&] {
             void* reader = nullptr;
             if (SUCCEEDED(factory->CreateInstance(nullptr, IID__clsKELReader, &reader)))
                 static_cast<_clsKELReader*>(reader)->Release();
         }));
    factory->Release();
}

int measure(bool first)
{
    const auto begin = Clock::now();
    if (FAILED(CoInitialize(nullptr)))
        return kNoReader;
    _clsKELReader* const reader = createObject();
    if (!reader)
        return kNoReader;
    if (first) {
        tell("FirstCreation", nanosecondsSince(begin));
    } else {
        measureCalls(*reader);
        measureCreation();
    }
    reader->Release();
    CoUninitialize();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view what = argc == 2 ? argv[1] : "";
    if (what == "nothing")
        return 0;
    if (what != "first" && what != "calls")
        return kWrongUsage;
    return measure(what == "first");
}
