// SPDX-License-Identifier: MIT
// The options of a collector, on its command line and in its environment. What it does with them is seen with a server.
#include "tests/cli/CommandRun.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::HasSubstr;

struct WrongOption {
    const char* option;
    const char* variable;
    const char* value;
    const char* refusal;
};

/// A collector with these variables and options.
CommandOutcome run(const std::vector<std::string>& variables, const std::vector<std::string>& options)
{
    std::vector<std::string> words = variables;
    words.insert(words.end(), {readerProgram(), "collect"});
    words.insert(words.end(), options.begin(), options.end());
    return RunningCommand(words, "/usr/bin/env").finish();
}

class ACollector : public testing::TestWithParam<WrongOption> {
protected:
    TemporaryFolder folder_;
    const std::string store_ = folder_.file("all.db");
};

TEST_P(ACollector, TakesAnOptionFromItsEnvironment)
{
    const auto& [option, variable, value, refusal] = GetParam();
    std::vector<std::string> options{"--store", store_, option, value};
    std::vector<std::string> variables{"KELREADER_STORE=" + store_, std::string(variable) + "=" + value};
    if (std::string(option) != "--from") {
        options.insert(options.end(), {"--from", "localhost"});
        variables.emplace_back("KELREADER_FROM=localhost");
    }
    const CommandOutcome onLine = run({}, options);
    EXPECT_EQ(onLine.status, 2);
    EXPECT_THAT(onLine.errors, HasSubstr(refusal));
    const CommandOutcome outside = run(variables, {});
    EXPECT_EQ(outside.status, 2);
    EXPECT_EQ(outside.errors, onLine.errors);
    EXPECT_FALSE(std::filesystem::exists(store_));
}

INSTANTIATE_TEST_SUITE_P(
    Options, ACollector,
    testing::Values(WrongOption{"--from", "KELREADER_FROM", "localhost,http://a", "'http://a' is not a server"},
                    WrongOption{"--stream", "KELREADER_STREAM", "a.b", "cannot be the name of a stream"},
                    WrongOption{"--subject", "KELREADER_SUBJECT", "a.*", "cannot begin a subject"},
                    WrongOption{"--authority", "KELREADER_AUTHORITY", "/no/such", "/no/such cannot be read"},
                    WrongOption{"--certificate", "KELREADER_CERTIFICATE", "/no/such", "--key"},
                    WrongOption{"--key", "KELREADER_KEY", "/no/such", "--certificate"},
                    WrongOption{"--credentials", "KELREADER_CREDENTIALS", "/no/such", "/no/such cannot be read"}),
    [](const auto& tested) { return std::string(tested.param.option).substr(2); });

TEST(CollectCommand, NeedsServersAndAStore)
{
    EXPECT_THAT(run({}, {"--store", "all.db"}).errors, HasSubstr("--from is required"));
    EXPECT_THAT(run({}, {"--from", "localhost"}).errors, HasSubstr("--store is required"));
}

} // namespace
} // namespace kel::test
