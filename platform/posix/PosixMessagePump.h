#pragma once

#include "platform/TurnPump.h"

#include <cstdint>
#include <poll.h>
#include <vector>

namespace kel {

class LineInput;

/// The pump of one thread. A turn that blocks does so in one poll of all open lines; one that does not makes no system
/// call for them.
class PosixMessagePump final : public TurnPump {
public:
    using TurnPump::add;
    using TurnPump::remove;
    void add(LineInput& line);
    void remove(LineInput& line);

    /// How often the pump has asked the system about its lines, for tests.
    [[nodiscard]] std::uint64_t polls() const noexcept { return polls_; }

private:
    void fetchInput(Moment atMost) override;
    void sleepUntil(Moment end) override;

    std::vector<pollfd> handles_;
    std::vector<LineInput*> polled_;
    std::uint64_t polls_ = 0;
};

} // namespace kel
