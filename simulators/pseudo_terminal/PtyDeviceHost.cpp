// SPDX-License-Identifier: MIT
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include "platform/ReceivedInput.h"
#include "platform/posix/SteadyTime.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <system_error>

namespace kel {

namespace {

using std::chrono::milliseconds;

// A host opens a line and then sets it. Readers that speak first learn of it a little later.
constexpr Moment kTimeToSetLine = milliseconds(50);

// How long a host may take to read the last bytes of a reader that is unplugged.
constexpr Moment kTimeToReadRest = milliseconds(2000);

/// Characters are 40 microseconds apart on a fast line, and waits are usually no finer than 50.
class FineWaits {
public:
    FineWaits() : usual_(static_cast<unsigned long>(::prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0)))
    {
        ::prctl(PR_SET_TIMERSLACK, 1000UL, 0, 0, 0);
    }
    ~FineWaits() { ::prctl(PR_SET_TIMERSLACK, usual_, 0, 0, 0); }
    FineWaits(const FineWaits&) = delete;
    FineWaits& operator=(const FineWaits&) = delete;

private:
    unsigned long usual_;
};

} // namespace

PtyDeviceHost::PtyDeviceHost(LineDevice& device) : PtyDeviceHost(device, Options()) {}

PtyDeviceHost::PtyDeviceHost(LineDevice& device, Options options)
    : device_(device), options_(std::move(options)), stop_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      begin_(steadyTime())
{
    if (!stop_.isOpen())
        throw std::system_error(errno, std::generic_category(), "no event descriptor");
    makeLink();
}

PtyDeviceHost::~PtyDeviceHost()
{
    stop();
    if (thread_.joinable())
        thread_.join();
    removeLink();
}

/// A link that is left from an earlier run gives way.
void PtyDeviceHost::makeLink() const
{
    if (options_.link.empty())
        return;
    std::error_code ignored;
    if (std::filesystem::is_symlink(std::filesystem::symlink_status(options_.link, ignored)))
        std::filesystem::remove(options_.link);
    std::filesystem::create_symlink(pty_.name(), options_.link);
}

void PtyDeviceHost::removeLink() const noexcept
{
    std::error_code ignored;
    if (!options_.link.empty() && std::filesystem::read_symlink(options_.link, ignored) == pty_.name())
        std::filesystem::remove(options_.link, ignored);
}

Moment PtyDeviceHost::now() const
{
    return steadyTime() - begin_;
}

void PtyDeviceHost::start()
{
    const auto body = [this] {
        try {
            run();
        } catch (...) {
            thrown_ = std::current_exception();
        }
    };
    try {
        thread_ = std::thread(body);
    } catch (const std::system_error& failure) {
        throw std::system_error(failure.code(),
                                "The simulated reader cannot be started, the system gives it no thread");
    }
}

void PtyDeviceHost::join()
{
    if (thread_.joinable())
        thread_.join();
    if (thrown_)
        std::rethrow_exception(std::exchange(thrown_, nullptr));
}

void PtyDeviceHost::stop() noexcept
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(stop_.number(), &one, sizeof one);
}

bool PtyDeviceHost::stopped(Moment within) const
{
    pollfd handle{stop_.number(), POLLIN, 0};
    const timespec time = toTimespec(within);
    return ::ppoll(&handle, 1, &time, nullptr) > 0;
}

void PtyDeviceHost::run()
{
    const FineWaits fineWaits;
    while (!stopped(Moment::zero())) {
        settle(now());
        writeOut();
        if (device_.hungUp()) {
            hangUp();
            return;
        }
        wait();
    }
}

/// When something is due next, of the host or of the device, which is held up while there is no room.
std::optional<Moment> PtyDeviceHost::nextMoment() const
{
    std::optional<Moment> next;
    if (outgoing_.size() < ReceivedInput::kRoom)
        next = device_.nextEvent();
    if (!hostEvents_.empty() && (!next || hostEvents_.front().at < *next))
        next = hostEvents_.front().at;
    return next;
}

/// Does all that is due, in the order of its times. The device hears the time at which a thing was due, not the
/// slightly later one at which it is done.
void PtyDeviceHost::settle(Moment now)
{
    for (std::optional<Moment> next = nextMoment(); next && *next <= now && !device_.hungUp(); next = nextMoment()) {
        deviceTime_ = std::max(deviceTime_, *next);
        if (!hostEvents_.empty() && hostEvents_.front().at <= *next) {
            const HostEvent event = hostEvents_.front();
            hostEvents_.pop_front();
            handle(event);
        } else {
            takeFromDevice(*next);
        }
    }
}

