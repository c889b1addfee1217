// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel {

/// Where the options window stood when it was last closed, and what size it had, in the window's own words.
class WindowPlace {
public:
    virtual ~WindowPlace() = default;

    /// Empty before the first time, and where nothing can be kept.
    [[nodiscard]] virtual std::string recall() = 0;
    virtual void keep(const std::string& place) = 0;
};

/// The one that the registry keeps for the user: HKEY_CURRENT_USER "Software\KELReader81U\Options", "Window".
[[nodiscard]] WindowPlace& registeredWindowPlace();

} // namespace kel
