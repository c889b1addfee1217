// SPDX-License-Identifier: MIT
// The command "options": in this process with a scripted window, and as a process without a display.

#include "tests/cli/CommandRun.h"
#include "tests/options/OptionsHost.h"

#include "cli/CommandList.h"
#include "options/OptionsPresenter.h"
#include "reader/SettingsStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kel::test {
namespace {

using testing::HasSubstr;

class Script final : public OptionsPresenter {
public:
    bool show(frmOptions& form, void*, std::string&) override
    {
        form.Show();
        steps(form);
        return true;
    }

    std::function<void(frmOptions&)> steps;
};

class OptionsCommandTest : public testing::Test {
protected:
    OptionsCommandTest() { setOptionsPresenter(script_); }
    ~OptionsCommandTest() override { setOptionsPresenter(nullptr); }

    /// Runs the command, with somebody at the window who does `steps`.
    int run(const std::vector<std::string>& arguments, std::function<void(frmOptions&)> steps)
    {
        script_->steps = std::move(steps);
        std::vector<std::string> words = {"options"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const CommandOutcome outcome = runWithin(addOptionsCommand, words);
        output = outcome.output;
        errors = outcome.errors;
        return outcome.status;
    }

    OptionsHost host{1, 3};
    std::string output;
    std::string errors;

private:
    std::shared_ptr<Script> script_ = std::make_shared<Script>();
};

TEST_F(OptionsCommandTest, WritesWhatWasChosenAndKeepsIt)
{
    const std::vector<std::string> arguments = {"--model",  "13",  "--settings", R"(HKCU\Software\Reader)",
                                                "--format", "json"};
    EXPECT_EQ(run(arguments,
                  [](frmOptions& form) {
                      EXPECT_EQ(form.cboReaderType.Text(), "Scantron Scanmark 2500");
                      form.cboPort.CurrentRow(1);
                      form.txtMarkCutOff.Text("12");
                      form.cmdOK.Click();
                  }),
              0);
    const auto record = nlohmann::json::parse(output);
    EXPECT_EQ(record["Port"], 3);
    EXPECT_EQ(record["MarkCutOff"], 12);
    EXPECT_EQ(record["RecognitionThreshold"], 7);

    clsKELReader reader;
    reader.LoadSettings(kelReaderRegistryKeyCurrentUser, R"(Software\Reader)");
    EXPECT_EQ(reader.ReaderType(), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(reader.Port(), 3);
    EXPECT_EQ(reader.MarkCutOff(), 12);
}

TEST_F(OptionsCommandTest, ShowsWhatIsKept)
{
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().MarkCutOff(211);
    host.reader().SaveSettings(kelReaderRegistryKeyCurrentUser, R"(Software\Reader)");
    std::string shown;
    const auto look = [&](frmOptions& form) {
        shown = form.txtMarkCutOff.Text();
        form.cmdCancel.Click();
    };
    EXPECT_EQ(run({"--settings", R"(HKCU\Software\Reader)"}, look), 0);
    EXPECT_EQ(shown, "211");
    EXPECT_EQ(run({"--settings", R"(HKCU\Software\Reader)", "--model", "VMR138"}, look), 0);
    EXPECT_EQ(shown, "211") << "the same model keeps its settings";
    EXPECT_EQ(run({"--settings", R"(HKCU\Software\Reader)", "--model", "13"}, look), 0);
    EXPECT_EQ(shown, "10");
}

TEST_F(OptionsCommandTest, CancelChangesNothing)
{
    EXPECT_EQ(run({"--model", "13", "--settings", R"(HKCU\Software\Reader)"},
                  [](frmOptions& form) { form.cmdCancel.Click(); }),
              0);
    EXPECT_EQ(output, "");
    EXPECT_THAT(errors, HasSubstr("Cancelled"));
    EXPECT_FALSE(host.machine.registry().exists(kelReaderRegistryKeyCurrentUser, R"(Software\Reader)"));
}

TEST_F(OptionsCommandTest, ASearchPastMissingPortsIsQuietAndOtherFailuresAreTold)
{
    EXPECT_EQ(run({"--model", "23"},
                  [](frmOptions& form) {
                      form.cmdLocate.Click();
                      form.cmdCancel.Click();
                  }),
              0);
    EXPECT_EQ(run({"--model", "23"},
                  [](frmOptions& form) {
                      form.txtSystemPause.Text("soon");
                      form.txtSystemPause.Validate();
                      form.cmdOK.Click();
                  }),
              1);
    EXPECT_THAT(errors, HasSubstr("ValidateSpinValue"));
    EXPECT_THAT(output, HasSubstr("ReaderType"));
}

/// A machine without a display, for the processes that are started meanwhile.
class NoDisplay {
public:
    NoDisplay()
    {
        for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            if (const char* const value = std::getenv(name))
                before_.emplace_back(name, value);
            unsetenv(name);
        }
    }
    ~NoDisplay()
    {
        for (const auto& [name, value] : before_)
            setenv(name.c_str(), value.c_str(), 1);
    }
    NoDisplay(const NoDisplay&) = delete;
    NoDisplay& operator=(const NoDisplay&) = delete;

private:
    std::vector<std::pair<std::string, std::string>> before_;
};

TEST(OptionsWithoutDisplayTest, SaysSoAndFails)
{
    const NoDisplay none;
    const CommandOutcome outcome = runCommand({"options", "--model", "13"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("cannot be shown without a display"));
}

} // namespace
} // namespace kel::test
