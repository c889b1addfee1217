// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/ControlAround.h"
#include "types/Enumerations.h"
#include "types/Reference.h"

#include <functional>
#include <string>
#include <string_view>

namespace kel {

/// A carrier for a test, around another carrier. It notes whether the reader answers, and does not send commands that
/// would move a sheet: the session fails at such a command.
class TrialLine final : public Carrier {
public:
    TrialLine(Reference<Carrier> inner, kelReaderType model, std::function<void()> whenOpen)
        : inner_(std::move(inner)), model_(model), whenOpen_(std::move(whenOpen)), control_(*this)
    {
    }

    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return inner_->tmrScan(); }

    /// Whether the port could be opened; whether anything has arrived since; whether anything counted as an answer.
    [[nodiscard]] bool hasOpened() const noexcept { return hasOpened_; }
    [[nodiscard]] bool hasHeard() const noexcept { return hasHeard_; }
    [[nodiscard]] bool isAnswered() const noexcept { return isAnswered_; }

    /// Whether a command was withheld.
    [[nodiscard]] bool hasWithheld() const noexcept { return hasWithheld_; }

private:
    class Control final : public ControlAround {
    public:
        explicit Control(TrialLine& line) : line_(line) {}

        using ControlAround::PortOpen;
        void PortOpen(Boolean value) override;
        [[nodiscard]] Int32 InBufferCount() override;
        [[nodiscard]] std::string Input() override;
        void Output(std::string_view bytes) override;

    private:
        [[nodiscard]] SerialControl& inner() const override { return line_.inner_->mscComm(); }

        TrialLine& line_;
    };

    Reference<Carrier> inner_;
    kelReaderType model_;
    std::function<void()> whenOpen_;
    Control control_;
    std::string before_; // the last output
    bool hasOpened_ = false;
    bool hasAsked_ = false;
    bool hasHeard_ = false;
    bool isAnswered_ = false;
    bool hasWithheld_ = false;
};

} // namespace kel
