// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/MessagePump.h"
#include "types/Enumerations.h"
#include "types/Reference.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// Whether a reader of a model takes these bytes without moving paper, printing, or storing anything beyond the
/// session. `before` is what it was sent last.
[[nodiscard]] bool movesNoPaper(kelReaderType model, std::string_view bytes, std::string_view before);

/// The carrier of a check around another one. Until paper may move it withholds what might move it: the session that
/// sends such a command fails there. And it ends waits that nothing else ends.
class PaperGuard final : public Carrier {
public:
    struct Rules {
        kelReaderType model{};
        bool paperMayMove = false;
        std::function<bool()> stopped; ///< whether the session is to end
    };

    PaperGuard(Reference<Carrier> inner, Rules rules)
        : inner_(std::move(inner)), control_(*this), rules_(std::move(rules))
    {
    }

    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return inner_->tmrScan(); }

    /// The first command that was withheld; empty if none was.
    [[nodiscard]] const std::string& withheld() const noexcept { return withheld_; }

private:
    class Control final : public SerialControl {
    public:
        explicit Control(PaperGuard& guard) : guard_(guard) {}

        [[nodiscard]] Int16 CommPort() const override { return inner().CommPort(); }
        void CommPort(Int16 value) override { inner().CommPort(value); }
        [[nodiscard]] std::string Settings() const override { return inner().Settings(); }
        void Settings(const std::string& value) override { inner().Settings(value); }
        [[nodiscard]] Int32 Handshaking() const override { return inner().Handshaking(); }
        void Handshaking(Int32 value) override { inner().Handshaking(value); }
        [[nodiscard]] Boolean PortOpen() const override { return inner().PortOpen(); }
        void PortOpen(Boolean value) override { inner().PortOpen(value); }
        [[nodiscard]] Int32 InputLen() const override { return inner().InputLen(); }
        void InputLen(Int32 value) override { inner().InputLen(value); }
        [[nodiscard]] Int32 InBufferCount() override;
        [[nodiscard]] std::string Input() override { return inner().Input(); }
        void Output(std::string_view bytes) override;

    private:
        [[nodiscard]] SerialControl& inner() const { return guard_.inner_->mscComm(); }

        PaperGuard& guard_;
    };

    void endIfStopped();

    Reference<Carrier> inner_;
    Control control_;
    Rules rules_;
    std::string withheld_;
    std::string before_;
    std::optional<Moment> stoppedAt_;
};

} // namespace kel
