// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/Platform.h"
#include "types/RuntimeFailure.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace kel::test {

/// A carrier as a host may bring its own: an open line that answers what the test lays out, and whose device goes away
/// when it is told to. The timer is the platform's.
class FailingLine : public Carrier, public SerialControl {
public:
    FailingLine() : timer_(platform().newScanTimer()) {}

    /// The device goes away at the nth access from now on; `whenGone` runs just before that is told.
    void failsAt(int nth, std::function<void()> whenGone = {})
    {
        untilGone_ = nth;
        whenGone_ = std::move(whenGone);
    }

    /// The device goes away when these bytes are sent.
    void failsAtOutput(std::string bytes) { lastBytes_ = std::move(bytes); }

    /// What comes upon an output: to be put after `waiting`.
    std::function<void(std::string_view bytes)> onOutput;
    /// What the host does while its carrier is being used.
    std::function<void()> onHandshaking;
    std::function<void()> onInput;
    bool inputIsEmpty = false; ///< `Input` gives nothing, whatever waits
    std::string waiting;       ///< what has been received and not been taken
    std::string sent;          ///< what the host has sent

    [[nodiscard]] SerialControl& mscComm() override { return *this; }
    [[nodiscard]] ScanTimer& tmrScan() override { return *timer_; }

    [[nodiscard]] Int16 CommPort() const override { return commPort_; }
    void CommPort(Int16 value) override
    {
        access();
        commPort_ = value;
    }
    [[nodiscard]] std::string Settings() const override { return {}; }
    void Settings(const std::string&) override { access(); }
    [[nodiscard]] Int32 Handshaking() const override { return 0; }
    void Handshaking(Int32) override
    {
        access();
        if (onHandshaking)
            onHandshaking();
    }
    [[nodiscard]] Boolean PortOpen() const override
    {
        access();
        return open_;
    }
    void PortOpen(Boolean value) override
    {
        access();
        open_ = value;
    }
    [[nodiscard]] Int32 InputLen() const override { return inputLen_; }
    void InputLen(Int32 value) override
    {
        access();
        inputLen_ = value;
    }
    [[nodiscard]] Int32 InBufferCount() override
    {
        access();
        return static_cast<Int32>(waiting.size());
    }
    [[nodiscard]] std::string Input() override
    {
        access();
        if (onInput)
            onInput();
        if (inputIsEmpty)
            return {};
        const std::size_t length = inputLen_ == 0 ? waiting.size() : static_cast<std::size_t>(inputLen_);
        std::string taken = waiting.substr(0, length);
        waiting.erase(0, length);
        return taken;
    }
    void Output(std::string_view bytes) override
    {
        access();
        if (!lastBytes_.empty() && bytes == lastBytes_)
            goAway();
        sent += bytes;
        if (onOutput)
            onOutput(bytes);
    }

private:
    void access() const
    {
        if (untilGone_ > 0 && --untilGone_ == 0)
            goAway();
    }

    void goAway() const
    {
        // Short enough for a text without memory of its own.
        const RuntimeFailure gone(static_cast<Int32>(FailureCode::ErrorReadingDevice), "gone");
        if (whenGone_)
            whenGone_();
        throw gone;
    }

    std::unique_ptr<ScanTimer> timer_;
    mutable int untilGone_ = 0;
    std::function<void()> whenGone_;
    std::string lastBytes_;
    Boolean open_ = True;
    Int16 commPort_ = 1;
    Int32 inputLen_ = 0;
};

} // namespace kel::test
