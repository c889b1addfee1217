// SPDX-License-Identifier: MIT
#include "station/StateSocket.h"

#include "host/UsageError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace kel {

namespace {

constexpr mode_t kUserAndGroup = 0660;
constexpr int kWaiting = 16;
// Whoever looks after the station waits for nobody longer than this.
constexpr std::chrono::seconds kPatience{2};

sockaddr_un addressOf(const std::filesystem::path& file)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (file.native().size() >= sizeof address.sun_path)
        throw host::OperationError("The socket's name " + file.string() + " is too long; name another one.");
    std::copy(file.native().begin(), file.native().end(), std::begin(address.sun_path));
    return address;
}

FileDescriptor newSocket(int more = 0)
{
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | more, 0));
}

/// A free function, so that its cast stands once.
int reach(int (*call)(int, const sockaddr*, socklen_t), const FileDescriptor& socket, const sockaddr_un& address)
{
    return call(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

/// Whether somebody listens at a socket.
bool isServed(const sockaddr_un& address)
{
    const FileDescriptor asking = newSocket(SOCK_NONBLOCK);
    return reach(&::connect, asking, address) == 0 || errno == EAGAIN; // so many ask that this one would have to wait
}

/// Waits until something can be done with a socket; false once the time is over.
bool waitFor(const FileDescriptor& socket, short what, std::chrono::steady_clock::time_point end)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd handle{socket.number(), what, 0};
    return left.count() > 0 && retrying([&] { return ::poll(&handle, 1, static_cast<int>(left.count())); }) > 0;
}

} // namespace

StateSocket::StateSocket(std::filesystem::path file) : file_(std::move(file)), listening_(newSocket())
{
    const sockaddr_un address = addressOf(file_);
    std::error_code none;
    if (std::filesystem::is_socket(file_, none)) {
        if (isServed(address))
            throw host::OperationError("The socket " + file_.string() +
                                       " is that of a station at work; name another one as \"socket\".");
        std::filesystem::remove(file_, none); // left behind
    }
    // Nobody is heard before `listen`, and by then the rights are set.
    if (reach(&::bind, listening_, address) != 0 || ::chmod(file_.c_str(), kUserAndGroup) != 0 ||
        ::listen(listening_.number(), kWaiting) != 0)
        throw host::OperationError("The socket " + file_.string() + " cannot be made: " + std::strerror(errno) +
                                   ". May this user write in its folder?");
    bound_ = identity();
}

StateSocket::~StateSocket()
{
    std::error_code ignored;
    if (identity() == bound_)
        std::filesystem::remove(file_, ignored);
}

StateSocket::FileIdentity StateSocket::identity() const
{
    struct stat facts {};
    if (::lstat(file_.c_str(), &facts) != 0)
        return {};
    return {facts.st_dev, facts.st_ino};
}

void StateSocket::answer(const std::string& text) const
{
    const FileDescriptor asking(::accept4(listening_.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!asking.isOpen())
        return;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    std::string_view rest = text;
    while (!rest.empty() && waitFor(asking, POLLOUT, end)) {
        const ssize_t sent = retrying([&] { return ::send(asking.number(), rest.data(), rest.size(), MSG_NOSIGNAL); });
        if (sent <= 0)
            return;
        rest.remove_prefix(static_cast<std::size_t>(sent));
    }
}

std::string askStation(const std::filesystem::path& socket, std::chrono::milliseconds patience)
{
    const FileDescriptor asking = newSocket(SOCK_NONBLOCK);
    const auto end = std::chrono::steady_clock::now() + patience;
    const auto refuseStuck = [&] {
        throw host::OperationError("The station at " + socket.string() +
                                   " does not answer: it is stuck, or its machine is very busy. Restart it.");
    };
    if (reach(&::connect, asking, addressOf(socket)) != 0) {
        if (errno == EAGAIN) // others wait for it already, more than it may have waiting
            refuseStuck();
        if (errno == EACCES)
            throw host::OperationError("You may not ask the station at " + socket.string() +
                                       ": its user and its group may; join the group, or use sudo.");
        throw host::OperationError("No station is at work at " + socket.string() + ": " + std::strerror(errno) +
                                   ". Start it with 'kelreader station FILE'.");
    }
    std::string text;
    std::array<char, 65536> bytes;
    for (;;) {
        if (!waitFor(asking, POLLIN, end))
            refuseStuck();
        const ssize_t count = retrying([&] { return ::read(asking.number(), bytes.data(), bytes.size()); });
        if (count <= 0)
            return text;
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

} // namespace kel