void PtyDeviceHost::handle(const HostEvent& event)
{
    switch (event.kind) {
    case HostEvent::Kind::Opened: device_.lineOpened(deviceTime_, pty_.line()); break;
    case HostEvent::Kind::Sent: device_.byteFromHost(deviceTime_, event.byte); break;
    case HostEvent::Kind::Closed:
        device_.lineClosed(deviceTime_);
        outgoing_.clear();
        pty_.dropUnread();
        break;
    }
}

void PtyDeviceHost::takeFromDevice(Moment moment)
{
    if (const std::optional<Byte> byte = device_.takeByte(deviceTime_)) {
        outgoing_ += static_cast<char>(*byte);
        return;
    }
    if (const std::optional<Moment> next = device_.nextEvent(); next && *next <= moment && !device_.hungUp())
        throw std::logic_error("the simulated device does not do what it says is due");
}

/// What finds no room waits for the host to read.
void PtyDeviceHost::writeOut()
{
    if (!open_)
        outgoing_.clear();
    while (!outgoing_.empty()) {
        const std::size_t count = pty_.write(outgoing_);
        if (count == 0)
            return;
        outgoing_.erase(0, count);
    }
}

void PtyDeviceHost::wait()
{
    const std::optional<Moment> next = nextMoment();
    const short wanted = outgoing_.empty() ? POLLIN : POLLIN | POLLOUT;
    pollfd handles[] = {{pty_.handle(), wanted, 0}, {stop_.number(), POLLIN, 0}, {pty_.watchHandle(), POLLIN, 0}};
    timespec time{};
    if (next)
        time = toTimespec(*next - now());
    if (::ppoll(handles, std::size(handles), next ? &time : nullptr, nullptr) <= 0)
        return;
    lookAtHost();
}

/// Looks at what the host has done, in the order in which it must have done it: a line is opened, then bytes are sent,
/// and what was sent before a closing is there when the closing shows.
void PtyDeviceHost::lookAtHost()
{
    const Pty::Openings changes = pty_.newOpenings();
    openings_ += changes.opened - changes.closed;
    if (changes.opened > 0 && !open_) {
        open_ = true;
        hostEvents_.push_back({std::max(wireFree_, now() + kTimeToSetLine), HostEvent::Kind::Opened});
    }
    const bool closed = changes.closed > 0 && openings_ <= 0;
    fetchBytes();
    if (closed && open_) {
        openNow();
        hostEvents_.push_back({std::max(wireFree_, now()), HostEvent::Kind::Closed});
        open_ = false;
    }
}

/// An opening that the device does not know of yet waits no longer.
void PtyDeviceHost::openNow()
{
    if (!open_) {
        open_ = true;
        hostEvents_.push_back({now(), HostEvent::Kind::Opened});
    } else if (!hostEvents_.empty() && hostEvents_.back().kind == HostEvent::Kind::Opened) {
        hostEvents_.back().at = std::max(wireFree_, now());
    }
}

void PtyDeviceHost::fetchBytes()
{
    for (std::string bytes = pty_.read(); !bytes.empty(); bytes = pty_.read()) {
        openNow();
        const Moment characterTime = options_.paceHost ? pty_.line().characterTime() : Moment::zero();
        wireFree_ = std::max(wireFree_, now());
        for (const char byte : bytes) {
            wireFree_ += characterTime;
            hostEvents_.push_back({wireFree_, HostEvent::Kind::Sent, static_cast<Byte>(byte)});
        }
    }
}

/// The last bytes are lost with the line unless the host has read them before.
void PtyDeviceHost::hangUp()
{
    constexpr Moment kLook = milliseconds(5);
    const Moment end = now() + kTimeToReadRest;
    while (now() < end && !stopped(kLook)) {
        const Pty::Openings changes = pty_.newOpenings();
        openings_ += changes.opened - changes.closed;
        if (pty_.watchHandle() >= 0 && openings_ <= 0)
            break;
        writeOut();
        if (outgoing_.empty() && pty_.allRead())
            break;
    }
    pty_.hangUp();
}

} // namespace kel
