// SPDX-License-Identifier: MIT
#include "platform/remote_line/GensioBridge.h"
#include "platform/remote_line/GensioLoop.h"

#include <poll.h>
#include <sys/socket.h>
#include <system_error>

namespace kel {

namespace {

/// How long a server may think about settings, and how long bytes may take to leave at the end.
constexpr std::chrono::seconds kSettingPatience{5};
constexpr std::chrono::milliseconds kFarewell{1000};

/// How soon a connection that is not to be waited for any longer is given up.
constexpr std::chrono::milliseconds kLook{50};

/// The host's side of a bridge. The bridge outlives it where it hangs in the network.
class GensioConnection final : public RemoteConnection {
public:
    explicit GensioConnection(const std::string& address)
        : bridge_(std::make_shared<GensioBridge>(address, hostEnd_)), opened_(bridge_->opened()),
          ended_(bridge_->ended())
    {
        GensioLoop::instance().add(bridge_);
    }

    ~GensioConnection() override
    {
        ::shutdown(hostEnd_.number(), SHUT_WR);
        if (ended_.wait_for(kFarewell) == std::future_status::ready)
            return;
        bridge_->giveUp();
        ended_.wait_for(kFarewell);
    }

    GensioConnection(const GensioConnection&) = delete;
    GensioConnection& operator=(const GensioConnection&) = delete;

    [[nodiscard]] RemoteResult waitOpen(Patience patience)
    {
        const auto end = std::chrono::steady_clock::now() + patience.time;
        bool ended = false;
        while (!ended && std::chrono::steady_clock::now() < end) {
            if (opened_.wait_for(kLook) == std::future_status::ready)
                return opened_.get();
            pollfd handle{patience.ended, POLLIN, 0}; // poll leaves one of -1 out
            ended = ::poll(&handle, 1, 0) > 0;
        }
        bridge_->giveUp();
        return {RemoteResult::Cause::Unreachable, ended ? "the wait for it was cut short" : "it does not answer"};
    }

    [[nodiscard]] int handle() const noexcept override { return hostEnd_.number(); }

    [[nodiscard]] RemoteResult set(const LineParameters& line, bool demanded) override
    {
        std::future<RemoteResult> answer = bridge_->set(line, demanded);
        if (answer.wait_for(kSettingPatience) == std::future_status::ready)
            return answer.get();
        return {RemoteResult::Cause::Refused, "the server does not answer the line settings"};
    }

private:
    FileDescriptor hostEnd_;
    std::shared_ptr<GensioBridge> bridge_;
    std::future<RemoteResult> opened_;
    std::future<void> ended_;
};

} // namespace

} // namespace kel

extern "C" __attribute__((visibility("default"))) void
kelOpenRemoteConnection(const std::string& address, kel::Patience patience,
                        std::unique_ptr<kel::RemoteConnection>& connection, kel::RemoteResult& result)
{
    try {
        auto opened = std::make_unique<kel::GensioConnection>(address);
        result = opened->waitOpen(patience);
        if (result.cause == kel::RemoteResult::Cause::None)
            connection = std::move(opened);
    } catch (const std::system_error& failure) {
        result = {kel::RemoteResult::Cause::Unreachable, failure.code().message()};
    }
}
