// SPDX-License-Identifier: MIT
#include "station/IpAddress.h"
#include "station/WebServer.h"
#include "station/web/ClientStream.h"
#include "station/web/Passwords.h"
#include "station/web/Tls.h"

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <httplib.h>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

namespace kel {

namespace {

// How long somebody may take to send the whole of a request, or to take a piece of the answer, before it is lost to
// him.
constexpr std::chrono::seconds kPatience{10};

// What the system keeps for somebody who takes nothing.
constexpr int kKeptForOne = 64 * 1024;

constexpr int kNoName = 401;
constexpr int kOnlyReading = 405;
constexpr int kNoParts = 416;
constexpr int kOtherHost = 421;
constexpr int kNoAnswer = 500;

/// So many workers, and as many clients again who wait for one; the others wait where the system keeps them.
class Workers final : public httplib::TaskQueue {
public:
    explicit Workers(int count) : most_(count), pool_(static_cast<std::size_t>(count)) {}

    void enqueue(std::function<void()> work) override
    {
        std::unique_lock lock(mutex_);
        fewer_.wait(lock, [this] { return waiting_ < most_; });
        ++waiting_;
        pool_.enqueue([this, work = std::move(work)] {
            {
                const std::lock_guard taken(mutex_);
                --waiting_;
            }
            fewer_.notify_one();
            work();
        });
    }

    void shutdown() override { pool_.shutdown(); }

private:
    int most_;
    std::mutex mutex_;
    std::condition_variable fewer_;
    int waiting_ = 0;
    httplib::ThreadPool pool_;
};

/// Two servers on one port would share what comes: the second one has to be refused.
void setSocket(socket_t socket)
{
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &kKeptForOne, sizeof kKeptForOne);
}

/// Host, of "host:port" and of "[::1]:port".
std::string hostOf(const std::string& header)
{
    if (header.starts_with('['))
        return header.substr(1, header.find(']') - 1);
    return header.substr(0, header.find(':'));
}

/// Serves each connection with one request, whose time is limited as a whole. With a context it speaks TLS.
class PatientServer final : public httplib::Server {
public:
    explicit PatientServer(SSL_CTX* context) : context_(context) {}

private:
    bool process_and_close_socket(socket_t socket) override
    {
        bool isAnswered = false;
        {
            ClientStream client(socket, context_, kPatience);
            bool isClosed = false;
            isAnswered = client.begin() && process_request(client, true, isClosed, nullptr);
            if (client.tls() && isAnswered)
                SSL_shutdown(client.tls());
        }
        ::shutdown(socket, SHUT_RDWR);
        ::close(socket);
        return isAnswered;
    }

    SSL_CTX* context_;
};

class SinkClient final : public WebClient {
public:
    explicit SinkClient(httplib::DataSink& sink) : sink_(sink) {}
    bool send(std::string_view text) override { return takes_ = takes_ && sink_.write(text.data(), text.size()); }
    [[nodiscard]] bool isThere() const override { return takes_ && sink_.is_writable(); }
    [[nodiscard]] bool takes() const { return takes_; }

private:
    httplib::DataSink& sink_;
    bool takes_ = true;
};

class HttpServer final : public WebServer {
public:
    HttpServer(const WebPlan& plan, int most) : plan_(plan)
    {
        if (!plan.passwords.empty())
            passwords_.emplace(plan.passwords);
        if (!plan.certificate.empty())
            context_ = tlsContext(plan);
        server_ = std::make_unique<PatientServer>(context_.get());
        server_->new_task_queue = [most] { return new Workers(most); };
        server_->set_socket_options(&setSocket);
        server_->set_payload_max_length(0);
        bind();
    }

    ~HttpServer() override
    {
        ending_ = true;
        server_->stop();
        if (thread_.joinable())
            thread_.join();
    }

    [[nodiscard]] int port() const override { return port_; }

    void serve(Respond respond) override
    {
        respond_ = std::move(respond);
        server_->set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
            answer(request, response);
            return httplib::Server::HandlerResponse::Handled;
        });
        thread_ = std::thread([this] { listen(); });
        // Only a server that runs can be stopped.
        while (!server_->is_running())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

private:
    void bind()
    {
        errno = 0;
        if (port_ != 0 || plan_.port != 0) {
            port_ = port_ != 0 ? port_ : plan_.port;
            if (server_->bind_to_port(plan_.address, port_))
                return;
        } else if ((port_ = server_->bind_to_any_port(plan_.address)) > 0) {
            return;
        }
        throw std::runtime_error("Port " + std::to_string(plan_.port) + " of " + plan_.address + " cannot be used: " +
                                 std::strerror(errno) + ". Name another port, or 0 for any that is free.");
    }

