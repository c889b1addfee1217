// SPDX-License-Identifier: MIT
#include "tests/support/LongRun.h"
#include "types/Numbers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#ifdef KEL_WATCHES_ADDRESSES
#include <sanitizer/common_interface_defs.h>
#endif

// Runs the corpora through their targets, without libFuzzer. An input that a target does not hold ends the process, as
// it does there; the message names its file.

#define FUZZ_TARGET(name) extern "C" int fuzz##name(const kel::Byte* data, std::size_t size);
#include "FuzzTargets.inc"
#undef FUZZ_TARGET

namespace kel::test {
namespace {

struct Target {
    const char* name;
    int (*run)(const Byte* data, std::size_t size);
};

#define FUZZ_TARGET(name) {#name, fuzz##name},
constexpr Target kTargets[] = {
#include "FuzzTargets.inc"
};
#undef FUZZ_TARGET

const std::filesystem::path kCorpus = KEL_FUZZ_CORPUS;

std::string underWay;

void tellInput()
{
    std::fprintf(stderr, "The process ends in %s\n", underWay.c_str());
}

void tellInputAtTheEnd()
{
    std::signal(SIGABRT, [](int) { tellInput(); });
#ifdef KEL_WATCHES_ADDRESSES
    __sanitizer_set_death_callback(tellInput);
#endif
}

std::vector<std::filesystem::path> inputsOf(const Target& target)
{
    std::vector<std::filesystem::path> files;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus / target.name, missing))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

/// Nothing may come out of a target, no exception either. The copy has the very size: what is read after its end is
/// found.
void run(const Target& target, const std::string& name, const std::string& input) noexcept
{
    underWay = name;
    const std::vector<char> content(input.begin(), input.end());
    target.run(reinterpret_cast<const Byte*>(content.data()), content.size());
}

void PrintTo(const Target& target, std::ostream* out)
{
    *out << target.name;
}

std::string nameOf(const testing::TestParamInfo<Target>& info)
{
    return info.param.name;
}

class Corpus : public testing::TestWithParam<Target> {};

TEST_P(Corpus, IsTaken)
{
    tellInputAtTheEnd();
    const auto files = inputsOf(GetParam());
    EXPECT_FALSE(files.empty()) << "there are no inputs in " << kCorpus / GetParam().name;
    for (const auto& file : files)
        run(GetParam(), file.string(), contentOf(file));
}

INSTANTIATE_TEST_SUITE_P(Targets, Corpus, testing::ValuesIn(kTargets), nameOf);

/// The longest input, as scripts/check-release.sh has it too; by default a sixteenth of it.
const std::size_t kLongest = sampled(1U << 20, 1U << 16);

/// Deep, long and many: a target has to end with each.
class Longest : public testing::TestWithParam<Target> {};

TEST_P(Longest, InputsAreTaken)
{
    tellInputAtTheEnd();
    std::vector<std::string> pieces = {
        std::string(1, '\0'), "\xFF", "[", "{\"a\":", "\r\n", "< 0D\n", "+ 1\n", "\\a", "=", "0,"};
    // What a target knows, again and again.
    const auto files = inputsOf(GetParam());
    for (std::size_t place = 0; place < std::min<std::size_t>(files.size(), 3); ++place)
        pieces.push_back(contentOf(files[place * files.size() / 3]));
    for (const std::string& piece : pieces) {
        for (const char first : {'\0', '\1', '\2'}) { // some targets choose by the first byte
            std::string input(1, first);
            while (!piece.empty() && input.size() + piece.size() <= kLongest)
                input += piece;
            run(GetParam(), "what is as long as can be: " + testing::PrintToString(piece.substr(0, 40)), input);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, Longest, testing::ValuesIn(kTargets), nameOf);

TEST(Corpora, BelongToTargets)
{
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus)) {
        const bool known = std::any_of(std::begin(kTargets), std::end(kTargets),
                                       [&](const Target& target) { return entry.path().filename() == target.name; });
        EXPECT_TRUE(known) << entry.path() << " has no target";
    }
}

} // namespace
} // namespace kel::test
