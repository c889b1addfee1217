// SPDX-License-Identifier: MIT
#include "drivers/apperson/AppersonDialogue.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

/// Each test begins as a thread does, whatever the reader of the test before was left in.
class ThreadState final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { bAPReaderStarted = False; }
};

[[maybe_unused]] const bool installed = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new ThreadState);
    return true;
}();

} // namespace
} // namespace kel::test
