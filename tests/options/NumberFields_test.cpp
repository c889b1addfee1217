// SPDX-License-Identifier: MIT
#include "platform/posix/PosixPlatform.h"
#include "tests/options/OptionsHost.h"
#include "tests/support/UsersLocale.h"

#include "options/basUtils.h"

#include <gtest/gtest.h>

#include <optional>

namespace kel::test {
namespace {

/// A field on a form of its own.
struct Field {
    class Bare final : public Form {
    } form;
    Frame frame{form, "frm"};
    PowerEdit edit{form, "txt", &frame};
    SimulatedPlatform machine;
    PlatformScope scope{machine};
};

std::string bounds(const PowerEdit& edit)
{
    return CStr(edit.Minimum()) + " to " + CStr(edit.Maximum());
}

TEST(SpinBoundsTest, AreWrittenInTheOrderThatIsTaken)
{
    Field field;
    const std::vector<std::pair<Int32, Int32>> sequence = {{192, 254}, {0, 0},   {0, 9},     {192, 254},
                                                           {1, 8},     {0, 254}, {300, 400}, {0, 15}};
    for (const auto& [lowest, highest] : sequence) {
        frmOptions::SetSpinMinMax(field.edit, lowest, highest);
        EXPECT_EQ(bounds(field.edit), CStr(lowest) + " to " + CStr(highest));
    }
}

TEST(SpinBoundsTest, AMinimumAboveTheMaximumIsBroughtDownOrUp)
{
    Field field;
    frmOptions::SetSpinMinMax(field.edit, 20, 10); // below the present maximum of 100
    EXPECT_EQ(bounds(field.edit), "20 to 20");
    field.edit.Minimum(0);
    field.edit.Maximum(5);
    frmOptions::SetSpinMinMax(field.edit, 20, 10); // above the present maximum
    EXPECT_EQ(bounds(field.edit), "10 to 10");
}

TEST(SpinBoundsTest, TheFieldItselfRefusesCrossedBounds)
{
    Field field;
    EXPECT_THROW(field.edit.Minimum(101), RuntimeFailure);
    EXPECT_THROW(field.edit.Maximum(-1), RuntimeFailure);
    EXPECT_EQ(bounds(field.edit), "0 to 100");
}

struct Validation {
    const char* typed;
    const char* result;
    int beeps;
};

class ValidateTest : public testing::TestWithParam<Validation> {};

TEST_P(ValidateTest, WritesTheNumberWithinTheBounds)
{
    Field field;
    frmOptions::SetSpinMinMax(field.edit, 10, 100);
    field.edit.Text(GetParam().typed);
    frmOptions::ValidateSpinValue(field.edit, False);
    EXPECT_EQ(field.edit.Text(), GetParam().result);
    EXPECT_EQ(field.machine.screen().beeps(), GetParam().beeps);
}

INSTANTIATE_TEST_SUITE_P(Texts, ValidateTest,
                         testing::Values(Validation{"50", "50", 0}, Validation{"007", "10", 1},
                                         Validation{"0050", "50", 0}, Validation{"10", "10", 0},
                                         Validation{"100", "100", 0}, Validation{"101", "100", 1},
                                         Validation{"-5", "10", 1}, Validation{"99999999999", "100", 1},
                                         Validation{"50.7", "50", 1}, Validation{"50.0", "50", 0},
                                         Validation{" 50 ", "50", 0}));

TEST(ValidateTest, IsSilentIfQuiet)
{
    Field field;
    field.edit.Text("500");
    frmOptions::ValidateSpinValue(field.edit, True);
    EXPECT_EQ(field.edit.Text(), "100");
    EXPECT_EQ(field.machine.screen().beeps(), 0);
}

TEST(ValidateTest, KeepsAsManyDecimalsAsTheFieldHas)
{
    Field field;
    field.edit.DecimalPlaces(2);
    field.edit.Text("1.25");
    frmOptions::ValidateSpinValue(field.edit, False);
    EXPECT_EQ(field.edit.Text(), "1.25");
    field.edit.Text("1.259");
    frmOptions::ValidateSpinValue(field.edit, False);
    EXPECT_EQ(field.edit.Text(), "1.25");
    EXPECT_EQ(field.machine.screen().beeps(), 1);
}

TEST(ValidateTest, ATextThatIsNoNumberIsReportedAndStays)
{
    OptionsHost host;
    host.form().txtSystemPause.Text("soon");
    host.form().txtSystemPause.Validate();
    EXPECT_EQ(host.form().txtSystemPause.Text(), "soon");
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 13);
    EXPECT_EQ(host.heard().reports[0].ErrorSource.substr(0, 28), "frmOptions.ValidateSpinValue");
}

TEST(CValTest, ReadsAPointOnAnyLocale)
{
    const Field field;
    EXPECT_EQ(frmOptions::CVal("2.5"), 2.5);
    EXPECT_EQ(frmOptions::CVal("2.5 mm"), 2.5);
    EXPECT_EQ(frmOptions::CVal("12"), 12);
    EXPECT_THROW(static_cast<void>(frmOptions::CVal("")), RuntimeFailure);
    for (const char* const text : {"12 mm", "nan", "inf", "-inf", "infinity", "NAN", "1,000"})
        EXPECT_THROW(static_cast<void>(frmOptions::CVal(text)), RuntimeFailure) << text;
}

const NumberSigns kEnglish{".", ","};
const NumberSigns kGerman{",", "."};
const NumberSigns kFrench{",", "\u202F"};

struct Written {
    NumberSigns signs;
    const char* text;
    std::optional<double> number;
};

class LocaleNumberTest : public testing::TestWithParam<Written> {};

TEST_P(LocaleNumberTest, IsReadWithTheUsersSigns)
{
    Field field;
    field.machine.process().numberSigns(GetParam().signs);
    if (GetParam().number) {
        EXPECT_EQ(frmOptions::CVal(GetParam().text), *GetParam().number) << GetParam().text;
    } else {
        EXPECT_THROW(static_cast<void>(frmOptions::CVal(GetParam().text)), RuntimeFailure) << GetParam().text;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, LocaleNumberTest,
    testing::Values(Written{kEnglish, "1,000", 1000}, Written{kEnglish, "-12,345,678", -12345678},
                    Written{kEnglish, "1,00,000", 100000}, Written{kEnglish, "1000", 1000}, Written{kEnglish, " 7 ", 7},
                    Written{kEnglish, "1e3", 1000}, Written{kEnglish, "12,5", std::nullopt},
                    Written{kEnglish, ",500", std::nullopt}, Written{kEnglish, "1,,000", std::nullopt},
                    Written{kEnglish, "1,000,", std::nullopt}, Written{kEnglish, "1,0x0", std::nullopt},
                    Written{kEnglish, "nan", std::nullopt}, Written{kEnglish, "", std::nullopt},
                    Written{kGerman, "12,5", 12.5}, Written{kGerman, "-0,5", -0.5}, Written{kGerman, "5,", 5},
                    Written{kGerman, "2.5", 2.5}, Written{kGerman, "1,000", 1}, Written{kGerman, "1,2,3", std::nullopt},
                    Written{kGerman, "inf", std::nullopt}, Written{kFrench, "1 000", 1000},
                    Written{kFrench, "1\u202F000,5", 1000.5}, Written{kFrench, "1\u00A0000", 1000},
                    Written{kFrench, "1 00", std::nullopt}));

TEST(CValTest, ReadsTheSignsOfTheUsersOwnLocale)
{
    const UsersLocale german;
    PosixPlatform machine;
    const PlatformScope scope(machine);
    EXPECT_EQ(frmOptions::CVal("12,5"), 12.5);
    EXPECT_EQ(frmOptions::CVal("2.5"), 2.5);
}

TEST(NumberFieldsTest, AreSteppedByOneWithinTheBounds)
{
    OptionsHost host;
    PowerEdit& field = host.formFor(kelReaderTypeScantronScanMark4000).txtSystemPause;
    field.Text("11");
    field.StepDown();
    EXPECT_EQ(field.Text(), "10");
    field.StepDown();
    EXPECT_EQ(field.Text(), "10");
    field.Text("9999.5");
    field.StepUp();
    EXPECT_EQ(field.Text(), "10000");
    field.StepUp();
    EXPECT_EQ(field.Text(), "10000");
    field.Text("soon");
    field.StepUp();
    EXPECT_EQ(field.Text(), "11");
}

/// What no field takes for a number, whatever the locale.
class NoNumberTest : public testing::TestWithParam<const char*> {};

TEST_P(NoNumberTest, KeepsTheDialogOpenAndTheSettingAsItWas)
{
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark4000);
    host.reader().SleepTime(70);
    form.txtSystemPause.Text(GetParam());
    form.txtRecognitionThreshold.SetFocus();
    form.cmdOK.Click();
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(form.ActiveControl(), &form.txtSystemPause);
    EXPECT_EQ(form.txtSystemPause.Text(), GetParam());
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 13);
    EXPECT_EQ(host.reader().SleepTime(), 70);

