// SPDX-License-Identifier: MIT
#include "platform/remote_line/GensioLoop.h"

#include "platform/remote_line/GensioBridge.h"

#include <array>
#include <csignal>
#include <pthread.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>

extern "C" {
#include <gensio/gensio.h>
#include <gensio/gensio_os_funcs.h>
#include <gensio/gensio_unix.h>
}

namespace kel {

namespace {

// How long nothing may happen before the bridges are asked again.
constexpr gensio_time kTurn{0, 200'000'000};
constexpr gensio_time kTurnWithoutBridge{60, 0};

/// Signals are the host's: none is taken by the thread that is started meanwhile.
class NoSignals {
public:
    NoSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t before_{};
};

void takeWakings(gensio_iod*, void* wakened)
{
    std::array<char, 64> bytes;
    static_cast<void>(::read(*static_cast<int*>(wakened), bytes.data(), bytes.size()));
}

void nothing(gensio_iod*, void*) {}

} // namespace

void connectPair(FileDescriptor& one, FileDescriptor& other)
{
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::system_error(errno, std::generic_category(), "no pair of sockets");
    one = FileDescriptor(ends[0]);
    other = FileDescriptor(ends[1]);
}

GensioLoop& GensioLoop::instance()
{
    static GensioLoop* const loop = new GensioLoop;
    return *loop;
}

GensioLoop::GensioLoop()
{
    connectPair(waker_, wakened_);
    if (gensio_unix_funcs_alloc(nullptr, 0, &os_) != 0)
        throw std::system_error(ENOMEM, std::generic_category());
    // The handler gets the descriptor's number by its address, which lives as long as this object: for ever.
    auto* const number = new int(wakened_.number());
    if (os_->add_iod(os_, GENSIO_IOD_SOCKET, *number, &watch_) != 0 ||
        os_->set_fd_handlers(watch_, number, &takeWakings, &nothing, &nothing, &nothing) != 0)
        throw std::system_error(ENOMEM, std::generic_category());
    os_->set_read_handler(watch_, true);
    const NoSignals noSignals;
    std::thread([this] { run(); }).detach();
}

void GensioLoop::add(std::shared_ptr<GensioBridge> bridge)
{
    {
        const std::lock_guard lock(mutex_);
        newBridges_.push_back(std::move(bridge));
    }
    wake();
}

void GensioLoop::wake()
{
    static_cast<void>(::send(waker_.number(), "", 1, MSG_NOSIGNAL));
}

void GensioLoop::run()
{
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            bridges_.insert(bridges_.end(), newBridges_.begin(), newBridges_.end());
            newBridges_.clear();
        }
        std::erase_if(bridges_, [](const auto& bridge) { return bridge->step(); });
        gensio_time turn = bridges_.empty() ? kTurnWithoutBridge : kTurn;
        gensio_os_funcs_service(os_, &turn);
    }
}

} // namespace kel