    /// A connection that breaks in a wrong moment ends the listening of the library; it begins again.
    void listen()
    {
        constexpr std::chrono::seconds kNextAttempt{1};
        while (!server_->listen_after_bind() && !ending_) {
            std::this_thread::sleep_for(kNextAttempt);
            try {
                bind();
            } catch (const std::runtime_error&) {
                continue; // and tries again
            }
        }
    }

    void answer(const httplib::Request& request, httplib::Response& response)
    {
        const bool isHead = request.method == "HEAD";
        WebAnswer answer = answerTo(request);
        response.status = answer.status;
        for (const auto& [name, value] : answer.headers)
            response.set_header(name, value);
        response.set_header("Content-Security-Policy", answer.policy);
        response.set_header("X-Content-Type-Options", "nosniff");
        response.set_header("X-Frame-Options", "DENY");
        response.set_header("Referrer-Policy", "no-referrer");
        response.set_header("Cross-Origin-Resource-Policy", "same-origin");
        response.set_header("Cross-Origin-Opener-Policy", "same-origin");
        response.set_header("Cache-Control", "no-store");
        if (!answer.stream || isHead) {
            response.set_content(answer.body, answer.type);
            return;
        }
        response.set_chunked_content_provider(
            answer.type, [stream = std::move(answer.stream)](std::size_t, httplib::DataSink& sink) {
                SinkClient client(sink);
                try {
                    stream(client);
                } catch (const std::exception&) {
                    return false; // the rest is missing, and that is to be seen
                }
                if (client.takes())
                    sink.done();
                return client.takes();
            });
    }

    WebAnswer answerTo(const httplib::Request& request)
    {
        if (!isOurs(hostOf(request.get_header_value("Host"))))
            return {.status = kOtherHost, .body = "This server does not have that name; use its address.\n"};
        if (request.method != "GET" && request.method != "HEAD")
            return {.status = kOnlyReading, .headers = {{"Allow", "GET, HEAD"}}, .body = "This page is read-only.\n"};
        if (passwords_ && !passwords_->accept(request.get_header_value("Authorization")))
            return {.status = kNoName,
                    .headers = {{"WWW-Authenticate", "Basic realm=\"kelreader\", charset=\"UTF-8\""}},
                    .body = "Enter a name and a password.\n"};
        if (!request.ranges.empty())
            return {.status = kNoParts, .body = "Ranges are not supported.\n"};
        WebRequest asked{.path = request.path, .values = {}};
        for (const auto& [name, value] : request.params)
            asked.values.emplace(name, value);
        try {
            return respond_(asked);
        } catch (const std::exception& error) {
            return {.status = kNoAnswer, .body = std::string(error.what()) + "\n"};
        }
    }

    /// A page of somebody else's may make its own name lead to this machine. A browser still says that name.
    [[nodiscard]] bool isOurs(const std::string& host) const
    {
        return isIpAddress(host) || host == "localhost" || (context_ && isCertified(context_.get(), host));
    }

    WebPlan plan_;
    std::optional<Passwords> passwords_;
    TlsContext context_;
    std::unique_ptr<httplib::Server> server_;
    int port_ = 0;
    Respond respond_;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

template <class Work>
void tellingProblem(std::string& problem, Work&& work)
{
    try {
        work();
    } catch (const std::exception& error) {
        problem = error.what();
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) void
kelOpenWebServer(const WebPlan& plan, int most, std::unique_ptr<WebServer>& server, std::string& problem)
{
    tellingProblem(problem, [&] { server = std::make_unique<HttpServer>(plan, most); });
}

extern "C" __attribute__((visibility("default"))) void kelCheckWebPlan(const WebPlan& plan, std::string& problem)
{
    tellingProblem(problem, [&] {
        if (!plan.passwords.empty())
            static_cast<void>(Passwords(plan.passwords));
        if (plan.certificate.empty())
            return;
        static_cast<void>(tlsContext(plan));
    });
}

} // namespace kel
