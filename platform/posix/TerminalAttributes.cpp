// SPDX-License-Identifier: MIT
#include "platform/posix/TerminalAttributes.h"

#include "platform/FileDescriptor.h"

// The kernel's own structures. They clash with <termios.h>, so that this file stands alone.
#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

/// The kernel's code of a speed. The usual ones have codes of their own, which programs that know no others can read;
/// any other speed goes by its number.
std::uint32_t speedCode(Int32 baudRate)
{
    switch (baudRate) {
    case 110: return B110;
    case 300: return B300;
    case 600: return B600;
    case 1200: return B1200;
    case 2400: return B2400;
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    default: return BOTHER;
    }
}

} // namespace

bool TerminalAttributes::readFrom(int terminal)
{
    static_assert(kControlCharacters == NCCS);
    termios2 kernel{};
    if (retrying([&] { return ::ioctl(terminal, TCGETS2, &kernel); }) < 0)
        return false;
    input_ = kernel.c_iflag;
    output_ = kernel.c_oflag;
    control_ = kernel.c_cflag;
    local_ = kernel.c_lflag;
    discipline_ = kernel.c_line;
    std::copy(std::begin(kernel.c_cc), std::end(kernel.c_cc), characters_.begin());
    inputSpeed_ = kernel.c_ispeed;
    outputSpeed_ = kernel.c_ospeed;
    return true;
}

bool TerminalAttributes::writeTo(int terminal) const
{
    termios2 kernel{};
    kernel.c_iflag = input_;
    kernel.c_oflag = output_;
    kernel.c_cflag = control_;
    kernel.c_lflag = local_;
    kernel.c_line = discipline_;
    std::copy(characters_.begin(), characters_.end(), std::begin(kernel.c_cc));
    kernel.c_ispeed = inputSpeed_;
    kernel.c_ospeed = outputSpeed_;
    return retrying([&] { return ::ioctl(terminal, TCSETS2, &kernel); }) >= 0;
}

void TerminalAttributes::makeRaw()
{
    input_ &= IXON | IXOFF;
    output_ = 0;
    local_ = 0;
    control_ |= CREAD | CLOCAL;
    control_ &= ~static_cast<std::uint32_t>(HUPCL);
    // With VMIN 0 a read of 0 bytes would mean nothing yet; so it means that the line has hung up.
    characters_[VMIN] = 1;
    characters_[VTIME] = 0;
    characters_[VSTART] = 0x11;
    characters_[VSTOP] = 0x13;
}

void TerminalAttributes::markParity(bool value)
{
    input_ &= ~static_cast<std::uint32_t>(INPCK | PARMRK | IGNPAR);
    if (value)
        input_ |= INPCK | PARMRK;
}

void TerminalAttributes::set(const LineParameters& line)
{
    control_ &= ~static_cast<std::uint32_t>(CBAUD | CSIZE | PARENB | PARODD | CMSPAR | CSTOPB);
    // An input speed of B0 follows the output speed.
    control_ &= ~static_cast<std::uint32_t>(CIBAUD);
    control_ |= speedCode(line.baudRate);
    inputSpeed_ = outputSpeed_ = static_cast<std::uint32_t>(line.baudRate);

    switch (line.dataBits) {
    case 5: control_ |= CS5; break;
    case 6: control_ |= CS6; break;
    case 7: control_ |= CS7; break;
    default: control_ |= CS8; break;
    }
    switch (line.parity) {
    case 'E': control_ |= PARENB; break;
    case 'O': control_ |= PARENB | PARODD; break;
    case 'S': control_ |= PARENB | CMSPAR; break;
    case 'M': control_ |= PARENB | CMSPAR | PARODD; break;
    default: break;
    }
    if (line.stopBits > 1)
        control_ |= CSTOPB;

    input_ &= ~static_cast<std::uint32_t>(IXON | IXOFF | IXANY);
    control_ &= ~static_cast<std::uint32_t>(CRTSCTS);
    if (line.handshaking == 1 || line.handshaking == 3)
        input_ |= IXON | IXOFF;
    if (line.handshaking == 2 || line.handshaking == 3)
        control_ |= CRTSCTS;
}

LineParameters TerminalAttributes::line() const
{
    LineParameters line;
    line.baudRate = static_cast<Int32>(outputSpeed_);
    switch (control_ & CSIZE) {
    case CS5: line.dataBits = 5; break;
    case CS6: line.dataBits = 6; break;
    case CS7: line.dataBits = 7; break;
    default: line.dataBits = 8; break;
    }
    if (control_ & PARENB) {
        const bool odd = control_ & PARODD;
        if (control_ & CMSPAR)
            line.parity = odd ? 'M' : 'S';
        else
            line.parity = odd ? 'O' : 'E';
    }
    if (control_ & CSTOPB)
        line.stopBits = line.dataBits == 5 ? 1.5 : 2;
    line.handshaking = ((input_ & IXON) ? 1 : 0) + ((control_ & CRTSCTS) ? 2 : 0);
    return line;
}

bool TerminalAttributes::hangsUpOnClose() const
{
    return control_ & HUPCL;
}

void TerminalAttributes::hangUpOnClose(bool value)
{
    if (value)
        control_ |= HUPCL;
    else
        control_ &= ~static_cast<std::uint32_t>(HUPCL);
}

} // namespace kel
