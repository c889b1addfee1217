// SPDX-License-Identifier: MIT
#include "platform/windows/PortInput.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

// How much is fetched at a time; there may be more after it.
constexpr std::size_t kReadSize = 4096;

/// How long the system may take to end its watch.
constexpr DWORD kEndOfWatch = 200;

SystemHandle newEvent()
{
    return SystemHandle(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

} // namespace

PortInput::PortInput(HANDLE port, std::string name, bool canBeWatched)
    : WatchedInput(std::move(name), kReadSize), port_(port), readDone_(newEvent()), watch_(std::make_unique<Watch>()),
      canBeWatched_(canBeWatched)
{
    watch_->event = newEvent();
    watch_->state.hEvent = watch_->event.get();
    if (canBeWatched_)
        ::SetCommMask(port_, EV_RXCHAR);
}

PortInput::~PortInput()
{
    if (!watching_)
        return;
    ::SetCommMask(port_, 0);
    ::CancelIoEx(port_, &watch_->state);
    // A watch that does not end goes on writing to its place.
    if (::WaitForSingleObject(watch_->event.get(), kEndOfWatch) != WAIT_OBJECT_0)
        static_cast<void>(watch_.release());
}

HANDLE PortInput::arrival()
{
    if (!watching_ && canBeWatched_) {
        ::ResetEvent(watch_->event.get());
        watching_ = ::WaitCommEvent(port_, &watch_->events, &watch_->state) || ::GetLastError() == ERROR_IO_PENDING;
        canBeWatched_ = watching_;
    }
    return watching_ ? watch_->event.get() : nullptr;
}

/// A watch that failed says nothing about the port: a read shows it.
void PortInput::arrived()
{
    DWORD ignored = 0;
    watching_ = false;
    canBeWatched_ = ::GetOverlappedResult(port_, &watch_->state, &ignored, TRUE) != FALSE;
}

/// Any failure of the port is its hanging up.
ReceivedInput::Fetched PortInput::read(char* into, std::size_t room)
{
    const std::optional<COMSTAT> found = status();
    if (!found) {
        hangUp();
        return {};
    }
    if (found->cbInQue == 0)
        return {};
    DWORD count = 0;
    OVERLAPPED state{};
    state.hEvent = readDone_.get();
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(room, found->cbInQue));
    const bool done = ::ReadFile(port_, into, wanted, &count, &state) ||
                      (::GetLastError() == ERROR_IO_PENDING && ::GetOverlappedResult(port_, &state, &count, TRUE));
    if (!done) {
        hangUp();
        return {};
    }
    return {.count = count, .more = found->cbInQue > count};
}

void PortInput::awaitInput(Moment until)
{
    constexpr Moment kSlice = std::chrono::milliseconds(5);
    const Moment left = std::min(until - time(), kSlice);
    ::Sleep(static_cast<DWORD>(std::max<Moment::rep>(std::chrono::ceil<std::chrono::milliseconds>(left).count(), 1)));
}

std::optional<COMSTAT> PortInput::status()
{
    DWORD errors = 0;
    COMSTAT status{};
    if (!::ClearCommError(port_, &errors, &status))
        return std::nullopt;
    errors_.parity += (errors & CE_RXPARITY) != 0;
    errors_.framing += (errors & CE_FRAME) != 0;
    errors_.overrun += (errors & (CE_OVERRUN | CE_RXOVER)) != 0;
    return status;
}

LineErrors PortInput::errors()
{
    static_cast<void>(status());
    return errors_;
}

} // namespace kel
