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

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/common_interface_defs.h>
#endif

// Runs the corpora through their targets, without libFuzzer. An input that a target does not hold ends the process, as
// it does there; its file is told.

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
#ifdef __SANITIZE_ADDRESS__
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

/// Nothing may come out of a target, no exception either. The copy has the very size: what is read behind its end is
/// found.
void run(const Target& target, const std::filesystem::path& file) noexcept
{
    underWay = file.string();
    std::ifstream input(file, std::ios::binary);
    const std::vector<char> content(std::istreambuf_iterator<char>(input), {});
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
        run(GetParam(), file);
}

INSTANTIATE_TEST_SUITE_P(Targets, Corpus, testing::ValuesIn(kTargets), nameOf);

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
