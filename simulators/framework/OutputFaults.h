// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "simulators/framework/Fault.h"

#include <optional>
#include <vector>

namespace kel {

/// What the faults do to the bytes that a reader sends: counts the bytes and answers for each what becomes of it.
class OutputFaults {
public:
    OutputFaults() = default;
    explicit OutputFaults(std::vector<Fault> faults) : faults_(std::move(faults)) {}

    /// What becomes of one byte.
    struct Fate {
        Byte byte = 0;
        bool lost = false;
        bool unplugged = false; ///< the line hangs up instead of this byte
        Moment pause{};         ///< on the wire, before it
    };

    [[nodiscard]] bool none() const noexcept { return faults_.empty(); }

    /// The pause before a reply of this many bytes.
    [[nodiscard]] Moment beforeReply(std::size_t length) const;

    /// The next byte.
    [[nodiscard]] Fate next(Byte byte);

    /// A sheet has been fed: bytes count from here for the faults of that sheet.
    void sheetFed(Int32 number);

    /// Whether a fault of the transport stands at a sheet.
    [[nodiscard]] bool atSheet(Fault::Kind kind, Int32 sheet) const;

private:
    static constexpr Int32 kElsewhere = -1;

    /// How many bytes were sent as a fault counts them, or `kElsewhere` if its sheet is not the one under way.
    [[nodiscard]] Int32 sentBefore(const Fault& fault) const;

    std::vector<Fault> faults_;
    Int32 sent_ = 0;
    Int32 sentOfSheet_ = 0;
    Int32 sheet_ = 0;
    bool silent_ = false;
    Moment drip_{};
};

} // namespace kel
