// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

namespace kel {

/// What the far end of a cable says on its wires of their own.
struct ModemLines {
    bool clearToSend = false;   ///< CTS: the host may send
    bool dataSetReady = false;  ///< DSR: a device that is switched on
    bool carrierDetect = false; ///< DCD

    friend bool operator==(const ModemLines&, const ModemLines&) = default;
};

/// A serial control, or the far end of a simulated line, that knows them.
class TellsModemLines {
public:
    virtual ~TellsModemLines() = default;

    /// As they are now; nothing for a line without such wires, a closed one, and where the system does not say.
    [[nodiscard]] virtual std::optional<ModemLines> modemLines() = 0;
};

} // namespace kel
