// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "types/Enumerations.h"
#include "types/Reference.h"

#include <functional>
#include <string_view>

namespace kel {

/// The carrier of a test around another one. It notes whether the reader answers, and withholds what would move a
/// sheet: the session that sends such a command fails there.
class TestLine final : public Carrier {
public:
    /// `feeds` says that the model takes sheets by itself as soon as it has been started.
    TestLine(Reference<Carrier> inner, bool feeds, std::function<void()> whenOpen)
        : inner_(std::move(inner)), feeds_(feeds), whenOpen_(std::move(whenOpen)), control_(*this)
    {
    }

    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return inner_->tmrScan(); }

    /// Whether the port could be opened; whether anything has come since; whether something was taken as an answer.
    [[nodiscard]] bool hasOpened() const noexcept { return hasOpened_; }
    [[nodiscard]] bool hasHeard() const noexcept { return hasHeard_; }
    [[nodiscard]] bool isAnswered() const noexcept { return isAnswered_; }

    /// Whether a command was withheld.
    [[nodiscard]] bool hasWithheld() const noexcept { return hasWithheld_; }

private:
    class Control final : public SerialControl {
    public:
        explicit Control(TestLine& line) : line_(line) {}

        [[nodiscard]] Int16 CommPort() const override { return inner().CommPort(); }
        void CommPort(Int16 value) override { inner().CommPort(value); }
        [[nodiscard]] std::string Settings() const override { return inner().Settings(); }
        void Settings(const std::string& value) override { inner().Settings(value); }
        [[nodiscard]] Int32 Handshaking() const override { return inner().Handshaking(); }
        void Handshaking(Int32 value) override { inner().Handshaking(value); }
        [[nodiscard]] Boolean PortOpen() const override { return inner().PortOpen(); }
        void PortOpen(Boolean value) override;
        [[nodiscard]] Int32 InputLen() const override { return inner().InputLen(); }
        void InputLen(Int32 value) override { inner().InputLen(value); }
        [[nodiscard]] Int32 InBufferCount() override;
        [[nodiscard]] std::string Input() override;
        void Output(std::string_view bytes) override;

    private:
        [[nodiscard]] SerialControl& inner() const { return line_.inner_->mscComm(); }

        TestLine& line_;
    };

    [[nodiscard]] bool movesSheet(std::string_view bytes) const;

    Reference<Carrier> inner_;
    bool feeds_;
    std::function<void()> whenOpen_;
    Control control_;
    bool hasOpened_ = false;
    bool hasAsked_ = false;
    bool hasHeard_ = false;
    bool isAnswered_ = false;
    bool hasWithheld_ = false;
};

} // namespace kel
