// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows/SystemHandle.h"
#include "platform/windows/WatchedInput.h"

#include <memory>
#include <optional>

namespace kel {

/// The input side of an open port.
class PortInput final : public WatchedInput {
public:
    /// The port must be open for overlapped use, and its reads must not wait; `name` is for failures. A port that
    /// cannot be watched has to be looked at: so a pseudo-terminal under Wine, which ends its watch at once, and leaves
    /// a trace of it in its list of threads that holds up the process later.
    PortInput(HANDLE port, std::string name, bool canBeWatched);
    ~PortInput() override;

    /// What waits at the port in either direction; nothing if the port is gone. What has gone wrong on the line since
    /// the last call is counted.
    [[nodiscard]] std::optional<COMSTAT> status();

    /// The system says that something of a kind has gone wrong, and not how often: each time counts as one.
    [[nodiscard]] LineErrors errors() override;

    [[nodiscard]] HANDLE arrival() override;
    void arrived() override;

private:
    /// What the system writes to while it watches the port; it must stay where it is for so long.
    struct Watch {
        SystemHandle event;
        OVERLAPPED state{};
        DWORD events = 0;
    };

    [[nodiscard]] Fetched read(char* into, std::size_t room) override;
    void awaitInput(Moment until) override;

    HANDLE port_;
    LineErrors errors_;
    SystemHandle readDone_;
    std::unique_ptr<Watch> watch_;
    bool watching_ = false;
    bool canBeWatched_;
};

} // namespace kel
