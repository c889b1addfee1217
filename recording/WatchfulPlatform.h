// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PlatformAround.h"
#include "types/Reference.h"
#include "types/RuntimeFailure.h"

#include <chrono>
#include <functional>
#include <utility>

namespace kel {

/// Looks at a carrier's line, if it is open.
[[nodiscard]] inline std::function<void()> lookingAt(Reference<Carrier> carrier)
{
    return [line = std::move(carrier)] {
        try {
            if (line->mscComm().PortOpen())
                static_cast<void>(line->mscComm().InBufferCount());
        } catch (const RuntimeFailure&) {
            // Whoever uses the line finds out himself.
        }
    };
}

/// A platform whose pauses look at the line all the while, so that a trace shows when bytes came and not when a driver
/// got round to them. Everything else is another platform's.
class WatchfulPlatform final : public PlatformAround {
public:
    WatchfulPlatform(Platform& machine, std::function<void()> look)
        : PlatformAround(machine), pump_(machine, std::move(look))
    {
    }

    [[nodiscard]] MessagePump& pump() override { return pump_; }

private:
    class Pump final : public MessagePump {
    public:
        Pump(Platform& machine, std::function<void()> look) : machine_(machine), look_(std::move(look)) {}

        void DoEvents() override { inner().DoEvents(); }

        void Sleep(Int32 milliseconds) override
        {
            const Moment end = now() + std::chrono::milliseconds(milliseconds);
            while (now() < end) {
                look_();
                inner().Sleep(1);
            }
        }

        [[nodiscard]] Moment now() const override { return machine_.pump().now(); }
        void hostPump(std::function<void()> pump) override { inner().hostPump(std::move(pump)); }

    private:
        [[nodiscard]] MessagePump& inner() const { return machine_.pump(); }

        Platform& machine_;
        std::function<void()> look_;
    };

    Pump pump_;
};

} // namespace kel
