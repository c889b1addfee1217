// SPDX-License-Identifier: MIT
// What the traps of a procedure cost while nothing fails: a call with and without them, with the variables stated and
// without, and in a procedure of an object, where the host comes in.

#include "failure/guarded.h"
#include "types/Numbers.h"

#include <benchmark/benchmark.h>

namespace kel {
namespace {

[[gnu::noinline]] Int32 withoutTraps(Int32 lValue)
{
    Int32 lResult = 0;
    lResult = checkedAdd(lValue, 1);
    benchmark::DoNotOptimize(lResult);
    return lResult;
}

[[gnu::noinline]] Int32 withTraps(Int32 lValue)
{
    Int32 lResult = 0;
    guarded("KELReader81 - basRead.ReaderRead", [&] { lResult = checkedAdd(lValue, 1); });
    benchmark::DoNotOptimize(lResult);
    return lResult;
}

template <Int32 (*call)(Int32)>
void Guarded_Call(benchmark::State& state)
{
    Int32 lValue = 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(lValue = call(lValue & 0xFF));
}
BENCHMARK(Guarded_Call<withoutTraps>)->Name("Guarded_NoTrap");
BENCHMARK(Guarded_Call<withTraps>)->Name("Guarded_Call");

struct Object {
    [[nodiscard]] std::string dumpMembers() const { return "lValue = " + std::to_string(lValue); }
    Int32 lValue = 0;
};

[[gnu::noinline]] Int32 procedureOfAnObject(Int32 lValue)
{
    static Object object;
    Int32 lResult = 0;
    guarded("KELReader81 - clsKELReader.ReadPage", KEL_PARAMETERS(lValue) + moduleOf(object),
            [&] { lResult = checkedAdd(lValue, 1); });
    benchmark::DoNotOptimize(lResult);
    return lResult;
}

[[gnu::noinline]] Int32 variablesWithoutTraps(Int32 lValue, const std::string& sText)
{
    Int32 lResult = 0;
    Int16 iLocal = 0;
    MarkArray iSide1Arr;
    benchmark::DoNotOptimize(&sText);
    benchmark::DoNotOptimize(&iLocal);
    benchmark::DoNotOptimize(&iSide1Arr);
    lResult = checkedAdd(lValue, 1);
    benchmark::DoNotOptimize(lResult);
    return lResult;
}

[[gnu::noinline]] Int32 withVariables(Int32 lValue, const std::string& sText)
{
    Int32 lResult = 0;
    Int16 iLocal = 0;
    MarkArray iSide1Arr;
    guarded("KELReader81 - basRead.ReaderRead", KEL_PARAMETERS(lValue, sText) + KEL_LOCALS(iLocal, iSide1Arr),
            [&] { lResult = checkedAdd(lValue, 1); });
    benchmark::DoNotOptimize(lResult);
    return lResult;
}

[[gnu::noinline]] Int32 withTheSecondTrap(Int32 lValue)
{
    return captured("basRead.ReaderRead", [&] { return checkedAdd(lValue, 1); });
}

template <Int32 (*call)(Int32, const std::string&)>
void Guarded_TextCall(benchmark::State& state)
{
    const std::string sText = "text";
    Int32 lValue = 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(lValue = call(lValue & 0xFF, sText));
}
BENCHMARK(Guarded_TextCall<variablesWithoutTraps>)->Name("Guarded_NoTrapWithVariables");
BENCHMARK(Guarded_TextCall<withVariables>)->Name("Guarded_CallWithVariables");
BENCHMARK(Guarded_Call<procedureOfAnObject>)->Name("Guarded_CallOfAnObject");
BENCHMARK(Guarded_Call<withTheSecondTrap>)->Name("Guarded_Captured");

} // namespace
} // namespace kel
