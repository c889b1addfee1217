// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The readers that share a simulated reader, or the simulated library.
enum class SimulatedFamily {
    Apperson,
    Chatsworth,
    EZData,
    OpScan,
    PeripheralDynamics,
    Scanmark,
    SekonicSerial,
    SekonicUsb,
};

inline constexpr SimulatedFamily kSimulatedFamilies[] = {
    SimulatedFamily::Apperson,      SimulatedFamily::Chatsworth,         SimulatedFamily::EZData,
    SimulatedFamily::OpScan,        SimulatedFamily::PeripheralDynamics, SimulatedFamily::Scanmark,
    SimulatedFamily::SekonicSerial, SimulatedFamily::SekonicUsb};

/// "Apperson", "Sekonic USB" and so on.
[[nodiscard]] const char* nameOf(SimulatedFamily family);

/// Something that is wrong where the reader stands: with its cable, its set-up or its paper. Unlike a `Fault` it has no
/// place in what the reader sends.
struct SiteFault {
    enum class Kind {
        WrongSpeed,
        WrongParity,
        WrongDataBits,
        WrongStopBits,
        ClockOff,
        HandshakingUnwired,
        HandshakingOff,
        XonXoffSwallowed,
        Echo,
        Lumps,
        OtherModel,
        LeftInMode,
        StatusLonger,
        StatusShorter,
        SwitchedOff,
        NotConnected,
        SetupRefused,
        BarcodeUnitMissing,
        EmptyFeeder,
        Jam,
        DoubleFeed,
        DirtyHead,
        SkewedSheet,
    };

    Kind kind{};
    std::optional<Int32> value = {}; ///< the argument; of a parity the code of its letter

    friend bool operator==(const SiteFault&, const SiteFault&) = default;
};

/// What is known of a kind of fault.
struct SiteFaultEntry {
    SiteFault::Kind kind;
    std::string_view name;     ///< "wrong-speed"
    std::string_view argument; ///< what may follow its colon, "BAUD"; empty for none
    std::string_view range;    ///< what that may be, in words
    Int32 lowest = 0;
    Int32 highest = 0;
    unsigned families = 0;     ///< a bit a family, of the family's number
    std::string_view sentence; ///< what it is

    [[nodiscard]] bool appliesTo(SimulatedFamily family) const
    {
        return (families >> static_cast<unsigned>(family) & 1U) != 0;
    }
};

/// All of them: first those of the line, then those of the reader, then those of the paper.
[[nodiscard]] std::span<const SiteFaultEntry> siteFaults();
[[nodiscard]] const SiteFaultEntry& entryOf(SiteFault::Kind kind);

/// A fault from its text, NAME or NAME:ARGUMENT; nothing if the name is that of no such fault. Throws
/// std::invalid_argument for an argument that is wrong.
[[nodiscard]] std::optional<SiteFault> parseSiteFault(std::string_view text);
[[nodiscard]] std::string toText(const SiteFault& fault);

/// The faults of a reader, as its parts ask for them.
class SiteFaults {
public:
    SiteFaults() = default;
    explicit SiteFaults(std::vector<SiteFault> faults) : faults_(std::move(faults)) {}

    [[nodiscard]] bool has(SiteFault::Kind kind) const { return find(kind) != nullptr; }

    /// The argument of a fault, a fallback if it has none; nothing if there is no such fault.
    [[nodiscard]] std::optional<Int32> value(SiteFault::Kind kind, Int32 fallback) const
    {
        const SiteFault* fault = find(kind);
        return fault ? std::optional(fault->value.value_or(fallback)) : std::nullopt;
    }

    [[nodiscard]] const std::vector<SiteFault>& all() const noexcept { return faults_; }

    /// Whether the host cannot be blamed for what the reader hears or is in the middle of.
    [[nodiscard]] bool excuseHost() const;

private:
    [[nodiscard]] const SiteFault* find(SiteFault::Kind kind) const;

    std::vector<SiteFault> faults_;
};

} // namespace kel
