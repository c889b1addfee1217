// SPDX-License-Identifier: MIT
#pragma once

#include "strings/LanguageDatabase.h"
#include "tests/failure/RecordingPlatform.h"
#include "tests/strings/LanguageFileMaker.h"

#include <gtest/gtest.h>

#include <memory>

namespace kel::test {

inline const std::string kNoText = "LDB Error - String not available";

/// A database over a file that the test writes.
class LanguageDatabaseTest : public testing::Test {
protected:
    LanguageDatabaseTest()
    {
        platform.process_.folder = folder.path();
        platform.screen_.pointer = 3;
    }

    /// The database over this file's content; the one that was there before is gone.
    LanguageDatabase& with(const LanguageFileMaker& maker) { return withContent(maker.text()); }

    LanguageDatabase& withContent(const std::string& content)
    {
        folder.write(kLanguageFileName, content);
        return fresh();
    }

    LanguageDatabase& fresh(const std::string& fileName = kLanguageFileName)
    {
        database_ = std::make_unique<LanguageDatabase>(fileName);
        return *database_;
    }

    LanguageDatabase& database() { return *database_; }
    std::vector<ShownBox>& boxes() { return platform.screen_.boxes; }

    /// The file of the languages "English" and "German" with two texts each.
    static LanguageFileMaker twoLanguages()
    {
        return {.sections = {{"English", {"S0=zero", "S1=one"}}, {"German", {"S0=null", "S1=eins"}}},
                .head = {"NumStrings=2"}};
    }

    static LanguageFileMaker oneLanguage(std::vector<std::string> lines, std::vector<std::string> head)
    {
        return {.sections = {{"English", std::move(lines)}}, .head = std::move(head)};
    }

    void lastLanguage(const std::string& name)
    {
        platform.registry_.text(kelReaderRegistryKeyLocalMachine, "Software\\WhippleWare\\VBLM", "LastLanguage", name);
    }

    TemporaryFolder folder;
    RecordingPlatform platform;

private:
    std::unique_ptr<LanguageDatabase> database_;
};

/// What a box about a failing statement of a load looks like.
inline ShownBox loadBox(const std::string& text)
{
    return {text, BoxIcon::Exclamation, BoxButtons::AbortRetryIgnore, "VBLM_RTString()"};
}

} // namespace kel::test
