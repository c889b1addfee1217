// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/ControlAround.h"
#include "platform/MessagePump.h"
#include "types/Enumerations.h"
#include "types/Reference.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kel {

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
    class Control final : public ControlAround {
    public:
        explicit Control(PaperGuard& guard) : guard_(guard) {}

        [[nodiscard]] Int32 InBufferCount() override;
        void Output(std::string_view bytes) override;

    private:
        [[nodiscard]] SerialControl& inner() const override { return guard_.inner_->mscComm(); }

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
