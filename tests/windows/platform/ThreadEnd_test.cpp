// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <thread>

namespace kel {
namespace {

bool wasGivenBack = true;

/// A variable of a thread that looks at its end whether others may have its memory already.
struct Variable {
    Variable() = default;
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable()
    {
        const auto own = reinterpret_cast<std::uintptr_t>(this);
        std::array<void*, 512> others{};
        bool isTaken = false;
        for (std::size_t i = 0; i < others.size(); ++i) {
            const std::size_t size = 16 + i;
            others[i] = std::malloc(size);
            const auto other = reinterpret_cast<std::uintptr_t>(others[i]);
            isTaken |= other < own + sizeof *this && own < other + size;
        }
        for (void* const other : others)
            std::free(other);
        wasGivenBack = isTaken;
    }
    std::array<char, 96> content{};
};

thread_local Variable variable;

TEST(ThreadEndTest, TheVariablesOfAThreadAreDestroyedBeforeTheirMemoryIsGivenBack)
{
    for (int thread = 0; thread < 3; ++thread) {
        wasGivenBack = true;
        std::thread([] { variable.content[0] = 'x'; }).join();
        EXPECT_FALSE(wasGivenBack) << thread;
    }
}

} // namespace
} // namespace kel
