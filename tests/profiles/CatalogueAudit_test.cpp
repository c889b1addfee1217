// SPDX-License-Identifier: MIT
#include "dispatch/DriverFamilies.h"
#include "profiles/clsKELReaderProfiles.h"
#include "tests/profiles/ProfileText.h"
#include "types/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <set>

namespace kel::test {

namespace {

using Record = clsKELReaderProfile;

/// Something that a sound record does not have, with a way of putting it into one.
struct Contradiction {
    const char* What;
    std::function<bool(const Record&)> Found;
    std::function<void(Record&)> Damage;
};

/// Models that have a contradiction on purpose.
struct Exception {
    const char* What;
    std::set<Int32> Models;
    const char* Why;
};

bool isSerial(const Record& record)
{
    return record.InterfaceType() == kelReaderInterfaceTypeSerial;
}

bool within(int value, int low, int high)
{
    return value >= low && value <= high;
}

bool hasRange(const Record& record)
{
    return record.RecognitionThresholdMinimum() != record.RecognitionThresholdMaximum();
}

template <class Value>
bool isOneOf(const Value& value, std::initializer_list<std::type_identity_t<Value>> values)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

/// Whether any setting may be changed where it cannot be seen.
bool hasInvisibleControl(const Record& record)
{
    const RecordText text = recordText(record);
    return std::ranges::any_of(text, [&](const auto& property) {
        const std::string suffix = "Enabled";
        if (!property.first.ends_with(suffix) || property.second != "True")
            return false;
        const auto visible = text.find(property.first.substr(0, property.first.size() - suffix.size()) + "Visible");
        return visible != text.end() && visible->second != "True";
    });
}

bool isHiddenOption(const Record& record)
{
    const auto hidden = [](Boolean on, Boolean visible) { return on && !visible; };
    return hidden(record.ReaderGrade(), record.ReaderGradeVisible()) ||
           hidden(record.Barcode(), record.BarcodeVisible()) || hidden(record.Duplex(), record.DuplexVisible()) ||
           hidden(record.Feeder(), record.FeederVisible()) || hidden(record.Printer(), record.PrinterVisible()) ||
           hidden(record.Rejecter(), record.RejecterVisible()) || hidden(record.Windowing(), record.WindowingVisible());
}

bool hasMixedLineFlags(const Record& record)
{
    const std::array enabled = {record.BaudRateEnabled(), record.DataBitsEnabled(), record.ParityEnabled(),
                                record.StopBitsEnabled(), record.FlowControlEnabled()};
    const std::array visible = {record.BaudRateVisible(), record.DataBitsVisible(), record.ParityVisible(),
                                record.StopBitsVisible(), record.FlowControlVisible()};
    const auto mixed = [](const auto& flags) {
        return std::ranges::any_of(flags, [&](Boolean flag) { return flag != flags[0]; });
    };
    return mixed(enabled) || mixed(visible);
}

bool hasImpossibleLine(const Record& record)
{
    const bool speed = isOneOf<int>(
        record.BaudRate(), {110, 300, 600, 1200, 2400, 9600, 14400, 19200, 28800, 38400, 56000, 128000, 256000});
    return !speed || !(record.DataBits() == 0 || within(record.DataBits(), 4, 8)) ||
           !isOneOf<std::string>(record.Parity(), {"", "N", "O", "E", "M"}) ||
           !isOneOf(record.StopBits(), {0.0F, 1.0F, 1.5F, 2.0F}) || !within(record.FlowControl(), 0, 3);
}

bool hasLineDefaults(const Record& record)
{
    return record.DataBits() != 0 && !record.Parity().empty() && record.StopBits() != 0;
}

bool hasAnyLineDefault(const Record& record)
{
    return record.DataBits() != 0 || !record.Parity().empty() || record.StopBits() != 0 ||
           record.FlowControl() != kelReaderFlowControlNone || record.BaudRate() != kelReaderBaudRate9600;
}

const std::vector<Contradiction>& contradictions()
{
    static const std::vector<Contradiction> all = {
        {"a setting may be changed but is not shown", hasInvisibleControl,
         [](Record& record) { record.SleepTimeVisible(False); }},
        {"an option is on but not shown", isHiddenOption,
         [](Record& record) {
             record.WindowingVisible(False);
             record.WindowingEnabled(False);
         }},
        {"grading or printing is on by default",
         [](const Record& record) { return record.ReaderGrade() || record.Printer(); },
         [](Record& record) { record.Printer(True); }},
        {"the range is upside down",
         [](const Record& record) {
             return record.RecognitionThresholdMinimum() > record.RecognitionThresholdMaximum();
         },
         [](Record& record) { record.RecognitionThresholdMinimum(16); }},
        {"the threshold is outside its range",
         [](const Record& record) {
             return !within(record.RecognitionThreshold(), record.RecognitionThresholdMinimum(),
                            record.RecognitionThresholdMaximum());
         },
         [](Record& record) { record.RecognitionThreshold(16); }},
        {"the cut-off is outside the range",
         [](const Record& record) {
             return !within(record.MarkCutOff(), record.RecognitionThresholdMinimum(),
                            record.RecognitionThresholdMaximum());
         },
         [](Record& record) { record.MarkCutOff(-1); }},
        {"the discrimination is outside the range",
         [](const Record& record) {
             return !within(record.MarkDiscrimination(), 0, record.RecognitionThresholdMaximum());
         },
         [](Record& record) { record.MarkDiscrimination(16); }},
        {"the threshold may be changed but has no range",
         [](const Record& record) { return record.RecognitionThresholdEnabled() && !hasRange(record); },
         [](Record& record) { record.RecognitionThresholdMaximum(0); }},
        {"the threshold has a range but may not be changed",
         [](const Record& record) { return !record.RecognitionThresholdEnabled() && hasRange(record); },
         [](Record& record) { record.RecognitionThresholdEnabled(False); }},
        {"cut-off and discrimination may be changed but have no range",
         [](const Record& record) { return record.MarkDiscriminationEnabled() && !hasRange(record); },
         [](Record& record) { record.RecognitionThresholdMaximum(0); }},
        {"of threshold and discrimination one alone may be changed",
         [](const Record& record) {
             return record.MarkDiscriminationEnabled() != record.RecognitionThresholdEnabled();
         },
         [](Record& record) { record.MarkDiscriminationEnabled(False); }},
        {"of threshold and discrimination one alone is shown",
         [](const Record& record) {
             return record.MarkDiscriminationVisible() != record.RecognitionThresholdVisible();
         },
         [](Record& record) { record.RecognitionThresholdVisible(False); }},
        {"the settings of the line do not go together", hasMixedLineFlags,
         [](Record& record) { record.ParityEnabled(False); }},
        {"the line has values that no line has", hasImpossibleLine, [](Record& record) { record.StopBits(2.5F); }},
        {"a serial line may not be changed",
         [](const Record& record) { return isSerial(record) && !record.BaudRateEnabled(); },
         [](Record& record) { record.BaudRateEnabled(False); }},
        {"a serial line has no values",
         [](const Record& record) { return isSerial(record) && !hasLineDefaults(record); },
         [](Record& record) { record.Parity(""); }},
        {"a USB model has values of a line",
         [](const Record& record) { return !isSerial(record) && hasAnyLineDefault(record); },
         [](Record& record) { record.InterfaceType(kelReaderInterfaceTypeUSB); }},
        {"a USB model lets the user choose a port or set a line",
         [](const Record& record) {
             return !isSerial(record) && (record.PortEnabled() || record.BaudRateEnabled() || record.LocateEnabled());
         },
         [](Record& record) { record.InterfaceType(kelReaderInterfaceTypeUSB); }},
        {"the model is neither serial nor USB",
         [](const Record& record) { return !isSerial(record) && record.InterfaceType() != kelReaderInterfaceTypeUSB; },
         [](Record& record) { record.InterfaceType(static_cast<kelReaderInterfaceType>(0)); }},
        {"the model can be searched for but tells no firmware",
         [](const Record& record) { return record.LocateEnabled() && !record.FirmwareEnabled(); },
         [](Record& record) { record.LocateEnabled(True); }},
        {"the model tells its firmware in a family that does not",
         [](const Record& record) {
             const DriverFamily* const family = driverFamily(record.ReaderType());
             return record.FirmwareEnabled() && !(family && family->Firmware);
         },
         [](Record& record) { record.FirmwareEnabled(True); }},
        {"the model reads no column", [](const Record& record) { return record.MaxCols() < 1; },
         [](Record& record) { record.MaxCols(0); }},
        {"the model has read windows but no page's width",
         [](const Record& record) { return record.Windowing() && record.MaxCols() < 48; },
         [](Record& record) { record.MaxCols(12); }},
        {"the time-out is one that the start of a reader would replace",
         [](const Record& record) { return !within(record.Timeout(), 1, 600); },
         [](Record& record) { record.Timeout(0); }},
    };
    return all;
}

const std::vector<Exception>& exceptions()
{
    static const std::vector<Exception> all = {
        {"an option is on but not shown", {23, 37}, "these readers always reject, and there is nothing to choose"},
        {"the threshold is outside its range",
         {18, 20, 21, 22, 35, 39, 40, 41},
         "the 1 is a fixed default of a reader without an adjustable threshold"},
        {"the cut-off is outside the range", {18, 20, 21, 22, 35, 41}, "a fixed default, as that of the threshold"},
        {"the discrimination is outside the range",
         {18, 20, 21, 22, 35, 41},
         "a fixed default, as that of the threshold"},
        {"of threshold and discrimination one alone may be changed",
         {23, 37},
         "with a fixed link the threshold is the one number that is left to the user"},
        {"of threshold and discrimination one alone is shown",
         {23, 37},
         "with a fixed link the threshold is the one number that is left to the user"},
        {"a serial line may not be changed", {23, 37}, "these readers know one setting of the line only"},
        {"a serial line has no values", {0}, "no reader, no line"},
        {"the model reads no column", {0}, "no reader, no sheet"},
    };
    return all;
}

std::set<std::string> contradictionsOf(const Record& record)
{
    std::set<std::string> found;
    for (const Contradiction& contradiction : contradictions())
        if (contradiction.Found(record))
            found.insert(contradiction.What);
    return found;
}

TEST(CatalogueAudit, NoRecordContradictsItselfUnintentionally)
{
    std::map<Int32, std::set<std::string>> intended;
    for (const Exception& exception : exceptions())
        for (const Int32 model : exception.Models)
            intended[model].insert(exception.What);

    const clsKELReaderProfiles profiles;
    ASSERT_EQ(profiles.Count(), kReaderTypeCount);
    for (Int32 model = 0; model < profiles.Count(); ++model)
        EXPECT_EQ(contradictionsOf(*profiles.Item(CStr(model))), intended[model]) << "model " << model;
}

TEST(CatalogueAudit, EachContradictionIsFoundWhereItIs)
{
    for (const Contradiction& contradiction : contradictions()) {
        const clsKELReaderProfiles profiles;
        const Reference<Record> record = profiles.Item("13");
        ASSERT_TRUE(contradictionsOf(*record).empty());
        contradiction.Damage(*record);
        EXPECT_TRUE(contradictionsOf(*record).contains(contradiction.What)) << contradiction.What;
    }
}

TEST(CatalogueAudit, ExceptionsNameContradictionsThatAreLookedFor)
{
    for (const Exception& exception : exceptions()) {
        const auto known = std::ranges::find_if(contradictions(), [&](const Contradiction& contradiction) {
            return std::string_view(contradiction.What) == exception.What;
        });
        EXPECT_NE(known, contradictions().end()) << exception.What;
        EXPECT_FALSE(std::string_view(exception.Why).empty());
    }
}

} // namespace

} // namespace kel::test
