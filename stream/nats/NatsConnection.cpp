// SPDX-License-Identifier: MIT
#include "stream/nats/NatsConnection.h"

#include <algorithm>
#include <random>
#include <set>

namespace kel {

namespace {

constexpr int kMillisecondsToConnect = 5000;
// A server that falls silent without closing the connection is given up after so many of its answers are missing.
constexpr int kMillisecondsBetweenPings = 3000;
constexpr int kMissingAnswers = 2;
constexpr int kMillisecondsToLeave = 2000;

/// An address without the name and password that may stand in it.
std::string shown(const std::string& server)
{
    const std::size_t scheme = server.find("://");
    const std::size_t begin = scheme == std::string::npos ? 0 : scheme + 3;
    const std::size_t at = server.rfind('@');
    return at == std::string::npos || at < begin ? server : server.substr(0, begin) + server.substr(at + 1);
}

/// The name in it, which the server's certificate has to hold.
std::string hostOf(const std::string& server)
{
    std::string host = shown(server);
    if (const std::size_t scheme = host.find("://"); scheme != std::string::npos)
        host = host.substr(scheme + 3);
    if (host.starts_with('['))
        return host.substr(1, host.find(']') - 1);
    return host.substr(0, host.find(':'));
}

/// All answers that are not good, as one.
class Steps {
public:
    template <class Step>
    void take(Step&& step)
    {
        if (status_ == NATS_OK)
            status_ = step();
    }

    [[nodiscard]] natsStatus status() const noexcept { return status_; }

private:
    natsStatus status_ = NATS_OK;
};

natsStatus secure(natsOptions* options, const StreamAddress& address, const std::string& host)
{
    Steps steps;
    steps.take([&] { return natsOptions_SetSecure(options, true); });
    steps.take([&] { return natsOptions_SetExpectedHostname(options, host.c_str()); });
    if (!address.authority.empty())
        steps.take([&] { return natsOptions_LoadCATrustedCertificates(options, address.authority.c_str()); });
    if (!address.certificate.empty())
        steps.take([&] {
            return natsOptions_LoadCertificatesChain(options, address.certificate.c_str(), address.key.c_str());
        });
    return steps.status();
}

} // namespace

std::string natsReason(natsStatus status)
{
    const char* const text = nats_GetLastError(nullptr);
    std::string reason = text && *text != '\0' ? text : natsStatus_GetText(status);
    // The library puts its own place in front: "(conn.c:1234): ".
    if (const std::size_t place = reason.find("): "); reason.starts_with('(') && place != std::string::npos)
        reason.erase(0, place + 3);
    while (reason.ends_with('.') || reason.ends_with('\n'))
        reason.pop_back();
    return reason;
}

NatsConnection::NatsConnection(const StreamAddress& address)
{
    std::vector<std::string> servers = address.servers;
    std::shuffle(servers.begin(), servers.end(), std::random_device());
    std::set<std::string> reasons; // in the same order each time
    bool isRefused = false;
    for (const std::string& server : servers) {
        const natsStatus status = open(address, server);
        if (status == NATS_OK)
            return;
        isRefused = isRefused || status == NATS_CONNECTION_AUTH_FAILED;
        reasons.insert(shown(server) + ": " + natsReason(status));
    }
    std::string list;
    for (const std::string& reason : reasons)
        list += (list.empty() ? "" : ", ") + reason;
    throw StreamProblem(isRefused ? "The stream's servers refuse the connection (" + list +
                                        "). Check the credentials, or the name and password, and whether they "
                                        "have expired."
                                  : "No server of the stream can be reached (" + list +
                                        "). Are they running, and can this machine reach them?");
}

void NatsConnection::close() noexcept
{
    if (!connection_)
        return;
    if (natsConnection_Status(handle()) == NATS_CONN_STATUS_CONNECTED)
        natsConnection_FlushTimeout(handle(), kMillisecondsToLeave);
    natsConnection_Close(handle());
}

natsStatus NatsConnection::open(const StreamAddress& address, const std::string& server)
{
    NatsHandle<natsOptions> options;
    const bool isSecure = server.starts_with("tls://") || !address.authority.empty() || !address.certificate.empty();
    Steps steps;
    steps.take([&] { return fill(options, natsOptions_Create); });
    steps.take([&] { return natsOptions_SetURL(options.get(), server.c_str()); });
    steps.take([&] { return natsOptions_SetName(options.get(), address.client.c_str()); });
    steps.take([&] { return natsOptions_SetAllowReconnect(options.get(), false); });
    steps.take([&] { return natsOptions_SetIgnoreDiscoveredServers(options.get(), true); });
    steps.take([&] { return natsOptions_SetTimeout(options.get(), kMillisecondsToConnect); });
    steps.take([&] { return natsOptions_SetPingInterval(options.get(), kMillisecondsBetweenPings); });
    steps.take([&] { return natsOptions_SetMaxPingsOut(options.get(), kMissingAnswers); });
    // Who has one message under way for each reader gains nothing by waiting for more to go with it.
    steps.take([&] { return natsOptions_SetSendAsap(options.get(), true); });
    if (isSecure)
        steps.take([&] { return secure(options.get(), address, hostOf(server)); });
    if (!address.credentials.empty())
        steps.take([&] {
            return natsOptions_SetUserCredentialsFromFiles(options.get(), address.credentials.c_str(), nullptr);
        });
    steps.take([&] {
        return fill(connection_, [&](natsConnection** made) { return natsConnection_Connect(made, options.get()); });
    });
    steps.take([&] {
        return fill(context_, [&](jsCtx** made) { return natsConnection_JetStream(made, handle(), nullptr); });
    });
    server_ = shown(server);
    return steps.status();
}

void NatsConnection::check() const
{
    if (natsConnection_Status(handle()) == NATS_CONN_STATUS_CONNECTED)
        return;
    const char* reason = nullptr;
    natsConnection_GetLastError(handle(), &reason);
    throw StreamProblem("The connection to the stream's server " + server_ + " is lost" +
                        (reason && *reason != '\0' ? ": " + std::string(reason) : std::string()) + ".");
}

void NatsConnection::fail(const std::string& what, natsStatus status) const
{
    const std::string reason = natsReason(status); // before another call takes its place
    check();
    throw StreamProblem(what + ": " + reason + ".");
}

} // namespace kel
