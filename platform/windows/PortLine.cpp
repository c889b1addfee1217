// SPDX-License-Identifier: MIT
#include "platform/windows/PortLine.h"

#include "platform/SteadyTime.h"
#include "platform/windows/PortFailure.h"
#include "platform/windows/WindowsMessagePump.h"
#include "platform/windows/WindowsText.h"
#include "types/RuntimeFailure.h"
#include "types/Text.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

using std::chrono::seconds;

// A page of the largest reader fits several times.
constexpr DWORD kInputQueue = 65536;
constexpr DWORD kOutputQueue = 4096;

constexpr char kXon = 0x11;
constexpr char kXoff = 0x13;

/// How long a line may take no byte at all before its output is given up.
constexpr Moment kOutputPatience = seconds(10);

/// How long output that is under way may keep a line from closing, in milliseconds.
constexpr DWORD kFarewell = 500;

/// How often a wait for output looks after the input.
constexpr DWORD kOutputSlice = 20;

/// How long a port may take to become free after its program's end, and how often that is looked at, in milliseconds.
constexpr Moment kClaimPatience = seconds(5);
constexpr DWORD kClaimSlice = 10;

BYTE parityCode(char letter)
{
    switch (letter) {
    case 'E': return EVENPARITY;
    case 'O': return ODDPARITY;
    case 'M': return MARKPARITY;
    case 'S': return SPACEPARITY;
    default: return NOPARITY;
    }
}

BYTE stopBitsCode(double stopBits)
{
    if (stopBits == 1.5)
        return ONE5STOPBITS;
    return stopBits > 1 ? TWOSTOPBITS : ONESTOPBIT;
}

/// Both modem lines are on as long as the port is open, unless the handshaking has the one of them.
void put(const LineParameters& line, DCB& state)
{
    const bool software = (line.handshaking & 1) != 0;
    const bool hardware = (line.handshaking & 2) != 0;
    state.DCBlength = sizeof state;
    state.BaudRate = static_cast<DWORD>(line.baudRate);
    state.ByteSize = static_cast<BYTE>(line.dataBits);
    state.Parity = parityCode(line.parity);
    state.StopBits = stopBitsCode(line.stopBits);
    state.fBinary = TRUE;
    state.fParity = line.parity != 'N';
    state.fDtrControl = DTR_CONTROL_ENABLE;
    state.fRtsControl = hardware ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
    state.fOutxCtsFlow = hardware;
    state.fOutxDsrFlow = FALSE;
    state.fDsrSensitivity = FALSE;
    state.fOutX = software;
    state.fInX = software;
    state.fTXContinueOnXoff = TRUE;
    state.XonChar = kXon;
    state.XoffChar = kXoff;
    state.XonLim = 2048;
    state.XoffLim = 2048;
    state.fErrorChar = state.fParity;
    state.ErrorChar = '?';
    state.fNull = FALSE;
    state.fAbortOnError = FALSE;
}

bool hasModemLines(HANDLE port)
{
    DWORD ignored = 0;
    return ::GetCommModemStatus(port, &ignored) != FALSE;
}

/// "19200 baud, 8 data bits, parity N, 2 stop bits, handshaking 0".
std::string describe(const LineParameters& line)
{
    return CStr(std::int64_t{line.baudRate}) + " baud, " + CStr(std::int64_t{line.dataBits}) + " data bits, parity " +
           line.parity + ", " + CStr(line.stopBits) + " stop bits, handshaking " + CStr(std::int64_t{line.handshaking});
}

} // namespace

PortLine::Output::Output() : done(::CreateEventW(nullptr, TRUE, TRUE, nullptr))
{
    state.hEvent = done.get();
}

PortLine::PortLine(Int16 port, const std::string& device, const LineParameters& parameters,
                   std::shared_ptr<WindowsMessagePump> pump)
    : name_(portName(port, device)), port_(open(port, device)), claim_(claim(port, device)),
      hasModemLines_(hasModemLines(port_.get())), input_(port_.get(), name_, hasModemLines_),
      output_(std::make_unique<Output>()), pump_(std::move(pump))
{
    PortLine::set(parameters);
    // A line that nobody has open receives nothing.
    ::PurgeComm(port_.get(), PURGE_RXCLEAR);
    pump_->add(input_);
}

PortLine::~PortLine()
{
    pump_->remove(input_);
    if (!outputIsDone(kFarewell))
        dropOutput();
}

/// Takes the open port for this object alone. A serial driver has let in nobody else by now. Wine lets anybody in, and
/// keeps what a program had for a moment after its end.
SystemHandle PortLine::claim(Int16 port, const std::string& device)
{
    std::wstring name = wideText("KELReader81U." + device);
    ::CharUpperW(name.data());
    std::replace(name.begin(), name.end(), L'\\', L'/'); // which would be a name of another kind
    for (const Moment end = steadyTime() + kClaimPatience; steadyTime() < end; ::Sleep(kClaimSlice)) {
        SystemHandle mutex(::CreateMutexW(nullptr, FALSE, name.c_str()));
        if (::GetLastError() != ERROR_ALREADY_EXISTS)
            return mutex;
    }
    throw portOpenFailure(port, device, ERROR_ACCESS_DENIED);
}

