// SPDX-License-Identifier: MIT
#include "host/AnswerKeyFile.h"

#include "formats/JsonValue.h"
#include "formats/NearestNames.h"
#include "host/JsonFile.h"
#include "types/Text.h"

#include <algorithm>
#include <optional>

namespace kel::host {

namespace {

constexpr std::size_t kMostFormIds = 2;
constexpr Int16 kMostKeyPages = 2;
constexpr Int16 kMostQuestionsOnPage = 6553; // five characters each have to be counted in 16 bits
constexpr std::size_t kMostAnswers = 5;
constexpr Int16 kMostChoiceColumns = 100;
constexpr Int16 kShiftedColumns = 4;
constexpr std::size_t kMostVersions = 4;
constexpr std::size_t kMostEssayDigits = 4;

/// A text that goes to the reader unchanged, or is separated from others by commas.
std::string readPlainText(const Json& value, const JsonPlace& place)
{
    std::string text = readJsonText(value, place);
    if (text.empty())
        place.refuse("must not be empty");
    if (text.find(',') != std::string::npos)
        place.refuse("is " + value.dump() + "; it must not hold a comma");
    return text;
}

std::string readFormId(const Json& value, const JsonPlace& place)
{
    std::string text = readPlainText(value, place);
    if (!std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; }))
        place.refuse("is " + value.dump() + "; it may hold only letters, digits and signs of ASCII");
    return text;
}

std::vector<std::string> readTexts(const Json& value, const JsonPlace& place,
                                   std::string (*readText)(const Json&, const JsonPlace&))
{
    std::vector<std::string> texts;
    readJsonArray(value, place,
                  [&](const Json& text, const JsonPlace& here) { texts.push_back(readText(text, here)); });
    return texts;
}

bool contains(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// A question as in the file, with the places of values that may be refused later.
struct QuestionEntry {
    std::string name;
    std::vector<std::string> choices;
    std::optional<Int16> choiceColumns;
    std::vector<std::string> correctAnswers;
};

void checkChoices(const QuestionEntry& question, const JsonPlace& place)
{
    const auto& choices = question.choices;
    if (choices.empty())
        place.refuse("has no choices");
    const bool bShifted = question.choiceColumns == kShiftedColumns;
    const std::size_t most = bShifted ? kMostAnswers - 1 : kMostAnswers;
    if (choices.size() > most)
        place.key("choices").refuse("has " + CStr(static_cast<std::int64_t>(choices.size())) + " choices, and " +
                                    (bShifted ? "in four columns there is room for " : "a reader takes at most ") +
                                    CStr(static_cast<std::int64_t>(most)));
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (std::find(choices.begin(), choices.begin() + static_cast<std::ptrdiff_t>(i), choices[i]) !=
            choices.begin() + static_cast<std::ptrdiff_t>(i))
            place.key("choices").element(i).refuse("is the choice \"" + choices[i] + "\" for the second time");
    }
}

void checkVersion(const std::string& sCorrectAnswers, const std::vector<std::string>& choices, const JsonPlace& place)
{
    std::vector<std::string> seen;
    for (const std::string& sAnswer : split(sCorrectAnswers, ',')) {
        if (!contains(choices, sAnswer))
            place.refuse("has the answer \"" + sAnswer + "\", which is not among the choices " +
                         listed(choices, "and"));
        if (contains(seen, sAnswer))
            place.refuse("has the answer \"" + sAnswer + "\" twice");
        seen.push_back(sAnswer);
    }
}

void checkScoredQuestion(const QuestionEntry& question, const JsonPlace& place)
{
    checkChoices(question, place);
    if (question.correctAnswers.size() > kMostVersions)
        place.key("correctAnswers")
            .refuse("has " + CStr(static_cast<std::int64_t>(question.correctAnswers.size())) +
                    " versions, and a reader stores at most " + CStr(static_cast<std::int64_t>(kMostVersions)));
    for (std::size_t i = 0; i < question.correctAnswers.size(); ++i)
        checkVersion(question.correctAnswers[i], question.choices, place.key("correctAnswers").element(i));
}

