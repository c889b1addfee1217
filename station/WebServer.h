// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel {

/// Where a server answers, and which clients.
struct WebPlan {
    std::string address = "127.0.0.1"; ///< an IP address of this machine
    int port = 0;                      ///< 0: any free one
    std::filesystem::path passwords{}; ///< lines of name:hash; empty: no password is needed
    std::filesystem::path certificate{};
    std::filesystem::path key{}; ///< empty, as the certificate: HTTP, and not HTTPS
};

/// A request of a client.
struct WebRequest {
    std::string path{};                          ///< "/sheets"
    std::map<std::string, std::string> values{}; ///< of the query, by their names

    /// One of the values; empty if there is none.
    [[nodiscard]] std::string value(const std::string& name) const
    {
        const auto found = values.find(name);
        return found == values.end() ? std::string() : found->second;
    }
};

/// A client that gets an answer piece by piece.
class WebClient {
public:
    virtual ~WebClient() = default;
    /// False: nobody takes it any more.
    virtual bool send(std::string_view text) = 0;
    [[nodiscard]] virtual bool isThere() const = 0;
};

/// The answer to a client.
struct WebAnswer {
    int status = 200;
    std::string type = "text/plain; charset=utf-8";
    std::string policy = "default-src 'none'; frame-ancestors 'none'"; ///< what a browser lets it do
    std::vector<std::pair<std::string, std::string>> headers{};        ///< more of them
    std::string body{};
    /// Instead of the body: sends until it returns, in a thread of this client.
    std::function<void(WebClient& client)> stream{};
};

/// Answers GET and HEAD over HTTP, a few clients at once, each for a request. What answers lives in a module, so that
/// nobody else pays for its libraries.
class WebServer {
public:
    using Respond = std::function<WebAnswer(const WebRequest& request)>;

    /// Stops: unfinished answers are cut off; streams have to end themselves.
    virtual ~WebServer() = default;

    /// The port that was opened.
    [[nodiscard]] virtual int port() const = 0;

    /// Begins to answer. `respond` is called in the threads of the server.
    virtual void serve(Respond respond) = 0;
};

/// Opens the port of a plan, and does not answer yet. `most` are answered at once. host::OperationError, a sentence, if
/// the port cannot be opened, or if something is wrong with the plan's files.
[[nodiscard]] std::unique_ptr<WebServer> openWebServer(const WebPlan& plan, int most);

/// host::OperationError, a sentence, if something is wrong with the files of a plan.
void checkWebPlan(const WebPlan& plan);

// What the module exports, under these names. Each failure is a sentence in `problem`.
using OpenWebServer = void (*)(const WebPlan& plan, int most, std::unique_ptr<WebServer>& server, std::string& problem);
using CheckWebPlan = void (*)(const WebPlan& plan, std::string& problem);
inline constexpr const char* kOpenWebServerName = "kelOpenWebServer";
inline constexpr const char* kCheckWebPlanName = "kelCheckWebPlan";
inline constexpr const char* kWebModuleName = "libKELReader81U_web.so";

} // namespace kel
