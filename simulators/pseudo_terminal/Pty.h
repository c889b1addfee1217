// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"
#include "platform/LineDevice.h"

#include <string>
#include <string_view>

namespace kel {

/// A pseudo-terminal as its far end sees it: a serial line whose other end any program can open by a name.
///
/// The near end is kept open here too, so that nothing is lost while no program has it open, and so that the line stays
/// when one closes it. Openings and closings are still noticed: the kernel's file watch reports them.
class Pty {
public:
    /// Throws std::system_error when the system has no more of them.
    Pty();

    /// The device that a host opens, such as /dev/pts/3.
    [[nodiscard]] const std::string& name() const noexcept { return name_; }

    /// How the host has set the line. Seven data bits and parity do not show: a pseudo-terminal has no wire.
    [[nodiscard]] LineParameters line() const;

    /// What to wait on: for bytes of the host, and for its opening and closing (-1 when that cannot be seen).
    [[nodiscard]] int handle() const noexcept { return master_.number(); }
    [[nodiscard]] int watchHandle() const noexcept { return watch_.number(); }

    /// What the host has sent; empty when nothing waits.
    [[nodiscard]] std::string read();

    /// Hands bytes to the host as far as there is room; answers how many.
    [[nodiscard]] std::size_t write(std::string_view bytes);

    /// How often programs have opened and closed the line since the last call.
    struct Openings {
        int opened = 0;
        int closed = 0;
    };
    [[nodiscard]] Openings newOpenings();

    /// Whether the host has read all that was written.
    [[nodiscard]] bool allRead() const;
    /// Drops what the host has not read.
    void dropUnread();

    /// Closes this end. The host finds the line hung up, and what it has not read is lost. No other pseudo-terminal
    /// gets the name while this object lives.
    void hangUp() noexcept;

private:
    /// What was written comes to the far end after a while, on a busy machine after a long one. A look at that end
    /// brings it there at once.
    void deliver() const noexcept;

    FileDescriptor master_;
    FileDescriptor slave_;
    FileDescriptor watch_;
    std::string name_;
};

} // namespace kel