    // Whoever saves all the same changes what can be read.
    form.txtMarkCutOff.Text("3");
    form.SaveValues(host.reader());
    EXPECT_EQ(host.reader().SleepTime(), 70);
    EXPECT_EQ(host.reader().MarkCutOff(), 3);

    form.txtSystemPause.Text("80");
    form.cmdOK.Click();
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(host.reader().SleepTime(), 80);
}

INSTANTIATE_TEST_SUITE_P(Texts, NoNumberTest,
                         testing::Values("soon", "nan", "inf", "", " ", "1,000", "12 mm", ".", "x.y"));

TEST(NumberFieldsTest, ThousandsAreSavedWhole)
{
    OptionsHost host;
    host.machine.process().numberSigns(kEnglish);
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark4000);
    form.txtSystemPause.Text("1,000");
    form.cmdOK.Click();
    EXPECT_EQ(host.reader().SleepTime(), 1000);
}

TEST(NumberFieldsTest, OfAModelThatDoesNotHaveThemHoldNobodyUp)
{
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypeNCSEZData);
    ASSERT_FALSE(form.txtMarkCutOff.Usable());
    host.reader().MarkCutOff(9);
    form.txtMarkCutOff.Text("none");
    form.cmdOK.Click();
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(host.reader().MarkCutOff(), 9);
    EXPECT_TRUE(host.heard().reports.empty());
}

