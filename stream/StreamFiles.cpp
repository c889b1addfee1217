// SPDX-License-Identifier: MIT
#include "stream/StreamFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace kel {

namespace {

std::string unreadable(const std::filesystem::path& file)
{
    if (file.empty() || ::access(file.c_str(), R_OK) == 0)
        return {};
    return "The file " + file.string() + " cannot be read: " + std::strerror(errno) + ".";
}

/// Without both parts the client library finds out at each attempt to connect.
std::string incompletenessOf(const std::filesystem::path& credentials)
{
    if (credentials.empty())
        return {};
    std::ifstream stream(credentials, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    for (const char* part : {"-----BEGIN NATS USER JWT-----", "-----BEGIN USER NKEY SEED-----"}) {
        if (text.find(part) == std::string::npos)
            return "The file " + credentials.string() + " holds no credentials: it has no line \"" + part +
                   "\"; ask the servers' administrator for a file as 'nsc generate creds' writes it.";
    }
    return {};
}

bool isServer(const std::string& server)
{
    const std::size_t scheme = server.find("://");
    if (scheme == std::string::npos)
        return !server.empty() && server.find_first_of(" /") == std::string::npos;
    const std::string name = server.substr(0, scheme);
    return (name == "nats" || name == "tls") && server.size() > scheme + 3;
}

/// One part of a subject, or several with dots between them.
bool isSubject(const std::string& text)
{
    return !text.empty() && text.front() != '.' && text.back() != '.' && text.find("..") == std::string::npos &&
           text.find_first_of(" *>\t\r\n") == std::string::npos;
}

/// A name of a stream may hold no dot.
bool isStreamName(const std::string& text)
{
    return isSubject(text) && text.find_first_of("./\\") == std::string::npos;
}

} // namespace

bool hasSecrets(const StreamAddress& address)
{
    return !address.key.empty() || !address.credentials.empty() ||
           std::any_of(address.servers.begin(), address.servers.end(),
                       [](const std::string& server) { return server.find('@') != std::string::npos; });
}

std::string exposureOf(const std::filesystem::path& file)
{
    struct stat facts {};
    if (file.empty() || ::stat(file.c_str(), &facts) != 0 || (facts.st_mode & S_IRWXO) == 0)
        return {};
    return "The file " + file.string() + " is secret, but every user may read it; use 'chmod o= " + file.string() +
           "'.";
}

std::string faultOf(const StreamAddress& address)
{
    if (address.servers.empty())
        return "The stream has no server; name one as nats://host:4222 or tls://host:4222.";
    for (const std::string& server : address.servers) {
        if (!isServer(server))
            return "The text '" + server + "' is not a server of a stream; write nats://host:4222 or tls://host:4222.";
    }
    if (!isStreamName(address.stream))
        return "The text '" + address.stream + "' cannot be the name of a stream; use letters, digits and \"-\".";
    if (!isSubject(address.subject))
        return "The text '" + address.subject + "' cannot begin a subject; use letters and digits, with dots between.";
    for (const std::filesystem::path& file :
         {address.authority, address.certificate, address.key, address.credentials}) {
        if (std::string fault = unreadable(file); !fault.empty())
            return fault;
    }
    for (const std::filesystem::path& file : {address.key, address.credentials}) {
        if (std::string fault = exposureOf(file); !fault.empty())
            return fault;
    }
    return incompletenessOf(address.credentials);
}

} // namespace kel
