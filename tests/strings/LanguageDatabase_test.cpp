// SPDX-License-Identifier: MIT
#include "tests/strings/LanguageDatabaseTest.h"

#include <atomic>
#include <thread>

namespace kel::test {
namespace {

TEST_F(LanguageDatabaseTest, GivesATextWithoutQuotesAndWithLineEnds)
{
    with(oneLanguage({"S100=\"a~~b\"", "xx=never reached"}, {"NumStrings=1", "StringIndexBase=100"}));
    EXPECT_EQ(database().RTString(100), "a\r\nb");
    EXPECT_EQ(database().RTString(101), "");
    EXPECT_TRUE(boxes().empty());
}

TEST_F(LanguageDatabaseTest, StoresATextAtTheIndexOfItsLineWhateverItsPosition)
{
    with(oneLanguage({"S104=\"c\"", "S102=\"Line 1~~Line 2\"", "S100=a"},
                     {"NumStrings=3", "StringIndexBase=100", "StringIndexStep=2"}));
    EXPECT_EQ(database().RTString(100), "a");
    EXPECT_EQ(database().RTString(102), "Line 1\r\nLine 2");
    EXPECT_EQ(database().RTString(104), "c");
}

TEST_F(LanguageDatabaseTest, DropsEachQuoteOnItsOwn)
{
    with(oneLanguage({"S0=\"open", "S1=close\"", "S2=\"", "S3=\"\"", "S4=\"\"x\"\"", "S5= \"x\" "}, {"NumStrings=6"}));
    EXPECT_EQ(database().RTString(0), "open");
    EXPECT_EQ(database().RTString(1), "close");
    EXPECT_EQ(database().RTString(2), "");
    EXPECT_EQ(database().RTString(3), "");
    EXPECT_EQ(database().RTString(4), "\"x\"");
    EXPECT_EQ(database().RTString(5), " \"x\" ");
}

TEST_F(LanguageDatabaseTest, ReplacesTildesFromLeftToRight)
{
    with(oneLanguage({"S0=~~~", "S1=~~~~", "S2=a~b~~", "S3=x=y=~~[z]"}, {"NumStrings=4"}));
    EXPECT_EQ(database().RTString(0), "\r\n~");
    EXPECT_EQ(database().RTString(1), "\r\n\r\n");
    EXPECT_EQ(database().RTString(2), "a~b\r\n");
    EXPECT_EQ(database().RTString(3), "x=y=\r\n[z]");
}

TEST_F(LanguageDatabaseTest, TakesTheIndexFromTheNumberBetweenTheFirstCharacterAndTheEqualsSign)
{
    with(oneLanguage({"70=seven is any character", "[1=so is a bracket", "S 2 =blanks", "S3x=a letter behind",
                      "Sx=no number is 0", " 4=a blank in front", "S&h5=hexadecimal"},
                     {"NumStrings=7"}));
    EXPECT_EQ(database().RTString(0), "no number is 0");
    EXPECT_EQ(database().RTString(1), "so is a bracket");
    EXPECT_EQ(database().RTString(2), "blanks");
    EXPECT_EQ(database().RTString(3), "a letter behind");
    EXPECT_EQ(database().RTString(4), "a blank in front");
    EXPECT_EQ(database().RTString(5), "hexadecimal");
}

TEST_F(LanguageDatabaseTest, TakesALineWithTheSignInTheSecondPlaceAsIndexZero)
{
    EXPECT_EQ(with(oneLanguage({"S=zero"}, {"NumStrings=1"})).RTString(0), "zero");
}

TEST_F(LanguageDatabaseTest, AnswersInvalidIndexOutsideTheTableAndKeepsIt)
{
    with(oneLanguage({"S100=a", "S104=c"}, {"NumStrings=2", "StringIndexBase=100", "StringIndexStep=2"}));
    EXPECT_EQ(database().RTString(105), "Invalid Index");
    EXPECT_EQ(database().RTString(2147483647), "Invalid Index");
    EXPECT_EQ(database().RTString(-2), "Invalid Index");
    EXPECT_EQ(database().RTString(-2147483647 - 1), "Invalid Index");
    EXPECT_EQ(database().RTString(104), "c");
    EXPECT_EQ(database().RTString(0), "");
    EXPECT_EQ(database().RTString(103), "");
    EXPECT_TRUE(boxes().empty());
}

TEST_F(LanguageDatabaseTest, LoadsOnceWhenAskedForMinusOneAndThenForATextEvenIfTheFileGoes)
{
    with(twoLanguages());
    EXPECT_EQ(database().RTString(-1), "");
    EXPECT_EQ(platform.process_.folderQuestions, 1);
    std::filesystem::remove(folder.file(kLanguageFileName));
    EXPECT_EQ(database().RTString(1), "one");
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(platform.process_.folderQuestions, 1);
}

TEST_F(LanguageDatabaseTest, TreatsMinusOneAsAnyIndexOnceTheTextsAreThere)
{
    EXPECT_EQ(with(twoLanguages()).RTString(1), "one");
    EXPECT_EQ(database().RTString(-1), "Invalid Index");
}

TEST_F(LanguageDatabaseTest, ShowsAnHourglassWhileItLoads)
{
    with(twoLanguages());
    EXPECT_EQ(database().RTString(1), "one");
    EXPECT_EQ(platform.screen_.pointers, (std::vector<Int32>{kMousePointerHourglass, 3}));
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(platform.screen_.pointers.size(), 2U);
}

TEST_F(LanguageDatabaseTest, StopsAtTheNextSectionWithoutAWord)
{
    LanguageFileMaker maker = twoLanguages();
    maker.head = {"NumStrings=5"};
    EXPECT_EQ(with(maker).RTString(1), "one");
    EXPECT_EQ(database().RTString(2), "");
    EXPECT_EQ(database().RTString(5), "");
    EXPECT_EQ(database().RTString(6), "Invalid Index");
    EXPECT_TRUE(boxes().empty());
}

TEST_F(LanguageDatabaseTest, ReadsNoMoreLinesThanTheHeadSays)
{
    with(oneLanguage({"S0=zero", "S1=one", "no text at all"}, {"NumStrings=1"}));
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(database().RTString(1), "");
}

TEST_F(LanguageDatabaseTest, EndsTheLoadAtABlankLineInATableWithoutGaps)
{
    with(oneLanguage({"S0=zero", "", "S1=one"}, {"NumStrings=3"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(database().RTString(-1), kNoText);
    EXPECT_TRUE(boxes().empty());
    EXPECT_EQ(platform.screen_.pointer, 3);
    EXPECT_FALSE(database().state().mbCriticalError);
}

TEST_F(LanguageDatabaseTest, SkipsABlankLineInATableWithGapsAndCountsIt)
{
    with(oneLanguage({"S100=a", "", "S102=b", "S104=not read"},
                     {"NumStrings=3", "StringIndexBase=100", "StringIndexStep=2"}));
    EXPECT_EQ(database().RTString(100), "a");
    EXPECT_EQ(database().RTString(102), "b");
    EXPECT_EQ(database().RTString(104), "");
}

TEST_F(LanguageDatabaseTest, SkipsALineWithoutAnEqualsSignIfOnlyOneOfBaseAndStepIsNotTheDefault)
{
    EXPECT_EQ(with(oneLanguage({"junk", "S1=one"}, {"NumStrings=2", "StringIndexBase=1"})).RTString(1), "one");
    EXPECT_EQ(with(oneLanguage({"junk", "S1=one"}, {"NumStrings=2", "StringIndexStep=2"})).RTString(1), "one");
    EXPECT_EQ(
        with(oneLanguage({"junk", "S1=one"}, {"NumStrings=2", "StringIndexBase=0", "StringIndexStep=1"})).RTString(1),
        kNoText);
}

TEST_F(LanguageDatabaseTest, TakesATextLineAsItStands)
{
    // A blank in front of the bracket makes it a line like any other.
    EXPECT_EQ(with(oneLanguage({" [English]", "S1=one"}, {"NumStrings=2"})).RTString(1), kNoText);
}

TEST_F(LanguageDatabaseTest, IgnoresBlanksAroundAHeading)
{
    LanguageFileMaker maker = twoLanguages();
    maker.sections[0].heading = "  [English]   ";
    maker.startIsOffBy = 1000;
    EXPECT_EQ(with(maker).RTString(1), "one");
    // Another one stands before it, so this is the one at the start that the head names.
    maker.startIsOffBy = 0;
    maker.head.insert(maker.head.end(), {"[English]", "S0=wrong", "S1=wrong"});
    EXPECT_EQ(with(maker).RTString(1), "one");
}

TEST_F(LanguageDatabaseTest, FindsTheSectionAtAnyStart)
{
    platform.process_.commandLine = "/L=German";
    for (const int offset : {-100000, -7, -1, 0, 1, 2, 5, 100000}) {
        LanguageFileMaker maker = twoLanguages();
        maker.startIsOffBy = offset;
        EXPECT_EQ(with(maker).RTString(1), "eins") << offset;
    }
    for (const char* start : {"0", "-5", "abc", "999999", "2147483647"}) {
        withContent("[VBLM]\r\nNumLanguages=1\r\nLanguage1=German\r\nLanguage1Start=" + std::string(start) +
                    "\r\nNumStrings=1\r\n[German]\r\nS0=null\r\n");
        EXPECT_EQ(database().RTString(0), "null") << start;
    }
    EXPECT_TRUE(boxes().empty());
}

TEST_F(LanguageDatabaseTest, UsesTheStartAndNotTheFirstHeadingOfThatName)
{
    LanguageFileMaker maker = twoLanguages();
    maker.head.insert(maker.head.end(), {"[English]", "S0=wrong", "S1=wrong"});
    EXPECT_EQ(with(maker).RTString(1), "one");
    maker.startIsOffBy = 1;
    EXPECT_EQ(with(maker).RTString(1), "wrong");
}

TEST_F(LanguageDatabaseTest, NeedsTheExactCaseInAHeading)
{
    LanguageFileMaker maker = twoLanguages();
    maker.sections[0].heading = "[ENGLISH]";
    EXPECT_EQ(with(maker).RTString(1), kNoText);
    EXPECT_TRUE(boxes().empty());
    EXPECT_EQ(platform.screen_.pointer, 3);
}

TEST_F(LanguageDatabaseTest, NeedsTheWholeHeading)
{
    LanguageFileMaker maker = twoLanguages();
    maker.sections[0].heading = "[English] ;";
    EXPECT_EQ(with(maker).RTString(1), kNoText);
}

TEST_F(LanguageDatabaseTest, ReadsFilesOfAllLineEnds)
{
    for (const char* lineEnd : {"\r\n", "\n", "\r"}) {
        LanguageFileMaker maker = twoLanguages();
        maker.lineEnd = lineEnd;
        EXPECT_EQ(with(maker).RTString(1), "one");
    }
}

TEST_F(LanguageDatabaseTest, ReadsALastLineWithoutALineEnd)
{
    std::string content = oneLanguage({"S0=zero"}, {"NumStrings=1"}).text();
    content.resize(content.size() - 2);
    EXPECT_EQ(withContent(content).RTString(0), "zero");
}

TEST_F(LanguageDatabaseTest, SaysWhichFileIsMissingAndTriesAgainAtTheNextCall)
{
    const std::string answer = "Language database file " + folder.path().string() + "/LKELReader81.txt not found.";
    EXPECT_EQ(fresh().RTString(1), answer);
    EXPECT_EQ(database().RTString(-1), answer);
    EXPECT_TRUE(platform.screen_.pointers.empty());
    folder.write(kLanguageFileName, twoLanguages().text());
    EXPECT_EQ(database().RTString(1), "one");
}

TEST_F(LanguageDatabaseTest, TakesAFolderOfTheFilesNameForAMissingFile)
{
    std::filesystem::create_directory(folder.file(kLanguageFileName));
    EXPECT_EQ(fresh().RTString(1), "Language database file " + folder.file(kLanguageFileName) + " not found.");
}

TEST_F(LanguageDatabaseTest, TakesNoFileOfMoreThan16Megabytes)
{
    folder.write(kLanguageFileName, twoLanguages().text());
    std::filesystem::resize_file(folder.file(kLanguageFileName), (16U << 20) + 1);
    EXPECT_EQ(fresh().RTString(1),
              "Language database file " + folder.file(kLanguageFileName) + " is larger than 16 MB.");
    std::filesystem::resize_file(folder.file(kLanguageFileName), 16U << 20);
    EXPECT_EQ(fresh().RTString(1), "one");
}

TEST_F(LanguageDatabaseTest, TakesNoDeviceForAFile)
{
    EXPECT_EQ(fresh("/dev/zero").RTString(1), "Language database file /dev/zero not found.");
}

TEST_F(LanguageDatabaseTest, PutsTheComponentsFolderInFrontOfABareName)
{
    folder.write("other.txt", twoLanguages().text());
    EXPECT_EQ(fresh("other.txt").RTString(1), "one");
    platform.process_.folder = folder.path().string() + "/";
    EXPECT_EQ(fresh("other.txt").RTString(1), "one");
    EXPECT_EQ(fresh("none.txt").RTString(1),
              "Language database file " + folder.path().string() + "/none.txt not found.");
}

TEST_F(LanguageDatabaseTest, LeavesANameWithADriveOrAPathAsItIs)
{
    platform.process_.folder = "/nowhere";
    folder.write("other.txt", twoLanguages().text());
    EXPECT_EQ(fresh(folder.file("other.txt")).RTString(1), "one");
    EXPECT_EQ(fresh("C:\\texts.txt").RTString(1), "Language database file C:\\texts.txt not found.");
    EXPECT_EQ(fresh("\\\\server\\texts.txt").RTString(1), "Language database file \\\\server\\texts.txt not found.");
    EXPECT_EQ(fresh("\\texts.txt").RTString(1), "Language database file /nowhere/\\texts.txt not found.");
    EXPECT_EQ(fresh("C:texts.txt").RTString(1), "Language database file /nowhere/C:texts.txt not found.");
}

TEST_F(LanguageDatabaseTest, IsDeadOnceARequiredKeyWasMissing)
{
    const std::string whole = twoLanguages().text();
    for (const std::string key :
         {"NumLanguages", "Language1=", "Language1Start", "Language2=", "Language2Start", "NumStrings"}) {
        std::string content = whole;
        content.replace(content.find(key), 1, "x");
        EXPECT_EQ(withContent(content).RTString(1), kNoText) << key;
        EXPECT_EQ(database().state().mbCriticalError, True) << key;
        EXPECT_EQ(platform.screen_.pointer, 3) << key;
        // The file is whole again, but the load ends as before.
        folder.write(kLanguageFileName, whole);
        EXPECT_EQ(database().RTString(1), kNoText) << key;
        EXPECT_EQ(database().state().mbCriticalError, True) << key;
        // That the file is missing is seen before.
        std::filesystem::remove(folder.file(kLanguageFileName));
        EXPECT_EQ(database().RTString(1), "Language database file " + folder.file(kLanguageFileName) + " not found.");
        // Only the number of texts is looked for under the hourglass.
        EXPECT_EQ(platform.screen_.pointers.empty(), key != "NumStrings") << key;
    }
    EXPECT_TRUE(boxes().empty());
}

TEST_F(LanguageDatabaseTest, TakesAnEmptyValueOrAQuestionMarkForAMissingOne)
{
    for (const std::string value : {"", "?", "\"\"", "\"?\""}) {
        withContent("[VBLM]\r\nNumLanguages=1\r\nLanguage1=" + value +
                    "\r\nLanguage1Start=1\r\nNumStrings=1\r\n[?]\r\nS0=zero\r\n");
        EXPECT_EQ(database().RTString(0), kNoText) << value;
        EXPECT_EQ(database().state().mbCriticalError, True) << value;
    }
}

TEST_F(LanguageDatabaseTest, NeedsAHead)
{
    EXPECT_EQ(withContent("").RTString(1), kNoText);
    EXPECT_EQ(withContent("[English]\r\nS0=zero\r\n").RTString(1), kNoText);
    EXPECT_EQ(database().state().mbCriticalError, True);
}

TEST_F(LanguageDatabaseTest, CutsALanguagesNameTo63Characters)
{
    LanguageFileMaker maker = oneLanguage({"S0=zero"}, {"NumStrings=1"});
    maker.sections[0].name = std::string(63, 'n');
    maker.sections[0].heading = "[" + std::string(63, 'n') + "]";
    EXPECT_EQ(with(maker).RTString(0), "zero");
    maker.sections[0].name = std::string(64, 'n');
    EXPECT_EQ(with(maker).RTString(0), "zero");
    maker.sections[0].heading = "[" + std::string(64, 'n') + "]";
    EXPECT_EQ(with(maker).RTString(0), kNoText);
}

TEST_F(LanguageDatabaseTest, AnswersInPlaceOfATextWhereNoBoxCanBeShown)
{
    platform.screen_.onBox = [] { throw std::runtime_error("no screen"); };
    EXPECT_EQ(with(oneLanguage({"S5=five"}, {"NumStrings=1"})).RTString(0), kNoText);
    EXPECT_EQ(platform.screen_.pointer, 3);
}

TEST_F(LanguageDatabaseTest, LoadsOnceForSeveralThreads)
{
    with(twoLanguages());
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            const PlatformScope scope(platform);
            for (int k = 0; k < 1000; ++k)
                right += database().RTString(1) == "one" ? 1 : 0;
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(right, 8000);
    EXPECT_EQ(platform.process_.folderQuestions, 1);
}

TEST_F(LanguageDatabaseTest, CanBeAskedByTheHostWhileALoadShowsABox)
{
    with(oneLanguage({"S0=zero", "S9=nine"}, {"NumStrings=2"}));
    std::string inner;
    platform.screen_.answers = {BoxAnswer::Ignore, BoxAnswer::Ignore};
    platform.screen_.onBox = [&] {
        if (boxes().size() == 1)
            inner = database().RTString(0);
    };
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(inner, "zero");
    EXPECT_EQ(boxes().size(), 2U);
}

} // namespace
} // namespace kel::test
