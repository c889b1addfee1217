// SPDX-License-Identifier: MIT
#include "platform/posix/PosixOmrApiLoader.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/sekonic_usb/OmrApiSimulation.h"
#include "tests/simulators/ShortSession.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/LongRun.h"

#include <gtest/gtest.h>

#ifdef KEL_WATCHES_ADDRESSES
// The compiler brings the function, and not always its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

// A host starts and ends sessions all day. Nothing may be left of one: the leak checker looks at the end of the tests,
// and what the process holds does not grow.

namespace kel::test {
namespace {

constexpr std::size_t kCycles = 10'000;
constexpr std::size_t kSample = 60;
constexpr std::size_t kRound = 20;

std::size_t heldBytes()
{
#ifdef KEL_WATCHES_ADDRESSES
    return __sanitizer_get_current_allocated_bytes();
#else
    return 0;
#endif
}

/// Some cycles of one reader object on the platform that is in use; `closed` says whether its line is.
template <class Closed>
void startAndEnd(clsKELReader& reader, Closed&& closed)
{
    for (std::size_t cycle = 0; cycle < kRound; ++cycle) {
        ASSERT_TRUE(bool(reader.StartReader())) << cycle;
        static_cast<void>(reader.EndReader()); // False for a VMR138, whose close has no result
        ASSERT_TRUE(closed()) << cycle;
    }
    tally("start and end cycles", kRound);
}

/// Runs rounds of cycles until there were enough of them.
template <class Round>
void expectNothingLeft(Round&& round)
{
    const std::size_t rounds = sampled(kCycles, kSample) / kRound;
    round(); // fills what is kept for the process
    const std::size_t before = heldBytes();
    for (std::size_t number = 1; number < rounds && !testing::Test::HasFatalFailure(); ++number)
        round();
    // What the tests' own framework keeps. A cycle that kept one object would be beyond it long before the last.
    EXPECT_LE(heldBytes(), before + 4096);
}

class StartAndEndCycles : public testing::TestWithParam<SweptModel> {};

TEST_P(StartAndEndCycles, LeaveNothing)
{
    expectNothingLeft([] {
        const ShortSession session(GetParam());
        SimulatedPlatform machine;
        const PlatformScope scope(machine);
        const auto device = session.device();
        machine.attach(1, *device);
        clsKELReader reader;
        session.prepare(reader);
        startAndEnd(reader, [&] { return !machine.line(1).isOpen(); });
    });
}

INSTANTIATE_TEST_SUITE_P(Models, StartAndEndCycles, testing::ValuesIn(kSweptModels),
                         [](const auto& model) { return nameOf(model.param); });

TEST(StartAndEndCyclesOverTheMakersLibrary, LeaveNothing)
{
    OmrApiSimulation simulation(simulatedOmrApi());
    PosixOmrApiLoader loader{"/nowhere"};
    loader.libraryFile(simulatedOmrApi());
    expectNothingLeft([&] {
        simulation.configure({}); // its log of the calls begins anew
        SimulatedPlatform machine;
        const PlatformScope scope(machine);
        machine.omrApiLoader().set(&loader.omrApi());
        clsKELReader reader;
        reader.LoadDefaults(kelReaderTypeSekonicSR2300);
        startAndEnd(reader, [&] { return !simulation.report().open; });
    });
}

} // namespace
} // namespace kel::test
