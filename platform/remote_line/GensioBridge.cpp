// SPDX-License-Identifier: MIT
#include "platform/remote_line/GensioBridge.h"

#include "platform/remote_line/GensioLoop.h"

#include <array>

extern "C" {
#include <gensio/gensio.h>
#include <gensio/gensio_os_funcs.h>
#include <gensio/sergensio.h>
}

#include <sys/socket.h>

namespace kel {

namespace {

/// How long the far end may take over the end of a connection.
constexpr std::chrono::milliseconds kClosingPatience{800};

RemoteResult openFailure(int error)
{
    using Cause = RemoteResult::Cause;
    switch (error) {
    case GE_NOERR: return {};
    case GE_NAME_INVALID:
    case GE_NAME_ERROR:
    case GE_UNKNOWN_NAME_ERROR:
    case GE_NOTFOUND: return {Cause::NoSuchPlace, "its host is unknown"};
    case GE_INVAL:
    case GE_TOOBIG: return {Cause::NoSuchPlace, "this is not an address"};
    case GE_CONNREFUSE: return {Cause::Unreachable, "the connection was refused"};
    case GE_CERTNOTFOUND:
    case GE_CERTINVALID:
    case GE_CERTEXPIRED:
    case GE_CERTREVOKED:
    case GE_NOCERT:
        return {Cause::Unreachable,
                "the server's certificate is not trusted: " + std::string(gensio_err_to_str(error))};
    default: return {Cause::Unreachable, gensio_err_to_str(error)};
    }
}

unsigned int parityNumber(char letter)
{
    switch (letter) {
    case 'O': return SERGENSIO_PARITY_ODD;
    case 'E': return SERGENSIO_PARITY_EVEN;
    case 'M': return SERGENSIO_PARITY_MARK;
    case 'S': return SERGENSIO_PARITY_SPACE;
    default: return SERGENSIO_PARITY_NONE;
    }
}

/// The far end cannot have both kinds; the wires are the surer one.
unsigned int flowControlNumber(Int32 handshaking)
{
    switch (handshaking) {
    case 0: return SERGENSIO_FLOWCONTROL_NONE;
    case 1: return SERGENSIO_FLOWCONTROL_XON_XOFF;
    default: return SERGENSIO_FLOWCONTROL_RTS_CTS;
    }
}

/// One setting that was asked for.
struct Asked {
    GensioBridge* bridge;
    unsigned int wanted;
    const char* what;
};

} // namespace

struct GensioBridge::Events {
    static GensioBridge& bridge(void* data) { return *static_cast<GensioBridge*>(data); }

    static int happened(gensio*, void* data, int event, int error, unsigned char* bytes, gensiods* count,
                        const char* const*)
    {
        switch (event) {
        case GENSIO_EVENT_READ: return bridge(data).fromFarEnd(error, bytes, count);
        case GENSIO_EVENT_WRITE_READY: bridge(data).toFarEnd(); return 0;
        default: return GE_NOTSUP;
        }
    }

    static void openDone(gensio*, int error, void* data)
    {
        GensioBridge& self = bridge(data);
        self.openAnswered_ = true;
        if (error != 0)
            self.closed_ = true;
        self.opened_.set_value(openFailure(error));
    }

    static void closeDone(gensio*, void* data) { bridge(data).closed_ = true; }

    static void hostReadable(gensio_iod*, void* data) { bridge(data).fromHost(); }

    static void hostWritable(gensio_iod*, void* data)
    {
        GensioBridge& self = bridge(data);
        self.os_->set_write_handler(self.hostWatch_, false);
        gensio_set_read_callback_enable(self.stream_, true);
    }

    static void nothing(gensio_iod*, void*) {}
    static void watchEnded(gensio_iod*, void* data) { bridge(data).watched_ = false; }

