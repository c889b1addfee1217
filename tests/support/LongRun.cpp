// SPDX-License-Identifier: MIT
#include "tests/support/LongRun.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <mutex>

namespace kel::test {

namespace {

class Tallies final : public ::testing::Environment {
public:
    void add(const std::string& what, std::size_t count)
    {
        const std::lock_guard lock(mutex_);
        counts_[what] += count;
    }

    void TearDown() override
    {
        for (const auto& [what, count] : counts_)
            std::cout << "counted: " << count << ' ' << what << '\n';
        counts_.clear();
    }

private:
    std::mutex mutex_;
    std::map<std::string, std::size_t> counts_;
};

/// GoogleTest owns it, and ends it after the last test.
Tallies& tallies()
{
    static auto* const all = new Tallies;
    return *all;
}

[[maybe_unused]] const auto* const registered = ::testing::AddGlobalTestEnvironment(&tallies());

} // namespace

void tally(const std::string& what, std::size_t count)
{
    tallies().add(what, count);
}

} // namespace kel::test
