// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <httplib.h>
#include <memory>
#include <openssl/ssl.h>

namespace kel {

/// One client's connection, in the clear or over TLS. The whole request has to be there by one moment, however little
/// of it comes at a time; each piece of the answer may wait so long until it is taken.
class ClientStream final : public httplib::Stream {
public:
    using Clock = std::chrono::steady_clock;

    /// Without a context in the clear. The socket stays the caller's.
    ClientStream(socket_t socket, SSL_CTX* context, std::chrono::milliseconds patience);

    /// Whether client and server agree on the encryption, and the first byte of the request comes.
    [[nodiscard]] bool begin();

    [[nodiscard]] SSL* tls() const noexcept { return tls_.get(); }

    [[nodiscard]] bool is_readable() const override;
    [[nodiscard]] bool is_writable() const override;
    ssize_t read(char* target, size_t size) override;
    ssize_t write(const char* bytes, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    [[nodiscard]] socket_t socket() const override { return socket_; }

private:
    struct Free {
        void operator()(SSL* tls) const noexcept { SSL_free(tls); }
    };

    [[nodiscard]] bool wait(short events, Clock::time_point until) const;
    [[nodiscard]] ssize_t fetch();
    template <class Call>
    [[nodiscard]] ssize_t tlsCall(Clock::time_point until, Call&& call) const;

    socket_t socket_;
    std::unique_ptr<SSL, Free> tls_;
    std::chrono::milliseconds patience_;
    Clock::time_point requestEnds_;
    std::array<char, 4096> bytes_{};
    std::size_t taken_ = 0;
    std::size_t count_ = 0;
};

} // namespace kel
