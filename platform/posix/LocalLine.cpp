// SPDX-License-Identifier: MIT
#include "platform/posix/LocalLine.h"

#include "platform/posix/LineOpenFailure.h"
#include "platform/posix/SteadyTime.h"
#include "types/Text.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <system_error>
#include <termios.h>

namespace kel {

namespace {

/// Receiver and sender may differ by about that much in all before a character of ten bits is misread.
constexpr double kSpeedTolerance = 0.03;

/// How long output that is under way may keep a line from closing.
constexpr Moment kFarewell = std::chrono::milliseconds(500);

std::string deviceFile(const std::string& device)
{
    return device.find('/') == std::string::npos ? "/dev/" + device : device;
}

std::string errorText(int error)
{
    return std::generic_category().message(error);
}

/// "19200 baud, 8 data bits, parity N, 2 stop bits, handshaking 0".
std::string describe(const LineParameters& line)
{
    return CStr(std::int64_t{line.baudRate}) + " baud, " + CStr(std::int64_t{line.dataBits}) + " data bits, parity " +
           line.parity + ", " + CStr(line.stopBits) + " stop bits, handshaking " + CStr(std::int64_t{line.handshaking});
}

} // namespace

LocalLine::LocalLine(Int16 port, const std::string& device)
    : device_(deviceFile(device)), name_(lineName(port, device_)), terminal_(open())
{
    if (!terminal_.isOpen() || !former_.readFrom(terminal_.number()) || !claim())
        throw lineOpenFailure(port, device_, errno);
}

LocalLine::~LocalLine()
{
    letOutputLeave();
    // The modem lines stay as they are, so that closing and opening anew is no signal to the reader.
    former_.hangUpOnClose(false);
    static_cast<void>(former_.writeTo(terminal_.number()));
    if (hasModemLines_)
        ::ioctl(terminal_.number(), TIOCNXCL);
}

int LocalLine::open() const
{
    struct stat facts {};
    if (::stat(device_.c_str(), &facts) != 0)
        return -1;
    if (!S_ISCHR(facts.st_mode)) {
        errno = ENOTTY;
        return -1;
    }
    return retrying([&] { return ::open(device_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); });
}

/// Takes the device for this object alone; false leaves the cause in `errno`.
///
/// The lock works between all who ask for it, and ends with its owner, however that ends. The exclusive mode of the
/// terminal keeps everybody else out too, root excepted; so root looks at it. A pseudo-terminal is not put into that
/// mode: it would stay so after the death of its user, for as long as the other side lives.
bool LocalLine::claim()
{
    if (retrying([&] { return ::flock(terminal_.number(), LOCK_EX | LOCK_NB); }) < 0)
        return false;
    int modemLines = 0;
    hasModemLines_ = ::ioctl(terminal_.number(), TIOCMGET, &modemLines) == 0;
    if (!hasModemLines_)
        return true;
    int exclusive = 0;
    if (::ioctl(terminal_.number(), TIOCGEXCL, &exclusive) == 0 && exclusive != 0) {
        errno = EBUSY;
        return false;
    }
    ::ioctl(terminal_.number(), TIOCEXCL);
    return true;
}

void LocalLine::set(const LineParameters& line)
{
    if (line.stopBits == 1.5 && line.dataBits != 5)
        refuse("1.5 stop bits go with 5 data bits only");
    TerminalAttributes attributes;
    if (!attributes.readFrom(terminal_.number()))
        refuse(errorText(errno));
    attributes.set(line);
    attributes.makeRaw();
    attributes.markParity(line.parity != 'N');
    if (!attributes.writeTo(terminal_.number()))
        refuse("the device does not take " + describe(line) + ": " + errorText(errno));
    marksParity_ = line.parity != 'N';
    characterTime_ = line.characterTime();
    if (hasModemLines_)
        check(line);
}

std::optional<LineErrors> LocalLine::countedErrors() const noexcept
{
    serial_icounter_struct counts{};
    if (::ioctl(terminal_.number(), TIOCGICOUNT, &counts) != 0)
        return std::nullopt;
    const auto number = [](int count) { return static_cast<std::uint64_t>(count); };
    return LineErrors{.parity = number(counts.parity),
                      .framing = number(counts.frame),
                      .overrun = number(counts.overrun) + number(counts.buf_overrun)};
}

std::optional<ModemLines> LocalLine::modemLines() const noexcept
{
    int bits = 0;
    if (::ioctl(terminal_.number(), TIOCMGET, &bits) != 0)
        return std::nullopt;
    return ModemLines{.clearToSend = (bits & TIOCM_CTS) != 0,
                      .dataSetReady = (bits & TIOCM_DSR) != 0,
                      .carrierDetect = (bits & TIOCM_CAR) != 0};
}

/// A device takes what it can of a setting, and says only when asked what that was.
void LocalLine::check(const LineParameters& wanted) const
{
    TerminalAttributes attributes;
    if (!attributes.readFrom(terminal_.number()))
        refuse(errorText(errno));
    const LineParameters kept = attributes.line();
    const bool speedFits = std::abs(kept.baudRate - wanted.baudRate) <= kSpeedTolerance * wanted.baudRate;
    if (!speedFits || kept.dataBits != wanted.dataBits || kept.parity != wanted.parity ||
        (kept.stopBits > 1) != (wanted.stopBits > 1) || kept.handshaking != wanted.handshaking)
        refuse("the device was asked for " + describe(wanted) + " and took " + describe(kept));
}

void LocalLine::refuse(const std::string& why) const
{
    throw RuntimeFailure(FailureCode::CannotSetLineState,
                         failureText(FailureCode::CannotSetLineState) + ": " + name_ + ": " + why + ".");
}

void LocalLine::dropInput() noexcept
{
    ::tcflush(terminal_.number(), TCIFLUSH);
}

/// A close waits until the driver has sent everything, and with a reader that holds its hand up that is half a minute.
/// So output may leave for as long as it moves, and the rest is dropped.
void LocalLine::letOutputLeave() const noexcept
{
    const auto waiting = [&] {
        int count = 0;
        return ::ioctl(terminal_.number(), TIOCOUTQ, &count) == 0 ? count : 0;
    };
    const Moment end = steadyTime() + kFarewell;
    int before = waiting();
    while (before > 0 && steadyTime() < end) {
        sleepUntil(steadyTime() + std::max<Moment>(4 * characterTime_, std::chrono::milliseconds(5)));
        const int left = waiting();
        if (left >= before)
            break;
        before = left;
    }
    if (before > 0)
        ::tcflush(terminal_.number(), TCOFLUSH);
}

} // namespace kel
