// SPDX-License-Identifier: MIT
#pragma once

#include "failure/basError.h"
#include "strings/LanguageDatabase.h"
#include "tests/failure/RecordingPlatform.h"
#include "tests/strings/LanguageFileMaker.h"

#include <gtest/gtest.h>

namespace kel::test {

/// Writes down how it is used, and fails where it is told to.
class RecordingErrorObject : public ErrorObject {
public:
    Boolean Silent() override
    {
        calls.push_back("get Silent");
        if (failOnGet)
            failOnGet();
        return silent;
    }

    void Silent(Boolean value) override
    {
        calls.push_back("set Silent " + std::to_string(value.bits()));
        if (failOnSet)
            failOnSet();
        silent = value;
    }

    Int32 RaiseError(const ErrorReport& report) override
    {
        calls.push_back("RaiseError");
        reports.push_back(report);
        silentAtReport = silent;
        if (failOnRaise)
            failOnRaise();
        return answer;
    }

    std::vector<std::string> calls;
    std::vector<ErrorReport> reports;
    Boolean silent;
    Boolean silentAtReport;
    Int32 answer = 0;
    std::function<void()> failOnGet;
    std::function<void()> failOnSet;
    std::function<void()> failOnRaise;
};

/// A process with texts for reports and without an error object.
class FailureTest : public testing::Test {
protected:
    FailureTest()
    {
        const LanguageFileMaker maker{
            .sections = {{"English",
                          {"S244=\", statement \"", "S246=\"Failure \"", "S248=\"~~in \"", "S250=\"Reader Failure\"",
                           "S252=\"Could not report. \"", "S254=\"Lost: \""}}},
            .head = {"NumStrings=6", "StringIndexBase=244", "StringIndexStep=2"}};
        folder.write(kLanguageFileName, maker.text());
        platform.process_.folder = folder.path();
        renewLanguageDatabase();
        setErrorObject(nullptr);
        EXPECT_EQ(VBLM_RTString(246), "Failure ");
        platform.screen_.pointers.clear();
        platform.screen_.pointer = kMousePointerHourglass;
    }

    ~FailureTest() override
    {
        setErrorObject(nullptr);
        renewLanguageDatabase();
    }

    std::shared_ptr<RecordingErrorObject> registered()
    {
        auto object = std::make_shared<RecordingErrorObject>();
        setErrorObject(object);
        return object;
    }

    std::vector<ShownBox>& boxes() { return platform.screen_.boxes; }

    /// A box about a report.
    static ShownBox reportBox(const std::string& text)
    {
        return {text, BoxIcon::Exclamation, BoxButtons::Ok, "Reader Failure"};
    }

    TemporaryFolder folder;
    RecordingPlatform platform;
};

} // namespace kel::test