void checkEssay(const QuestionEntry& question, const JsonPlace& place)
{
    if (!question.choices.empty())
        place.key("choices").refuse("belongs to an essay, which has no choices");
    if (question.correctAnswers.size() != 1)
        place.refuse("has to have one text in correctAnswers, the points of the essay");
    const std::string& sPoints = question.correctAnswers.front();
    const bool bDigits = std::all_of(sPoints.begin(), sPoints.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (sPoints.empty() || sPoints.size() > kMostEssayDigits || !bDigits)
        place.key("correctAnswers").element(0).refuse("has to be a number of up to four digits");
}

void addQuestion(AnswerKey& key, const Json& value, const JsonPlace& place)
{
    QuestionEntry question;
    readJsonObject(
        value, place,
        {{"name", [&](const Json& text, const JsonPlace& here) { question.name = readJsonText(text, here); }},
         {"choices",
          [&](const Json& texts, const JsonPlace& here) { question.choices = readTexts(texts, here, readPlainText); }},
         {"choiceColumns",
          [&](const Json& number, const JsonPlace& here) {
              question.choiceColumns = readJsonNumber(number, here, 1, kMostChoiceColumns);
          }},
         {"correctAnswers", [&](const Json& texts, const JsonPlace& here) {
              question.correctAnswers = readTexts(texts, here, readJsonText);
          }}});
    if (question.name.starts_with("Question"))
        checkScoredQuestion(question, place);
    else if (question.name.starts_with("Essay Score"))
        checkEssay(question, place);
    else
        place.refuse("has to have a name that begins with \"Question\" or \"Essay Score\"");

    const auto choices = static_cast<Int32>(question.choices.size());
    key.AddQuestion(question.name, question.choices, question.correctAnswers,
                    question.choiceColumns ? *question.choiceColumns : choices);
}

/// The identifiers as the key object returns them: one text with commas.
std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all.append(all.empty() ? "" : ",").append(text);
    return all;
}

GradingKey answerKeyOf(const Json& root)
{
    const JsonPlace whole;
    GradingKey result{makeReference<AnswerKey>(), {}};
    std::vector<std::string> formIds;
    std::optional<Int16> pages;
    readJsonObject(
        root, whole,
        {{"formIds", [&](const Json& value, const JsonPlace& place) { formIds = readTexts(value, place, readFormId); }},
         {"pages",
          [&](const Json& value, const JsonPlace& place) { pages = readJsonNumber(value, place, 1, kMostKeyPages); }},
         {"questionsOnPage",
          [&](const Json& value, const JsonPlace& place) {
              readJsonArray(value, place, [&](const Json& number, const JsonPlace& here) {
                  result.questionsOnPage.push_back(readJsonNumber(number, here, 1, kMostQuestionsOnPage));
              });
          }},
         {"questions", [&](const Json& value, const JsonPlace& place) {
              readJsonArray(value, place, [&](const Json& question, const JsonPlace& here) {
                  addQuestion(*result.key, question, here);
              });
          }}});

    if (formIds.empty())
        whole.refuse("has no form identifier: formIds needs one for each page");
    if (formIds.size() > kMostFormIds)
        whole.key("formIds").refuse("has more than two identifiers, and a reader takes one a page");
    if (formIds.size() > 1 && result.questionsOnPage.empty())
        whole.refuse("has two form identifiers and no questionsOnPage, which has to say where page 2 begins");
    if (result.key->QuestionsCount() == 0)
        whole.refuse("has no questions");
    result.key->FormIDs(joined(formIds));
    result.key->NumberOfPages(pages ? *pages : static_cast<Int32>(formIds.size()));
    return result;
}

} // namespace

Int16 GradingKey::questionsOn(Int16 page) const
{
    const bool isKnown = page >= 1 && static_cast<std::size_t>(page) <= questionsOnPage.size();
    return isKnown ? questionsOnPage[static_cast<std::size_t>(page) - 1] : Int16{0};
}

GradingKey parseAnswerKey(std::string_view text, const std::string& fileName)
{
    return readingFile(fileName, [&] {
        const Json root = parseJson(text);
        GradingKey key = answerKeyOf(root);
        key.source = jsonText(root);
        return key;
    });
}

GradingKey readAnswerKeyFile(const std::filesystem::path& file)
{
    return parseAnswerKey(readGivenFile(file, kAnswerKeyFile), file.string());
}

} // namespace kel::host