TEST(NumberFieldsTest, AreSelectedOnEntry)
{
    OptionsHost host;
    for (PowerEdit* const field :
         {&host.form().txtRecognitionThreshold, &host.form().txtMarkDiscrimination, &host.form().txtMarkCutOff,
          &host.form().txtReaderTimeout, &host.form().txtSystemPause}) {
        field->GotFocus();
        EXPECT_EQ(field->SelectionStart(), 0) << field->Name();
        EXPECT_EQ(field->SelectionLength(), -1) << field->Name();
        EXPECT_EQ(host.form().ActiveControl(), field);
    }
}

TEST(NumberFieldsTest, TakeDigitsOnlyButForThePause)
{
    OptionsHost host;
    for (PowerEdit* const field : {&host.form().txtRecognitionThreshold, &host.form().txtMarkDiscrimination,
                                   &host.form().txtMarkCutOff, &host.form().txtReaderTimeout}) {
        EXPECT_EQ(field->KeyPress('7'), '7') << field->Name();
        EXPECT_EQ(field->KeyPress('a'), 0) << field->Name();
        EXPECT_EQ(field->KeyPress('.'), 0) << field->Name();
        EXPECT_EQ(field->KeyPress('-'), 0) << field->Name();
    }
    EXPECT_EQ(host.machine.screen().beeps(), 12);
    EXPECT_EQ(host.form().txtSystemPause.KeyPress('a'), 'a');
}

TEST(NumberFieldsTest, HaveTheirBoundsFromTheBeginning)
{
    OptionsHost host;
    EXPECT_EQ(bounds(host.form().txtReaderTimeout), "0 to 10");
    EXPECT_EQ(bounds(host.form().txtSystemPause), "10 to 10000");
    frmOptions fresh;
    EXPECT_EQ(fresh.txtReaderTimeout.Text(), "10");
    EXPECT_EQ(fresh.txtSystemPause.Text(), "50");
    EXPECT_EQ(fresh.txtMarkCutOff.Text(), "0");
}

TEST(NumberFieldsTest, AreValidatedEachByItsBounds)
{
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypePDIVMR138);
    form.txtMarkCutOff.Text("5");
    form.txtMarkCutOff.Validate();
    EXPECT_EQ(form.txtMarkCutOff.Text(), "192");
    form.txtSystemPause.Text("3");
    form.txtSystemPause.ValidationError();
    EXPECT_EQ(form.txtSystemPause.Text(), "10");
}

/// The keys from 1 to 255 that a field takes, as one text.
std::string takenKeys(ValidKeys keys, Boolean negative, Boolean decimal)
{
    std::string taken;
    for (Int16 key = 1; key < 256; ++key) {
        if (ValidKeyPress(key, keys, negative, decimal, True) != 0)
            taken += static_cast<char>(key);
    }
    return taken;
}

TEST(ValidKeyPressTest, TakesWhatItsKindTakes)
{
    const std::string editing = "\x02\x08\x0D";
    const std::string digits = "0123456789";
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(takenKeys(kValidKeysNumbers, False, False), editing + digits);
    EXPECT_EQ(takenKeys(kValidKeysNumbers, True, True), editing + "-." + digits);
    EXPECT_EQ(takenKeys(kValidKeysLetters, True, True), editing + " " + letters);
    EXPECT_EQ(takenKeys(kValidKeysBoth, False, False), editing + " " + digits + letters);
    EXPECT_EQ(takenKeys(kValidKeysBoth, True, True), editing + " -." + digits + letters);
}

TEST(ValidKeyPressTest, BeepsOnceForARefusedKeyUnlessQuiet)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    EXPECT_EQ(ValidKeyPress('a', kValidKeysNumbers, False, False, False), 0);
    EXPECT_EQ(machine.screen().beeps(), 1);
    EXPECT_EQ(ValidKeyPress('a', kValidKeysNumbers, False, False, True), 0);
    EXPECT_EQ(ValidKeyPress(8, kValidKeysNumbers, False, False, False), 8);
    EXPECT_EQ(machine.screen().beeps(), 1);
}

} // namespace
} // namespace kel::test
