// SPDX-License-Identifier: MIT
#include "cli/check/Causes.h"

#include <algorithm>
#include <array>

namespace kel {

namespace {

constexpr std::array kEntries = std::to_array<CauseEntry>({
    {Cause::LineAbsent, "line-absent", "The line does not exist.",
     "Connect the port or the adapter; 'kelreader ports' lists the devices."},
    {Cause::LineNotPermitted, "line-not-permitted", "You are not allowed to open the line.",
     "Join the group that the device belongs to, and log in again."},
    {Cause::LineBusy, "line-busy", "Another program has the line open.", "End that program, then check again."},
    {Cause::LineRefused, "line-refused", "The port does not accept the line settings of this model.",
     "Use another port or adapter, or set the reader to settings that the port accepts."},
    {Cause::LineHungUp, "line-hung-up",
     "The line has hung up: the reader or its adapter was unplugged or switched off.",
     "Connect it, switch it on, and check again."},
    {Cause::LibraryMissing, "library-missing", "The library of the readers' maker cannot be loaded.",
     "Install the maker's library, or name its file with --omrapi."},
    {Cause::NotConnected, "not-connected", "There is no reader on the USB cable, or it is switched off.",
     "Switch the reader on, connect its cable, and close other programs that use it."},
    {Cause::Echo, "echo", "The cable sends everything back to the host: it is a half-duplex cable, or two wires touch.",
     "Use the cable that the reader's manual asks for, and turn local echo off in the adapter."},
    {Cause::WrongSpeed, "wrong-speed", "The reader's speed is not the usual one of this model.",
     "Set the reader back, or give its speed with --set BaudRate=N."},
    {Cause::WrongParity, "wrong-parity", "The reader's parity is not the usual one of this model.",
     "Set the reader back, or give its parity with --set Parity=E, N or O."},
    {Cause::WrongDataBits, "wrong-data-bits", "The reader's data bits are not the usual ones of this model.",
     "Set the reader back, or give its data bits with --set DataBits=7 or 8."},
    {Cause::OtherModel, "other-model", "A reader of another model is on the line.",
     "Check again with the --model that is named."},
    {Cause::HandshakingUnwired, "handshaking-unwired",
     "The reader is on, but its handshaking lines (RTS, CTS) do not reach this machine.",
     "Use a cable with RTS and CTS, as the reader's manual asks for."},
    {Cause::NoAnswer, "no-answer", "Nothing answers: the reader is off, or the cable does not reach it.",
     "Switch the reader on, check both ends of the cable and the port; then try --search."},
    {Cause::Garbled, "garbled", "Something answers, but not as this model does.",
     "Try --search, which looks for speed, parity, data bits and model."},
    {Cause::BytesLost, "bytes-lost", "Bytes are lost: nothing holds the reader back when it sends much at once.",
     "Turn hardware handshaking on in reader and settings (FlowControl), with a cable that has RTS and CTS, or lower "
     "the speed."},
    {Cause::BytesSwallowed, "bytes-swallowed",
     "The bytes 11 and 13 do not get through: the port or an adapter takes them for XON and XOFF.",
     "Turn XON/XOFF off in the adapter, the terminal server or the port."},
    {Cause::StatusLonger, "status-longer", "The reader's status has one byte more than this model usually sends.",
     "Send the report to support: the reader has another firmware version. Note the version on its label."},
    {Cause::StatusShorter, "status-shorter", "The reader's status has one byte fewer than this model usually sends.",
     "Send the report to support: the reader has another firmware version. Note the version on its label."},
    {Cause::SetupRefused, "setup-refused", "The reader does not accept the settings at the start.",
     "Switch the reader off and on. If that does not help, send the report to support."},
    {Cause::BarcodeUnitMissing, "barcode-unit-missing",
     "The settings ask for barcodes, but the reader has no barcode unit.",
     "Turn barcodes off for this reader (--set Barcode=false), or have the unit installed."},
    {Cause::SwitchedOff, "switched-off", "The reader fell silent in the middle of a sheet.",
     "Check its power supply and the cable, switch it on, and take the sheet out."},
    {Cause::LeftInMode, "left-in-mode",
     "The check found the reader in the middle of something: a session was killed, or another program changed its "
     "mode.",
     "Take sheets out of it, switch it off and on, and check again."},
    {Cause::SkewedSheet, "skewed-sheet", "Timing marks of a sheet were missed: it went in at an angle, or is damaged.",
     "Set the guides of the feeder to the sheet's width, and read the sheet again."},
    {Cause::Jam, "jam", "A sheet is stuck, or the reader reports a fault of its sheet path.",
     "Open the sheet path, take the sheet out, and read it again."},
    {Cause::DoubleFeed, "double-feed", "Fewer sheets came than you put in: two went through together.",
     "Fan the sheets, check the feeder's separation, and count them again."},
    {Cause::EmptyFeeder, "empty-feeder", "No sheet came: the feeder is empty, or does not feed the sheet.",
     "Put sheets in, press the reader's start key if it has one, and check again."},
    {Cause::DirtyHead, "dirty-head", "A column is dark on every sheet: the read head is dirty there.",
     "Clean the read head as the reader's manual says."},
    {Cause::SheetsDiffer, "sheets-differ", "The same sheet was not read the same way twice.",
     "Feed the same sheet each time. If you did, clean the read head and check the recognition threshold."},
    {Cause::OutOfRange, "out-of-range", "Marks have values that this model does not send.",
     "Check that the model is the right one, and send the report to support."},
    {Cause::Reported, "reported", "The session reports a failure.", "Do what the report says."},
    {Cause::WrongStopBits, "wrong-stop-bits",
     "The reader's stop bits are not the usual ones of this model. Sheets are read all the same.",
     "Set the reader back, or give its stop bits with --set StopBits=1 or 2."},
    {Cause::ClockOff, "clock-off", "The clock of the reader's line is off. Sheets are read all the same.",
     "Keep the cable short. If characters go wrong, have the reader's interface checked."},
    {Cause::Lumps, "lumps", "A USB adapter holds bytes back and delivers them in lumps. Sheets are read more slowly.",
     "Lower the adapter's latency timer to 1 ms."},
    {Cause::Interrupted, "interrupted", "The check was stopped before it ended.", "Check again."},
});

static_assert(kEntries.size() == static_cast<std::size_t>(Cause::Interrupted));

constexpr CauseEntry kNone{Cause::None, "", "", ""};

} // namespace

std::span<const CauseEntry> causes()
{
    return kEntries;
}

const CauseEntry& entryOf(Cause cause)
{
    return cause == Cause::None ? kNone : kEntries[static_cast<std::size_t>(cause) - 1];
}

std::string_view nameOf(Cause cause)
{
    return entryOf(cause).name;
}

Cause causeNamed(std::string_view name)
{
    const auto* const found = std::ranges::find(kEntries, name, &CauseEntry::name);
    return found == kEntries.end() ? Cause::None : found->cause;
}

} // namespace kel