SystemHandle PortLine::open(Int16 port, const std::string& device)
{
    const std::string path = device.starts_with(R"(\\)") ? device : R"(\\.\)" + device;
    SystemHandle handle(::CreateFileW(wideText(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_OVERLAPPED, nullptr));
    if (!handle)
        throw portOpenFailure(port, device, ::GetLastError());
    // Wine opens a port that leads nowhere, and any file that a port is mapped to.
    const DWORD kind = ::GetFileType(handle.get());
    if (kind != FILE_TYPE_CHAR)
        throw portOpenFailure(port, device, kind == FILE_TYPE_UNKNOWN ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_FUNCTION);
    // A read gives what is there at once; a write has the time that it needs.
    COMMTIMEOUTS times{};
    times.ReadIntervalTimeout = MAXDWORD;
    if (!::SetCommTimeouts(handle.get(), &times))
        throw portOpenFailure(port, device, ::GetLastError());
    // A driver that keeps its own sizes is as good.
    ::SetupComm(handle.get(), kInputQueue, kOutputQueue);
    return handle;
}

void PortLine::set(const LineParameters& line)
{
    if (line.stopBits == 1.5 && line.dataBits != 5)
        refuse("1.5 stop bits go with 5 data bits only.");
    DCB state{};
    state.DCBlength = sizeof state;
    // Whatever the state is, as far as it is known: all that matters of it is set.
    if (!::GetCommState(port_.get(), &state))
        state = {};
    put(line, state);
    if (!::SetCommState(port_.get(), &state)) {
        const DWORD error = ::GetLastError();
        if (hasModemLines_ || !takesPlainCharacters(state))
            refuse("the device does not take " + describe(line) + ": " + systemErrorText(error));
    }
    input_.characterTime(line.characterTime());
}

/// A device without modem lines has no wire, and may keep whatever character it likes; a pseudo-terminal does.
bool PortLine::takesPlainCharacters(DCB state) const
{
    state.ByteSize = 8;
    state.fParity = FALSE;
    state.fErrorChar = FALSE;
    state.Parity = NOPARITY;
    state.StopBits = ONESTOPBIT;
    return ::SetCommState(port_.get(), &state) != FALSE;
}

void PortLine::refuse(const std::string& why) const
{
    throw RuntimeFailure(FailureCode::CannotSetLineState,
                         failureText(FailureCode::CannotSetLineState) + ": " + name_ + ": " + why);
}

void PortLine::send(std::string_view bytes)
{
    if (input_.hungUp())
        input_.failHungUp();
    awaitOutput();
    if (bytes.empty())
        return;
    output_->bytes.assign(bytes);
    DWORD ignored = 0;
    if (!::WriteFile(port_.get(), output_->bytes.data(), static_cast<DWORD>(output_->bytes.size()), &ignored,
                     &output_->state) &&
        ::GetLastError() != ERROR_IO_PENDING) {
        input_.hangUp();
        input_.failHungUp();
    }
    sending_ = true;
    static_cast<void>(outputIsDone(0));
    input_.answerMayCome();
}

/// Waits until what was sent before has left. Meanwhile what arrives is fetched, lest both sides wait for each other.
void PortLine::awaitOutput()
{
    DWORD left = bytesLeft();
    Moment end = steadyTime() + kOutputPatience;
    while (!outputIsDone(kOutputSlice)) {
        input_.fetch();
        const DWORD now = bytesLeft();
        if (now != left) {
            left = now;
            end = steadyTime() + kOutputPatience;
        } else if (steadyTime() > end) {
            dropOutput();
            input_.failStuck(left);
        }
    }
    if (input_.hungUp())
        input_.failHungUp();
}

/// Whether nothing is being sent any more, at the end of so long a wait.
bool PortLine::outputIsDone(DWORD milliseconds)
{
    if (!sending_)
        return true;
    if (::WaitForSingleObject(output_->done.get(), milliseconds) != WAIT_OBJECT_0)
        return false;
    sending_ = false;
    DWORD ignored = 0;
    if (!::GetOverlappedResult(port_.get(), &output_->state, &ignored, TRUE))
        input_.hangUp();
    return true;
}

DWORD PortLine::bytesLeft()
{
    const std::optional<COMSTAT> status = input_.status();
    return status ? status->cbOutQue : 0;
}

void PortLine::dropOutput()
{
    ::PurgeComm(port_.get(), PURGE_TXABORT | PURGE_TXCLEAR);
    ::CancelIoEx(port_.get(), &output_->state);
    // Output that does not end goes on being read from its place.
    if (::WaitForSingleObject(output_->done.get(), kFarewell) != WAIT_OBJECT_0) {
        static_cast<void>(output_.release());
        output_ = std::make_unique<Output>();
    }
    sending_ = false;
}

} // namespace kel
