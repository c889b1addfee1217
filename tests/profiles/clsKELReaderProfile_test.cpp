// SPDX-License-Identifier: MIT
#include "profiles/clsKELReaderProfile.h"

#include "simulators/platform/SimulatedPlatform.h"
#include "strings/VBLMRTSModule.h"
#include "tests/profiles/ProfileText.h"

#include <gtest/gtest.h>

#include <limits>

namespace kel::test {

namespace {

// A new record, in the order in which its fields are declared.
constexpr const char* kNewRecord = R"(
ReaderGrade           False   ReaderGradeEnabled           False   ReaderGradeVisible          True
Barcode               False   BarcodeEnabled               False   BarcodeVisible              True
Duplex                False   DuplexEnabled                False   DuplexVisible               True
Feeder                False   FeederEnabled                False   FeederVisible               True
                              PortEnabled                  True    PortVisible                 True
Printer               False   PrinterEnabled               False   PrinterVisible              True
Rejecter              False   RejecterEnabled              False   RejecterVisible             True
Windowing             False   WindowingEnabled             False   WindowingVisible            True
MarkCutOff            0
MarkDiscrimination    0       MarkDiscriminationEnabled    False   MarkDiscriminationVisible   True
RecognitionThreshold  0       RecognitionThresholdEnabled  False   RecognitionThresholdVisible True
RecognitionThresholdMinimum 0 RecognitionThresholdMaximum  0
MaxCols               0
InterfaceType         1
BaudRate              9600    BaudRateEnabled              True    BaudRateVisible             True
DataBits              0       DataBitsEnabled              True    DataBitsVisible             True
FlowControl           0       FlowControlEnabled           True    FlowControlVisible          True
StopBits              0.0     StopBitsEnabled              True    StopBitsVisible             True
ReaderType            0
Parity                empty   ParityEnabled                True    ParityVisible               True
SleepTime             50      SleepTimeEnabled             True    SleepTimeVisible            True
Timeout               10      TimeOutEnabled               True    TimeOutVisible              True
LocateEnabled         False
FirmwareEnabled       False
)";

constexpr const char* kInterfaceOrder = R"(
ReaderGrade ReaderGradeEnabled ReaderGradeVisible Barcode BarcodeEnabled BarcodeVisible Duplex DuplexEnabled
DuplexVisible Feeder FeederEnabled FeederVisible Rejecter RejecterEnabled RejecterVisible Printer PrinterEnabled
PrinterVisible InterfaceType BaudRate BaudRateEnabled BaudRateVisible DataBits DataBitsEnabled DataBitsVisible
FlowControl FlowControlEnabled FlowControlVisible StopBits StopBitsEnabled StopBitsVisible ReaderType MarkCutOff
MarkDiscrimination MarkDiscriminationEnabled MarkDiscriminationVisible RecognitionThreshold
RecognitionThresholdEnabled RecognitionThresholdVisible RecognitionThresholdMinimum RecognitionThresholdMaximum
SleepTime SleepTimeEnabled SleepTimeVisible Timeout TimeOutEnabled TimeOutVisible ReaderName Parity ParityEnabled
ParityVisible PortEnabled PortVisible Windowing WindowingEnabled WindowingVisible LocateEnabled FirmwareEnabled
MaxCols
)";

/// Another value than the given one.
template <class Value>
Value other(Value value)
{
    if constexpr (std::is_same_v<Value, Boolean>)
        return value == True ? False : True;
    else if constexpr (std::is_same_v<Value, std::string>)
        return value + "M";
    else
        return static_cast<Value>(static_cast<int>(value) + 1);
}

class Profile : public testing::Test {
protected:
    Profile() : scope_(machine_) {}

    SimulatedPlatform machine_;
    PlatformScope scope_;
    clsKELReaderProfile profile_;
};

TEST_F(Profile, NewRecordHasTheDefaultsOfTheInterface)
{
    RecordText expected;
    const std::vector<std::string> table = words(kNewRecord);
    for (std::size_t i = 0; i + 1 < table.size(); i += 2)
        expected[table[i]] = table[i + 1] == "empty" ? "" : table[i + 1];
    ASSERT_EQ(expected.size(), 58U);
    expected["ReaderName"] = VBLM_RTString(TextNumber(372));
    EXPECT_EQ(recordText(profile_), expected);
}

TEST_F(Profile, PropertiesComeInTheOrderOfTheInterface)
{
    std::vector<std::string> names;
    forEachProperty(profile_, [&](std::string_view name, const auto&) { names.emplace_back(name); });
    EXPECT_EQ(names, words(kInterfaceOrder));
}

TEST_F(Profile, WritingAPropertyChangesThatOneAlone){
#define KEL_WRITE(Name)                                                                                                \
    {                                                                                                                  \
        clsKELReaderProfile changed;                                                                                   \
        const auto value = other(changed.Name());                                                                      \
        changed.Name(value);                                                                                           \
        EXPECT_TRUE(changed.Name() == value) << #Name;                                                                 \
        RecordText expected = recordText(profile_);                                                                    \
        expected[#Name] = valueText(value);                                                                            \
        RecordText found = recordText(changed);                                                                        \
        found["ReaderName"] = expected["ReaderName"];                                                                  \
        EXPECT_EQ(found, expected) << #Name;                                                                           \
    }
#define KEL_SKIP(Name)
    KEL_PROFILE_PROPERTIES(KEL_WRITE, KEL_SKIP)
#undef KEL_SKIP
#undef KEL_WRITE
}

TEST_F(Profile, ValuesAreKeptAsTheyAreWritten)
{
    profile_.MarkCutOff(std::numeric_limits<Int16>::min());
    profile_.SleepTime(std::numeric_limits<Int32>::max());
    profile_.Timeout(-1);
    profile_.BaudRate(static_cast<kelReaderBaudRate>(4800));
    profile_.StopBits(3.75F);
    profile_.Parity("anything");
    profile_.Feeder(Boolean::fromBits(2));
    EXPECT_EQ(profile_.MarkCutOff(), -32768);
    EXPECT_EQ(profile_.SleepTime(), 2147483647);
    EXPECT_EQ(profile_.Timeout(), -1);
    EXPECT_EQ(static_cast<int>(profile_.BaudRate()), 4800);
    EXPECT_EQ(profile_.StopBits(), 3.75F);
    EXPECT_EQ(profile_.Parity(), "anything");
    EXPECT_EQ(profile_.Feeder().bits(), 2);
}

TEST_F(Profile, ReaderNameFollowsTheReaderType)
{
    profile_.ReaderType(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(profile_.ReaderName(), "Scantron Scanmark 2500");
    profile_.ReaderType(kelReaderTypeChatsworthACF100);
    EXPECT_EQ(profile_.ReaderName(), "Chatsworth Data ACP-100");
    profile_.ReaderType(static_cast<kelReaderType>(99));
    EXPECT_EQ(profile_.ReaderName(), "");
    profile_.ReaderType(static_cast<kelReaderType>(-1));
    EXPECT_EQ(profile_.ReaderName(), "");
    profile_.ReaderType(kelReaderTypeNone);
    EXPECT_EQ(profile_.ReaderName(), VBLM_RTString(TextNumber(372)));
}

} // namespace

} // namespace kel::test
