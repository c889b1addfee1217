// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel {

/// Where Qt can show windows.
struct Display {
    std::string platform; ///< the name of Qt's platform plug-in, with its arguments; empty if there is none
    std::string reason;   ///< then why, in a sentence
};

/// Looks for a display before Qt does: Qt ends the process if it finds none. It goes by QT_QPA_PLATFORM,
/// WAYLAND_DISPLAY and DISPLAY, as Qt itself does; takes only a plug-in that can be loaded; and tries whether the
/// display's server lets this process in.
[[nodiscard]] Display findDisplay();

} // namespace kel
