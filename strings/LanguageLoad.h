// SPDX-License-Identifier: MIT
#pragma once

#include "strings/InputFile.h"
#include "strings/ProfileSection.h"
#include "strings/StringTable.h"
#include "types/Boolean.h"

#include <memory>
#include <string>
#include <vector>

namespace kel {

/// The replacement for a text when the language file cannot be used.
inline constexpr const char* kNotAvailable = "LDB Error - String not available";

/// What outlives a load of the language database, be it successful or not.
struct LanguageState {
    Int32 mlSelectedLanguage = 0; ///< the language's number from 1; 0 before the choice
    Boolean mbCriticalError;      ///< a required key was missing; never taken back
};

/// The end of a load that has failed, with the text that replaces every text.
struct LoadFailed {
    std::string answer;
};

/// One look-up in the head of the language file.
struct tagProfileEntry {
    std::string sKey;   ///< the key
    std::string sValue; ///< the text found
    Int32 lValue = 0;   ///< its number
    Boolean bRequired;  ///< whether a missing key is critical
};

/// One load of the language database: finds the file, chooses the language, reads its texts.
/// A run-time failure of a statement is shown in a box. The answer says whether the load ends, the statement is
/// repeated, or the load goes on with the next statement; so each statement that can fail is a body of its own.
class LanguageLoad {
public:
    /// `fileName` without a drive or a path is a file in the component's folder. `asked` is a language that is asked
    /// for besides the command line's, empty if none is.
    LanguageLoad(LanguageState& state, std::string fileName, std::string asked = {});

    /// Puts the mouse pointer back.
    ~LanguageLoad();
    LanguageLoad(const LanguageLoad&) = delete;
    LanguageLoad& operator=(const LanguageLoad&) = delete;

    /// The table of the chosen language's texts, which has no bounds if it could not be sized; throws LoadFailed if
    /// there is none.
    [[nodiscard]] std::unique_ptr<const StringTable> run();

    /// The names of the languages alone; throws LoadFailed if the file does not have them.
    [[nodiscard]] std::vector<std::string> languageNames();

private:
    /// A language as the head describes it, with the position of its section.
    struct Language {
        std::string name;
        Int32 start = 0;
    };

    void findFile();
    void readLanguages();
    void readLanguage(std::int64_t number);
    void chooseLanguage();
    void showHourglass();
    void sizeTable();
    void goToLanguage();
    [[nodiscard]] bool standsAt(Int32 start, const std::string& heading);
    void scanFor(const std::string& heading);
    void readTexts();

    template <class Body>
    void statement(Body&& body);
    [[nodiscard]] Boolean VBLM_GetProfileString(tagProfileEntry& PE) const;
    [[nodiscard]] Int32 optionalNumber(const char* key, Int32 otherwise);
    void endOnCriticalError() const;

    LanguageState& state_;
    std::string sFileName_;
    const std::string asked_;
    ProfileSection head_;
    std::string sRegLanguage_;
    std::vector<Language> languages_;
    Int32 lNumLanguages_ = 0;
    Int32 lNumStrings_ = 0;
    Int32 lStringIndexBase_ = 0;
    Int32 lStringIndexStep_ = 1;
    InputFile file_;
    std::unique_ptr<StringTable> table_ = std::make_unique<StringTable>();
    Int32 lPreviousMousePointer_ = 0;
    bool hourglass_ = false;
};

} // namespace kel
