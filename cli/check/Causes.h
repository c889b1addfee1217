// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

namespace kel {

/// What can be wrong between a host and a reader, as far as a check can find out. The first of several explains the
/// others.
enum class Cause {
    None,
    LineAbsent,
    LineNotPermitted,
    LineBusy,
    LineRefused,
    LineHungUp,
    LibraryMissing,
    NotConnected,
    Echo,
    WrongSpeed,
    WrongParity,
    WrongDataBits,
    OtherModel,
    HandshakingUnwired,
    NoAnswer,
    Garbled,
    BytesLost,
    BytesSwallowed,
    StatusLonger,
    StatusShorter,
    SetupRefused,
    BarcodeUnitMissing,
    SwitchedOff,
    LeftInMode,
    SkewedSheet,
    Jam,
    DoubleFeed,
    EmptyFeeder,
    DirtyHead,
    SheetsDiffer,
    OutOfRange,
    Reported,
    WrongStopBits,
    ClockOff,
    Lumps,
    Interrupted,
};

struct CauseEntry {
    Cause cause;
    std::string_view name;     ///< "wrong-speed"
    std::string_view sentence; ///< what is wrong
    std::string_view advice;   ///< what to do
};

/// All but `None`, in the order of the enumeration.
[[nodiscard]] std::span<const CauseEntry> causes();
[[nodiscard]] const CauseEntry& entryOf(Cause cause);

/// The name of a cause, empty for none; and back, none for a name that is unknown.
[[nodiscard]] std::string_view nameOf(Cause cause);
[[nodiscard]] Cause causeNamed(std::string_view name);

} // namespace kel
