// SPDX-License-Identifier: MIT
#include "station/web/ClientStream.h"

#include "platform/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

namespace kel {

ClientStream::ClientStream(socket_t socket, SSL_CTX* context, std::chrono::milliseconds patience)
    : socket_(socket), patience_(patience), requestEnds_(Clock::now() + patience)
{
    ::fcntl(socket_, F_SETFL, ::fcntl(socket_, F_GETFL, 0) | O_NONBLOCK);
    if (!context)
        return;
    tls_.reset(SSL_new(context));
    SSL_set_mode(tls_.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    SSL_set_fd(tls_.get(), socket_);
}

bool ClientStream::wait(short events, Clock::time_point until) const
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    pollfd handle{socket_, events, 0};
    return left.count() > 0 && retrying([&] { return ::poll(&handle, 1, static_cast<int>(left.count())); }) > 0;
}

/// Repeats a call as long as it waits for the other side; 0 or less when it has failed.
template <class Call>
ssize_t ClientStream::tlsCall(Clock::time_point until, Call&& call) const
{
    for (;;) {
        const int result = call(tls_.get());
        if (result > 0)
            return result;
        switch (SSL_get_error(tls_.get(), result)) {
        case SSL_ERROR_WANT_READ:
            if (!wait(POLLIN, until))
                return -1;
            break;
        case SSL_ERROR_WANT_WRITE:
            if (!wait(POLLOUT, until))
                return -1;
            break;
        case SSL_ERROR_ZERO_RETURN: return 0;
        default: return -1;
        }
    }
}

bool ClientStream::begin()
{
    if (tls_ && tlsCall(requestEnds_, &SSL_accept) <= 0)
        return false;
    return fetch() > 0;
}

ssize_t ClientStream::fetch()
{
    taken_ = 0;
    count_ = 0;
    ssize_t count = -1;
    if (tls_)
        count = tlsCall(requestEnds_,
                        [this](SSL* tls) { return SSL_read(tls, bytes_.data(), static_cast<int>(bytes_.size())); });
    else if (wait(POLLIN, requestEnds_))
        count = retrying([this] { return ::recv(socket_, bytes_.data(), bytes_.size(), 0); });
    count_ = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return count;
}

bool ClientStream::is_readable() const
{
    return taken_ < count_ || wait(POLLIN, requestEnds_);
}

ssize_t ClientStream::read(char* target, size_t size)
{
    if (taken_ == count_) {
        if (const ssize_t count = fetch(); count <= 0)
            return count;
    }
    const std::size_t count = std::min(size, count_ - taken_);
    std::copy_n(bytes_.data() + taken_, count, target);
    taken_ += count;
    return static_cast<ssize_t>(count);
}

/// A client that has gone may leave room to write.
bool ClientStream::is_writable() const
{
    if (!wait(POLLOUT, Clock::now() + patience_))
        return false;
    char byte = 0;
    const ssize_t count = retrying([&] { return ::recv(socket_, &byte, 1, MSG_PEEK | MSG_DONTWAIT); });
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK));
}

ssize_t ClientStream::write(const char* bytes, size_t size)
{
    const Clock::time_point until = Clock::now() + patience_;
    if (tls_)
        return tlsCall(until, [&](SSL* tls) {
            return SSL_write(tls, bytes, static_cast<int>(std::min<std::size_t>(size, std::size_t{1} << 20)));
        });
    for (;;) {
        const ssize_t count = retrying([&] { return ::send(socket_, bytes, size, MSG_NOSIGNAL); });
        if (count >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK) || !wait(POLLOUT, until))
            return count;
    }
}

// Addresses of clients are not reported.

void ClientStream::get_remote_ip_and_port(std::string& ip, int& port) const
{
    ip.clear();
    port = 0;
}

void ClientStream::get_local_ip_and_port(std::string& ip, int& port) const
{
    ip.clear();
    port = 0;
}

} // namespace kel