    static void settingDone(sergensio*, int error, unsigned int value, void* data)
    {
        const std::unique_ptr<Asked> asked(static_cast<Asked*>(data));
        asked->bridge->settingAnswered(error, asked->wanted, value, asked->what);
    }
};

GensioBridge::GensioBridge(std::string address, FileDescriptor& hostEnd) : address_(std::move(address))
{
    connectPair(hostEnd, hostSide_);
}

GensioBridge::~GensioBridge() = default;

// --- The host's side

std::future<RemoteResult> GensioBridge::set(const LineParameters& line, bool demanded)
{
    Wish wish{.line = line, .demanded = demanded, .answer = {}};
    std::future<RemoteResult> answer = wish.answer.get_future();
    {
        const std::lock_guard lock(mutex_);
        newWish_ = std::move(wish);
    }
    GensioLoop::instance().wake();
    return answer;
}

void GensioBridge::giveUp()
{
    {
        const std::lock_guard lock(mutex_);
        givenUp_ = true;
    }
    GensioLoop::instance().wake();
}

// --- The thread

bool GensioBridge::step()
{
    switch (state_) {
    case State::New:
        if (openStream())
            state_ = State::Opening;
        else
            beginClearing();
        break;
    case State::Opening:
        if (closed_)
            beginClearing();
        else if (givenUp())
            beginClosing();
        else if (openAnswered_)
            beginReading();
        break;
    case State::Open:
        takeWish();
        if (closed_ || hungUp_ || (hostGone_ && toFarEnd_.empty()) || givenUp())
            beginClosing();
        break;
    case State::Closing:
        if (closed_ || std::chrono::steady_clock::now() > closingEnds_) {
            os_->set_read_handler(hostWatch_, true);
            state_ = State::Lingering;
        }
        break;
    case State::Lingering:
        takeWish();
        if (hostGone_ || givenUp())
            beginClearing();
        break;
    case State::Clearing:
        if (!watched_) {
            release();
            return true;
        }
        break;
    }
    return false;
}

bool GensioBridge::givenUp()
{
    const std::lock_guard lock(mutex_);
    return givenUp_;
}

bool GensioBridge::openStream()
{
    os_ = GensioLoop::instance().os();
    int error = os_->add_iod(os_, GENSIO_IOD_SOCKET, hostSide_.number(), &hostWatch_);
    if (error == 0)
        error = os_->set_fd_handlers(hostWatch_, this, &Events::hostReadable, &Events::hostWritable, &Events::nothing,
                                     &Events::watchEnded);
    watched_ = error == 0;
    if (error == 0)
        error = str_to_gensio(address_.c_str(), os_, &Events::happened, this, &stream_);
    if (error == 0)
        error = gensio_open(stream_, &Events::openDone, this);
    if (error != 0)
        opened_.set_value(openFailure(error));
    return error == 0;
}

void GensioBridge::beginReading()
{
    state_ = State::Open;
    gensio_set_read_callback_enable(stream_, true);
    os_->set_read_handler(hostWatch_, true);
}

void GensioBridge::beginClosing()
{
    state_ = State::Closing;
    closingEnds_ = std::chrono::steady_clock::now() + kClosingPatience;
    if (wish_)
        endWish();
    if (!closed_ && gensio_close(stream_, &Events::closeDone, this) != 0)
        closed_ = true;
    GensioLoop::instance().wake();
}

void GensioBridge::beginClearing()
{
    state_ = State::Clearing;
    if (watched_)
        os_->clear_fd_handlers(hostWatch_);
    GensioLoop::instance().wake();
}

void GensioBridge::release()
{
    if (hostWatch_)
        os_->release_iod(hostWatch_);
    if (stream_)
        gensio_free(stream_);
    ended_.set_value();
}

/// What the host's socket does not take now stays with gensio, until there is room.
int GensioBridge::fromFarEnd(int error, const unsigned char* bytes, unsigned long* count)
{
    if (error != 0) {
        gensio_set_read_callback_enable(stream_, false);
        hangUp();
        return 0;
    }
    const ssize_t taken = retrying([&] { return ::send(hostSide_.number(), bytes, *count, MSG_NOSIGNAL); });
    if (taken < 0 && errno != EAGAIN && errno != EWOULDBLOCK)
        return 0; // the host is gone, and nobody wants them
    const auto passed = static_cast<unsigned long>(taken < 0 ? 0 : taken);
    if (passed < *count) {
        gensio_set_read_callback_enable(stream_, false);
        os_->set_write_handler(hostWatch_, true);
    }
    *count = passed;
    return 0;
}

/// The host sees the end of its input, after the bytes that came before.
void GensioBridge::hangUp()
{
    hungUp_ = true;
    ::shutdown(hostSide_.number(), SHUT_WR);
}

void GensioBridge::fromHost()
{
    std::array<char, 4096> bytes;
    const ssize_t count = retrying([&] { return ::read(hostSide_.number(), bytes.data(), bytes.size()); });
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
        return;
    if (count <= 0) {
        hostGone_ = true;
        os_->set_read_handler(hostWatch_, false);
        return;
    }
    if (hungUp_)
        return;
    toFarEnd_.append(bytes.data(), static_cast<std::size_t>(count));
    os_->set_read_handler(hostWatch_, false);
    toFarEnd();
}

void GensioBridge::toFarEnd()
{
    gensiods count = 0;
    if (!toFarEnd_.empty() && gensio_write(stream_, &count, toFarEnd_.data(), toFarEnd_.size(), nullptr) != 0) {
        toFarEnd_.clear();
        hangUp();
    } else {
        toFarEnd_.erase(0, count);
    }
    gensio_set_write_callback_enable(stream_, !toFarEnd_.empty());
    if (toFarEnd_.empty() && !hostGone_)
        os_->set_read_handler(hostWatch_, true);
}

void GensioBridge::takeWish()
{
    {
        const std::lock_guard lock(mutex_);
        if (wish_ || !newWish_)
            return;
        wish_ = std::move(newWish_);
        newWish_.reset();
    }
    startWish();
}

void GensioBridge::startWish()
{
    sergensio* const line = hungUp_ || closed_ || state_ != State::Open ? nullptr : gensio_to_sergensio(stream_);
    if (!line) {
        if (wish_->demanded)
            wish_->result = {RemoteResult::Cause::Refused, "the server accepts no line settings"};
        endWish();
        return;
    }
    using Ask = int (*)(sergensio*, unsigned int, sergensio_done, void*);
    struct Setting {
        Ask ask;
        unsigned int value;
        const char* what;
    };
    const LineParameters& wanted = wish_->line;
    const Setting settings[] = {
        {&sergensio_baud, static_cast<unsigned int>(wanted.baudRate), "speed"},
        {&sergensio_datasize, static_cast<unsigned int>(wanted.dataBits), "number of data bits"},
        {&sergensio_parity, parityNumber(wanted.parity), "parity"},
        {&sergensio_stopbits, wanted.stopBits > 1 ? 2U : 1U, "number of stop bits"},
        {&sergensio_flowcontrol, flowControlNumber(wanted.handshaking), "handshaking"},
    };
    wish_->pending = 1; // lest the first answer that comes at once ends it
    for (const Setting& setting : settings) {
        auto asked = std::make_unique<Asked>(Asked{this, setting.value, setting.what});
        ++wish_->pending;
        const int error = setting.ask(line, setting.value, &Events::settingDone, asked.get());
        if (error == 0)
            static_cast<void>(asked.release()); // the answer frees it
        else
            settingAnswered(error, setting.value, 0, setting.what);
    }
    if (--wish_->pending == 0)
        endWish();
}

void GensioBridge::settingAnswered(int error, unsigned int wanted, unsigned int taken, const char* what)
{
    if (!wish_)
        return;
    if (error != 0)
        wish_->result = {RemoteResult::Cause::Refused,
                         "the server does not set the " + std::string(what) + ": " + gensio_err_to_str(error)};
    else if (taken != wanted)
        wish_->result = {RemoteResult::Cause::Refused, "the server was asked for the " + std::string(what) + " " +
                                                           std::to_string(wanted) + " and took " +
                                                           std::to_string(taken)};
    if (--wish_->pending == 0)
        endWish();
}

void GensioBridge::endWish()
{
    wish_->answer.set_value(wish_->result);
    wish_.reset();
}

} // namespace kel
