// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"
#include "platform/RemoteConnection.h"

#include <chrono>
#include <future>
#include <mutex>
#include <optional>
#include <string>

struct gensio;
struct gensio_iod;
struct gensio_os_funcs;

namespace kel {

/// Carries bytes between a stream of gensio and a socket of this process, in the thread of the loop: the one who reads
/// and writes the socket's other end has a line of its own, and no turn of gensio's to wait for.
///
///     host  <-- socket pair -->  bridge  <-- gensio: telnet, TLS, TCP -->  far end
///
/// Everything but the constructor and the calls of the host's side runs in that thread.
class GensioBridge {
public:
    /// `hostEnd` gets the host's end of the socket pair. std::system_error if there is none to be had.
    GensioBridge(std::string address, FileDescriptor& hostEnd);
    ~GensioBridge();
    GensioBridge(const GensioBridge&) = delete;
    GensioBridge& operator=(const GensioBridge&) = delete;

    /// Goes on with what is due, from opening to closing; true once nothing is left of it.
    [[nodiscard]] bool step();

    // --- For the host's side

    /// How opening went, and that all is over.
    [[nodiscard]] std::future<RemoteResult> opened() { return opened_.get_future(); }
    [[nodiscard]] std::future<void> ended() { return ended_.get_future(); }

    /// Asks for settings of the far end's serial line.
    [[nodiscard]] std::future<RemoteResult> set(const LineParameters& line, bool demanded);

    /// Ends it all, whatever is under way.
    void giveUp();

private:
    struct Wish {
        LineParameters line;
        bool demanded = false;
        std::promise<RemoteResult> answer;
        int pending = 0;
        RemoteResult result = {};
    };

    struct Events; // gensio's callbacks

    enum class State {
        New,
        Opening, ///< gensio has not answered yet
        Open,
        Closing,   ///< the same, for the end
        Lingering, ///< the host has still its end of the line, which stays as it is: writing to it is no signal
        Clearing,  ///< the watch over the host's socket is being removed
    };

    [[nodiscard]] bool openStream();
    void beginReading();
    void beginClosing();
    void beginClearing();
    void release();
    [[nodiscard]] bool givenUp();

    [[nodiscard]] int fromFarEnd(int error, const unsigned char* bytes, unsigned long* count);
    void fromHost();
    void toFarEnd();
    void takeWish();
    void startWish();
    void settingAnswered(int error, unsigned int wanted, unsigned int taken, const char* what);
    void endWish();
    void hangUp();

    std::string address_;
    FileDescriptor hostSide_;
    std::promise<RemoteResult> opened_;
    std::promise<void> ended_;

    std::mutex mutex_; // over the two below
    std::optional<Wish> newWish_;
    bool givenUp_ = false;

    gensio_os_funcs* os_ = nullptr;
    gensio* stream_ = nullptr;
    gensio_iod* hostWatch_ = nullptr;
    State state_ = State::New;
    std::chrono::steady_clock::time_point closingEnds_;
    bool openAnswered_ = false;
    bool hostGone_ = false;
    bool hungUp_ = false;
    bool closed_ = false;
    bool watched_ = false;
    std::string toFarEnd_;
    std::optional<Wish> wish_;
};

} // namespace kel
