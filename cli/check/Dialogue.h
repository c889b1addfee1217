// SPDX-License-Identifier: MIT
#pragma once

#include "recording/Transcript.h"

#include <optional>
#include <string>
#include <vector>

namespace kel {

/// Bytes of the reader that the host came to know of in one look. Times are milliseconds from when the line was opened.
struct Arrival {
    double notBefore = 0; ///< when the host last looked without seeing them
    double at = 0;
    std::string bytes;
};

/// Bytes of the host, and what came upon them before it sent again.
struct Exchange {
    double sentAt = 0;
    std::string sent;
    std::vector<Arrival> arrivals;

    [[nodiscard]] std::string reply() const;
    /// Milliseconds from sending to the first byte; nothing if none came.
    [[nodiscard]] std::optional<double> replyTime() const;
};

/// What went over a line from when it was opened to when it was closed.
struct Dialogue {
    std::vector<Arrival> unasked; ///< what came before the host sent anything
    std::vector<Exchange> exchanges;
    double milliseconds = 0;

    [[nodiscard]] bool anyReply() const;
    /// The last exchange whose sent bytes begin so, if there is one.
    [[nodiscard]] const Exchange* last(std::string_view begin) const;
};

[[nodiscard]] Dialogue dialogueOf(const Transcript& trace);

/// At what pace the bytes of long replies came.
struct Pace {
    double character = 0;     ///< milliseconds from byte to byte
    double standardError = 0; ///< of that; 0 where every byte was seen on its own
    int bytes = 0;            ///< that it was taken from
    double lump = 0;          ///< milliseconds of line that came at once, where bytes came in lumps; 0 if not
};

/// From the replies that are long enough; nullopt if there are none. `character` is what a byte takes on the line.
[[nodiscard]] std::optional<Pace> paceOf(const Dialogue& dialogue, double character);

} // namespace kel
