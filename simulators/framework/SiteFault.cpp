// SPDX-License-Identifier: MIT
#include "simulators/framework/SiteFault.h"

#include "types/Enumerations.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

namespace kel {

namespace {

using Kind = SiteFault::Kind;

constexpr unsigned bit(SimulatedFamily family)
{
    return 1U << static_cast<unsigned>(family);
}

constexpr unsigned kUsb = bit(SimulatedFamily::SekonicUsb);
constexpr unsigned kSerial = kUsb - 1;
constexpr unsigned kAll = kSerial | kUsb;

static_assert(SimulatedFamily::SekonicUsb == *std::rbegin(kSimulatedFamilies));

constexpr Int32 kMany = 1'000'000;
constexpr std::string_view kCount = "a number";
constexpr std::string_view kSheet = "the number of a sheet, from 1";

constexpr std::array kEntries = std::to_array<SiteFaultEntry>({
    {Kind::WrongSpeed, "wrong-speed", "BAUD", kCount, 110, kMany, kSerial,
     "The reader's speed is not the usual one of its model (BAUD; 9600, or 19200 where that is the usual "
     "one)."},
    {Kind::WrongParity, "wrong-parity", "N|E|O", "N, E or O", 0, 0, kSerial,
     "The reader's parity is not the usual one of its model (none for even, even for any other)."},
    {Kind::WrongDataBits, "wrong-data-bits", "7|8", "7 or 8", 7, 8, kSerial,
     "The reader's data bits are not the usual ones of its model (7 for 8, 8 for 7)."},
    {Kind::WrongStopBits, "wrong-stop-bits", "1|2", "1 or 2", 1, 2, kSerial,
     "The reader's stop bits are not the usual ones of its model (1 for 2, 2 for 1)."},
    {Kind::ClockOff, "clock-off", "PERCENT", "a number from -20 to 20", -20, 20, kSerial,
     "The clock of the reader's line is fast by this many percent (2); a negative number makes it slow."},
    {Kind::HandshakingUnwired, "handshaking-unwired", "", "", 0, 0, kSerial,
     "The handshaking lines are not wired: the reader never sends, and neither does a host with hardware handshaking."},
    {Kind::HandshakingOff, "handshaking-off", "BYTES", kCount, 1, kMany, kSerial,
     "Nothing holds the reader back: after this many bytes without a pause (16) the host's port loses every other "
     "one."},
    {Kind::XonXoffSwallowed, "xon-xoff-swallowed", "", "", 0, 0, kSerial,
     "A port or an adapter takes the bytes 11 and 13 for XON and XOFF, and they do not arrive."},
    {Kind::Echo, "echo", "", "", 0, 0, kSerial, "The cable is a half-duplex one: the host hears all that it sends."},
    {Kind::Lumps, "lumps", "MS", kCount, 1, 10'000, kSerial,
     "A USB adapter holds the reader's bytes and delivers them at intervals of this many milliseconds (16)."},
    {Kind::OtherModel, "other-model", "MODEL", "the number of a serial model", 1, kReaderTypeCount - 1, kSerial,
     "There is a reader of another model (of another family), with the usual settings of that model."},
    {Kind::LeftInMode, "left-in-mode", "", "", 0, 0, kAll,
     "A session that was killed has left the reader in the middle of something."},
    {Kind::StatusLonger, "status-longer", "", "", 0, 0, kSerial,
     "The reader's firmware sends its last byte of a status twice."},
    {Kind::StatusShorter, "status-shorter", "", "", 0, 0, kSerial,
     "The reader's firmware does not send the last byte of a status."},
    {Kind::SwitchedOff, "switched-off", "SHEET", "the number of a sheet, or 0", 0, kMany, kAll,
     "The reader is switched off while it sends a sheet (the first); with 0 it was never on."},
    {Kind::NotConnected, "not-connected", "", "", 0, 0, kUsb, "There is no reader on the cable."},
    {Kind::SetupRefused, "setup-refused", "", "", 0, 0, kUsb, "The reader does not accept the settings at the start."},
    {Kind::BarcodeUnitMissing, "barcode-unit-missing", "", "", 0, 0, kUsb, "The reader has no barcode unit."},
    {Kind::EmptyFeeder, "empty-feeder", "", "", 0, 0, kAll, "There are no sheets in the feeder."},
    {Kind::Jam, "jam", "SHEET", kSheet, 1, kMany, kAll, "A sheet (the first) is stuck in the transport."},
    {Kind::DoubleFeed, "double-feed", "SHEET", kSheet, 1, kMany, kAll,
     "A sheet (the first) takes the next one with it, and their marks are read as one sheet's."},
    {Kind::DirtyHead, "dirty-head", "COLUMN", "the number of a column, from 1", 1, 1000, kAll,
     "The read head is dirty: all cells of a column (the third) are read darker than they are."},
    {Kind::SkewedSheet, "skewed-sheet", "SHEET", kSheet, 1, kMany, kAll,
     "A sheet (the first) goes in at an angle, and two of its timing marks are missed."},
});

[[noreturn]] void refuseSiteFault(std::string_view text, const std::string& why)
{
    throw std::invalid_argument("fault \"" + std::string(text) + "\": " + why);
}

/// The number of an argument; a parity's letter is its code.
Int32 argumentFrom(std::string_view text, std::string_view argument, const SiteFaultEntry& entry)
{
    const std::string wanted = std::string(entry.argument) + " is " + std::string(entry.range);
    if (entry.kind == Kind::WrongParity) {
        if (argument != "N" && argument != "E" && argument != "O")
            refuseSiteFault(text, wanted);
        return argument.front();
    }
    Int32 value = 0;
    const char* const end = argument.data() + argument.size();
    const auto [stopped, error] = std::from_chars(argument.data(), end, value);
    if (error != std::errc{} || stopped != end || value < entry.lowest || value > entry.highest)
        refuseSiteFault(text, wanted);
    return value;
}

/// Faults that leave the dialogue as it is.
bool isOfPaper(Kind kind)
{
    return kind >= Kind::EmptyFeeder;
}

} // namespace

const char* nameOf(SimulatedFamily family)
{
    switch (family) {
    case SimulatedFamily::Apperson: return "Apperson";
    case SimulatedFamily::Chatsworth: return "Chatsworth";
    case SimulatedFamily::EZData: return "EZData";
    case SimulatedFamily::OpScan: return "OpScan";
    case SimulatedFamily::PeripheralDynamics: return "Peripheral Dynamics";
    case SimulatedFamily::Scanmark: return "Scanmark";
    case SimulatedFamily::SekonicSerial: return "Sekonic serial";
    case SimulatedFamily::SekonicUsb: break;
    }
    return "Sekonic USB";
}

std::span<const SiteFaultEntry> siteFaults()
{
    return kEntries;
}

const SiteFaultEntry& entryOf(SiteFault::Kind kind)
{
    return *std::ranges::find(kEntries, kind, &SiteFaultEntry::kind);
}

std::optional<SiteFault> parseSiteFault(std::string_view text)
{
    const std::size_t colon = text.find(':');
    const auto entry = std::ranges::find(kEntries, text.substr(0, colon), &SiteFaultEntry::name);
    if (entry == kEntries.end())
        return std::nullopt;
    if (colon == std::string_view::npos)
        return SiteFault{.kind = entry->kind, .value = {}};
    if (entry->argument.empty())
        refuseSiteFault(text, std::string(entry->name) + " takes no argument");
    return SiteFault{.kind = entry->kind, .value = argumentFrom(text, text.substr(colon + 1), *entry)};
}

std::string toText(const SiteFault& fault)
{
    std::string text(entryOf(fault.kind).name);
    if (!fault.value)
        return text;
    if (fault.kind == Kind::WrongParity)
        return text + ':' + static_cast<char>(*fault.value);
    return text + ':' + std::to_string(*fault.value);
}

bool SiteFaults::excuseHost() const
{
    return std::ranges::any_of(faults_, [](const SiteFault& fault) { return !isOfPaper(fault.kind); });
}

const SiteFault* SiteFaults::find(SiteFault::Kind kind) const
{
    const auto found = std::ranges::find(faults_, kind, &SiteFault::kind);
    return found == faults_.end() ? nullptr : &*found;
}

} // namespace kel
