// SPDX-License-Identifier: MIT
#include "station/StateSocket.h"

#include "host/UsageError.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>

namespace kel {

namespace {

constexpr mode_t kUserAndGroup = 0660;
constexpr int kWaiting = 16;
constexpr timeval kPatience{.tv_sec = 1, .tv_usec = 0};

sockaddr_un addressOf(const std::filesystem::path& file)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (file.native().size() >= sizeof address.sun_path)
        throw host::OperationError("The socket's name " + file.string() + " is too long; name another one.");
    std::copy(file.native().begin(), file.native().end(), std::begin(address.sun_path));
    return address;
}

FileDescriptor newSocket()
{
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

/// A free function, so that its cast stands once.
int reach(int (*call)(int, const sockaddr*, socklen_t), const FileDescriptor& socket, const sockaddr_un& address)
{
    return call(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

} // namespace

StateSocket::StateSocket(std::filesystem::path file) : file_(std::move(file)), listening_(newSocket())
{
    const sockaddr_un address = addressOf(file_);
    // The store's lock has shown that no other station is at work here: an existing socket is left over.
    if (std::filesystem::is_socket(file_))
        std::filesystem::remove(file_);
    // Nobody can connect before `listen`, and by then the rights are set.
    if (reach(&::bind, listening_, address) != 0 || ::chmod(file_.c_str(), kUserAndGroup) != 0 ||
        ::listen(listening_.number(), kWaiting) != 0)
        throw host::OperationError("The socket " + file_.string() + " cannot be made: " + std::strerror(errno) +
                                   ". May this user write in its folder?");
}

StateSocket::~StateSocket()
{
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
}

void StateSocket::answer(const std::string& text) const
{
    const FileDescriptor asking(::accept4(listening_.number(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!asking.isOpen())
        return;
    ::setsockopt(asking.number(), SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof kPatience);
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t sent = retrying([&] { return ::send(asking.number(), rest.data(), rest.size(), MSG_NOSIGNAL); });
        if (sent <= 0)
            return;
        rest.remove_prefix(static_cast<std::size_t>(sent));
    }
}

std::string askStation(const std::filesystem::path& socket)
{
    const FileDescriptor asking = newSocket();
    if (reach(&::connect, asking, addressOf(socket)) != 0) {
        if (errno == EACCES)
            throw host::OperationError("You may not ask the station at " + socket.string() +
                                       ": its user and its group may; join the group, or use sudo.");
        throw host::OperationError("No station is at work at " + socket.string() + ": " + std::strerror(errno) +
                                   ". Start it with 'kelreader station FILE'.");
    }
    std::string text;
    std::array<char, 65536> bytes;
    for (;;) {
        const ssize_t count = retrying([&] { return ::read(asking.number(), bytes.data(), bytes.size()); });
        if (count <= 0)
            return text;
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

} // namespace kel
