// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Numbers.h"

#include <string>
#include <string_view>

namespace kel {

/// A serial line with reception in the background: what the drivers call `mscComm`.
///
/// Characters are bytes; a text has one byte for each character, zero bytes included.
class SerialControl {
public:
    virtual ~SerialControl() = default;

    /// The port number, 1 to 16; a map of the platform says which device that is. Set before opening;
    /// 8005 "Port already open" when the line is open.
    [[nodiscard]] virtual Int16 CommPort() const = 0;
    virtual void CommPort(Int16 value) = 0;

    /// Speed, parity letter (N E O M S), data bits and stop bits: "9600,N,8,1", "1200,E,7,1.5".
    /// A text of another form is 380 "Invalid property value".
    [[nodiscard]] virtual std::string Settings() const = 0;
    virtual void Settings(const std::string& value) = 0;

    /// 0 none, 1 XON/XOFF, 2 hardware (RTS), 3 both; anything else is 380.
    [[nodiscard]] virtual Int32 Handshaking() const = 0;
    virtual void Handshaking(Int32 value) = 0;

    /// Opens or closes the line. Opening fails with 8002 (no such port), 8005 (open already, here or in another
    /// process), 8010 (not permitted, or not available), 8012 (not a serial device), 380 or 8015 (a setting that the
    /// device does not accept); the text says which port and what. Closing a closed line does nothing.
    [[nodiscard]] virtual Boolean PortOpen() const = 0;
    virtual void PortOpen(Boolean value) = 0;

    /// The maximum number of characters that one `Input` returns; 0 is all that wait. A negative number is 380.
    [[nodiscard]] virtual Int32 InputLen() const = 0;
    virtual void InputLen(Int32 value) = 0;

    /// How many received characters wait, those that have arrived just now included; needs no message pump. On a closed
    /// line 8018; on a line that has hung up 8020, once everything that came before has been read.
    [[nodiscard]] virtual Int32 InBufferCount() = 0;

    /// Returns up to `InputLen` characters, and removes them from the input; empty if none wait. Fails as
    /// `InBufferCount` does.
    [[nodiscard]] virtual std::string Input() = 0;

    /// Sends all bytes, unchanged. On a closed line 8018; 8020 when the device is gone or accepts nothing.
    virtual void Output(std::string_view bytes) = 0;
};

} // namespace kel
