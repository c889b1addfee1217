// SPDX-License-Identifier: MIT
#include "platform/posix/RemoteLine.h"

#include "platform/FileDescriptor.h"
#include "platform/posix/LineOpenFailure.h"
#include "platform/posix/Module.h"
#include "platform/posix/PosixProcess.h"

#include <array>
#include <filesystem>

namespace kel {

namespace {

constexpr Moment kConnectPatience = std::chrono::seconds(10);

RuntimeFailure failure(FailureCode code, const std::string& text)
{
    return {code, failureText(code) + ": " + text};
}

/// The module stays loaded: its threads may outlive a line that hangs in the network.
OpenRemoteConnection loadModule(const std::string& line)
{
    const std::filesystem::path file = PosixProcess().ComponentFolder() / kRemoteLineModuleName;
    std::string reason;
    void* const open = moduleFunction(file, kOpenRemoteConnectionName, reason);
    if (!open)
        throw failure(FailureCode::HardwareNotAvailable,
                      line + " is a remote line, and the module for these cannot be loaded: " + reason +
                          ". Install gensio (libgensio4) and the module beside the "
                          "component.");
    return reinterpret_cast<OpenRemoteConnection>(open);
}

[[noreturn]] void failUnreachable(const std::string& line, const RemoteResult& result)
{
    if (result.cause == RemoteResult::Cause::NoSuchPlace)
        throw failure(FailureCode::InvalidPortNumber,
                      line + " is not there: " + result.text +
                          ". Write host and port as in rfc2217:reader-room.example.com:3000.");
    throw failure(FailureCode::HardwareNotAvailable,
                  line + " cannot be reached: " + result.text +
                      ". Is the server running, does it serve this port, and does nobody else use it?");
}

} // namespace

RemoteLine::RemoteLine(Int16 port, const std::string& device, const RemoteAddress& address, int ended)
    : name_(lineName(port, device)), takesSettings_(address.takesSettings)
{
    RemoteResult result{RemoteResult::Cause::NoSuchPlace, "this is not an address"};
    if (!address.stream.empty())
        loadModule(name_)(address.stream, {.time = kConnectPatience, .ended = ended}, connection_, result);
    if (!connection_)
        failUnreachable(name_, result);
}

void RemoteLine::set(const LineParameters& line)
{
    const RemoteResult result = connection_->set(line, takesSettings_);
    if (result.cause != RemoteResult::Cause::None)
        throw failure(FailureCode::CannotSetLineState, name_ + ": " + result.text + ".");
}

void RemoteLine::dropInput() noexcept
{
    std::array<char, 4096> dropped;
    while (retrying([&] { return ::read(handle(), dropped.data(), dropped.size()); }) > 0) {
    }
}

} // namespace kel
