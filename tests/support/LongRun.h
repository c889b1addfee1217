// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>

namespace kel::test {

/// Whether the long sweeps run in full, as before a release (scripts/check-release.sh): KEL_LONG_TESTS is set.
[[nodiscard]] inline bool longRun()
{
    return std::getenv("KEL_LONG_TESTS") != nullptr;
}

/// How many of something a sweep takes: all of them in a long run, a sample otherwise.
[[nodiscard]] inline std::size_t sampled(std::size_t all, std::size_t sample)
{
    return longRun() ? all : sample;
}

/// Counts what a sweep has done; the sums are printed when all tests are over. May be called by any thread.
void tally(const std::string& what, std::size_t count);

} // namespace kel::test
