// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/ProfileValues.h"
#include "types/Export.h"
#include "types/Hidden.h"

#include <string>
#include <string_view>

// clang-format off
/// The properties of a profile in the order of its interface: `property(Name)` for those that are read and written,
/// `readOnly(Name)` for those that are only read.
#define KEL_PROFILE_PROPERTIES(property, readOnly)                                                                     \
    property(ReaderGrade) property(ReaderGradeEnabled) property(ReaderGradeVisible)                                    \
    property(Barcode) property(BarcodeEnabled) property(BarcodeVisible)                                                \
    property(Duplex) property(DuplexEnabled) property(DuplexVisible)                                                   \
    property(Feeder) property(FeederEnabled) property(FeederVisible)                                                   \
    property(Rejecter) property(RejecterEnabled) property(RejecterVisible)                                             \
    property(Printer) property(PrinterEnabled) property(PrinterVisible)                                                \
    property(InterfaceType)                                                                                            \
    property(BaudRate) property(BaudRateEnabled) property(BaudRateVisible)                                             \
    property(DataBits) property(DataBitsEnabled) property(DataBitsVisible)                                             \
    property(FlowControl) property(FlowControlEnabled) property(FlowControlVisible)                                    \
    property(StopBits) property(StopBitsEnabled) property(StopBitsVisible)                                             \
    property(ReaderType)                                                                                               \
    property(MarkCutOff)                                                                                               \
    property(MarkDiscrimination) property(MarkDiscriminationEnabled) property(MarkDiscriminationVisible)               \
    property(RecognitionThreshold) property(RecognitionThresholdEnabled) property(RecognitionThresholdVisible)         \
    property(RecognitionThresholdMinimum) property(RecognitionThresholdMaximum)                                        \
    property(SleepTime) property(SleepTimeEnabled) property(SleepTimeVisible)                                          \
    property(Timeout) property(TimeOutEnabled) property(TimeOutVisible)                                                \
    readOnly(ReaderName)                                                                                               \
    property(Parity) property(ParityEnabled) property(ParityVisible)                                                   \
    property(PortEnabled) property(PortVisible)                                                                        \
    property(Windowing) property(WindowingEnabled) property(WindowingVisible)                                          \
    property(LocateEnabled) property(FirmwareEnabled)                                                                  \
    property(MaxCols)
// clang-format on

namespace kel {

template <class Object>
class StatedModule;

/// The capability record of one model. Each field of `ProfileValues` is a property here: `X()` reads it and
/// `X(value)` writes it, unchanged and without any check. A host may change a record; the options dialog and
/// `LoadDefaults` then use the new value.
class KEL_PUBLIC clsKELReaderProfile {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderProfile";

    clsKELReaderProfile();
    /// A record with these values.
    explicit clsKELReaderProfile(const ProfileValues& values);
    clsKELReaderProfile(const clsKELReaderProfile& other);
    clsKELReaderProfile& operator=(const clsKELReaderProfile& other);
    ~clsKELReaderProfile();

// clang-format off
#define KEL_PROPERTY(Name)                                                                                             \
    [[nodiscard]] decltype(ProfileValues::Name) Name() const;                                                          \
    void Name(decltype(ProfileValues::Name) value);
#define KEL_NOT_STORED(Name)
    // clang-format on
    KEL_PROFILE_PROPERTIES(KEL_PROPERTY, KEL_NOT_STORED)
#undef KEL_NOT_STORED
#undef KEL_PROPERTY

    /// The model's name as users see it, looked up by `ReaderType` at each call; empty if that is not a model.
    [[nodiscard]] std::string ReaderName() const;

private:
    template <class Object>
    friend class StatedModule;

    [[nodiscard]] std::string dumpMembers() const;

    struct Fields;
    Hidden<Fields> fields_;
};

/// Calls `visit(name, value)` for every property of a profile, in the order of the interface.
template <class Visitor>
void forEachProperty(const clsKELReaderProfile& profile, Visitor&& visit)
{
#define KEL_VISIT(Name) visit(std::string_view(#Name), profile.Name());
    KEL_PROFILE_PROPERTIES(KEL_VISIT, KEL_VISIT)
#undef KEL_VISIT
}

} // namespace kel
