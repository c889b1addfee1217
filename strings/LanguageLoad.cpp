// SPDX-License-Identifier: MIT
#include "strings/LanguageLoad.h"

#include "platform/Platform.h"
#include "strings/LastLanguage.h"
#include "strings/LetterCase.h"
#include "types/CaughtFailure.h"
#include "types/Text.h"

#include <filesystem>
#include <utility>

namespace kel {

namespace {

constexpr const char* kHeadSection = "VBLM";
constexpr const char* kNoValue = "?";
constexpr std::size_t kProfileBuffer = 64;
constexpr std::uintmax_t kLargestFile = 16U << 20;
constexpr char kFolderSeparator = static_cast<char>(std::filesystem::path::preferred_separator);

/// A name with a drive or a network path stands as it is, and so does an absolute path where paths begin with "/".
bool namesItsFolder(const std::string& fileName)
{
    return fileName.find(":\\") != std::string::npos || fileName.find("\\\\") != std::string::npos ||
           (kFolderSeparator == '/' && fileName.starts_with('/'));
}

/// A pipe or a device is no language file: it has no size, and no place to go back to.
bool isThere(const std::string& fileName)
{
    std::error_code error;
    return std::filesystem::is_regular_file(filePath(fileName), error);
}

BoxAnswer askAboutFailure(const RuntimeFailure& failure)
{
    return platform().screen().MsgBox(failure.text() + "(Code" + CStr(failure.number()) + ")", BoxIcon::Exclamation,
                                      BoxButtons::AbortRetryIgnore, "VBLM_RTString()");
}

/// The text of a line, from what follows its "=".
std::string textOf(std::string_view sText)
{
    if (sText.starts_with('"'))
        sText.remove_prefix(1);
    if (sText.ends_with('"'))
        sText.remove_suffix(1);
    return replaceAll(sText, "~~", kLineEnd);
}

} // namespace

LanguageLoad::LanguageLoad(LanguageState& state, std::string fileName, std::string asked)
    : state_(state), sFileName_(std::move(fileName)), asked_(std::move(asked))
{
}

LanguageLoad::~LanguageLoad()
{
    if (!hourglass_)
        return;
    try {
        platform().screen().MousePointer(lPreviousMousePointer_);
    } catch (const std::exception&) {
        // The pointer's shape is not worth a report.
    }
}

/// Runs a statement, asks what to do if it fails, and does it.
template <class Body>
void LanguageLoad::statement(Body&& body)
{
    for (;;) {
        try {
            body();
            return;
        } catch (const std::exception&) {
            switch (askAboutFailure(caughtFailure())) {
            case BoxAnswer::Retry: break;
            case BoxAnswer::Ignore: return;
            case BoxAnswer::Abort:
            case BoxAnswer::Ok: throw LoadFailed{kNotAvailable};
            }
        }
    }
}

std::unique_ptr<const StringTable> LanguageLoad::run()
{
    state_.mlSelectedLanguage = 0;
    statement([&] { lPreviousMousePointer_ = platform().screen().MousePointer(); });
    findFile();
    readLanguages();
    chooseLanguage();
    showHourglass();
    sizeTable();
    goToLanguage();
    readTexts();
    return std::move(table_);
}

std::vector<std::string> LanguageLoad::languageNames()
{
    findFile();
    readLanguages();
    std::vector<std::string> names;
    for (const Language& language : languages_)
        names.push_back(language.name);
    return names;
}

void LanguageLoad::findFile()
{
    statement([&] {
        if (namesItsFolder(sFileName_))
            return;
        std::string folder = platform().process().ComponentFolder().string();
        if (!folder.ends_with(kFolderSeparator))
            folder += kFolderSeparator;
        sFileName_.insert(0, folder);
    });
    if (!isThere(sFileName_))
        throw LoadFailed{"Language database file " + sFileName_ + " not found."};
    std::error_code unknown;
    if (const std::uintmax_t size = std::filesystem::file_size(filePath(sFileName_), unknown);
        !unknown && size > kLargestFile)
        throw LoadFailed{"Language database file " + sFileName_ + " is larger than 16 MB."};
}

void LanguageLoad::readLanguages()
{
    statement([&] { head_ = ProfileSection(sFileName_, kHeadSection); });
    tagProfileEntry PE{.sKey = "NumLanguages", .sValue = {}, .lValue = 0, .bRequired = True};
    statement([&] { static_cast<void>(VBLM_GetProfileString(PE)); });
    endOnCriticalError();
    lNumLanguages_ = PE.lValue;

    statement([&] { ReadWriteLanguageToRegistry(kRegistryActionRead, sRegLanguage_); });

    for (std::int64_t number = 1; number <= lNumLanguages_; ++number)
        readLanguage(number);
}

void LanguageLoad::readLanguage(std::int64_t number)
{
    tagProfileEntry name{.sKey = "Language" + CStr(number), .sValue = {}, .lValue = 0, .bRequired = True};
    tagProfileEntry start{.sKey = name.sKey + "Start", .sValue = {}, .lValue = 0, .bRequired = True};
    statement([&] { static_cast<void>(VBLM_GetProfileString(name)); });
    statement([&] { static_cast<void>(VBLM_GetProfileString(start)); });
    endOnCriticalError();
    languages_.push_back({name.sValue, start.lValue});

    statement([&] {
        std::string sCommandLine = platform().process().CommandLine();
        if (!asked_.empty())
            sCommandLine += " /L=" + asked_;
        if (folded(sCommandLine).find(folded("/L=" + name.sValue)) != std::u16string::npos)
            state_.mlSelectedLanguage = static_cast<Int32>(number);
    });
    if (state_.mlSelectedLanguage == 0 && !sRegLanguage_.empty() && folded(sRegLanguage_) == folded(name.sValue))
        state_.mlSelectedLanguage = static_cast<Int32>(number);
}

void LanguageLoad::chooseLanguage()
{
    if (lNumLanguages_ == 1 || state_.mlSelectedLanguage == 0)
        state_.mlSelectedLanguage = 1;
}

void LanguageLoad::showHourglass()
{
    statement([&] {
        platform().screen().MousePointer(kMousePointerHourglass);
        hourglass_ = true;
    });
}

void LanguageLoad::sizeTable()
{
    tagProfileEntry PE{.sKey = "NumStrings", .sValue = {}, .lValue = 0, .bRequired = True};
    statement([&] { static_cast<void>(VBLM_GetProfileString(PE)); });
    endOnCriticalError();
    lNumStrings_ = PE.lValue;
    lStringIndexBase_ = optionalNumber("StringIndexBase", 0);
    lStringIndexStep_ = optionalNumber("StringIndexStep", 1);
    statement([&] {
        const Int32 upper = checkedAdd(lStringIndexBase_, checkedMultiply(lNumStrings_, lStringIndexStep_));
        table_ = std::make_unique<StringTable>(upper);
    });
}

void LanguageLoad::goToLanguage()
{
    Language chosen;
    bool atHeading = false;
    statement([&] { file_ = InputFile(sFileName_); });
    statement([&] {
        const auto index = static_cast<std::size_t>(state_.mlSelectedLanguage) - 1;
        if (index >= languages_.size())
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
        chosen = languages_[index];
    });
    const std::string heading = "[" + chosen.name + "]";
    statement([&] { atHeading = standsAt(chosen.start, heading); });
    if (!atHeading)
        scanFor(heading);
}

/// Whether a heading stands at a position that the head names; a position that is none in this file has no heading.
bool LanguageLoad::standsAt(Int32 start, const std::string& heading)
{
    if (start < 1 || start > file_.LOF())
        return false;
    file_.Seek(start);
    return Trim(file_.LineInput()) == heading;
}

/// Looks for a heading from the start of the file: the head no longer fits the file.
void LanguageLoad::scanFor(const std::string& heading)
{
    std::string sLine;
    statement([&] { file_.Seek(1); });
    do {
        bool atEnd = true;
        statement([&] { atEnd = file_.Eof(); });
        if (atEnd)
            throw LoadFailed{kNotAvailable};
        statement([&] { sLine = Trim(file_.LineInput()); });
    } while (sLine != heading);
}

void LanguageLoad::readTexts()
{
    // What a failed statement leaves as it was is the line, or the index, of the line before.
    std::string sLine;
    Int32 lIndex = 0;
    const bool contiguous = lStringIndexBase_ == 0 && lStringIndexStep_ == 1;
    for (Int32 lLine = 0; lLine < lNumStrings_; ++lLine) {
        statement([&] { sLine = file_.LineInput(); });
        const std::size_t equals = sLine.find('=');
        if (equals == std::string::npos) {
            if (sLine.starts_with('['))
                break; // the next language has begun
            if (contiguous)
                throw LoadFailed{kNotAvailable};
            continue;
        }
        //  S102="text"
        //  |\_/ index
        //  any character
        statement([&] { lIndex = CLng(Val(Mid(sLine, 2, static_cast<Int32>(equals) - 1))); });
        statement([&] { table_->store(lIndex, textOf(std::string_view(sLine).substr(equals + 1))); });
    }
}

/// One look-up in the head. A text that was found stays in `PE` even if its number is too large.
Boolean LanguageLoad::VBLM_GetProfileString(tagProfileEntry& PE) const
{
    const std::string found = platform()
                                  .process()
                                  .ProfileString(kHeadSection, PE.sKey, kNoValue, kProfileBuffer, sFileName_)
                                  .value_or(head_.value(PE.sKey, kNoValue, kProfileBuffer));
    if (!found.empty()) {
        PE.sValue = found;
        PE.lValue = CLng(Val(found));
        if (found != kNoValue)
            return True;
    }
    if (PE.bRequired)
        state_.mbCriticalError = True;
    return False;
}

Int32 LanguageLoad::optionalNumber(const char* key, Int32 otherwise)
{
    tagProfileEntry PE{.sKey = key, .sValue = {}, .lValue = 0, .bRequired = False};
    Boolean bFound;
    statement([&] { bFound = VBLM_GetProfileString(PE); });
    return bFound ? PE.lValue : otherwise;
}

void LanguageLoad::endOnCriticalError() const
{
    if (state_.mbCriticalError)
        throw LoadFailed{kNotAvailable};
}

} // namespace kel
