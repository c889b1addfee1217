// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel {

/// Position and size of the options window when it was last closed, in the window's own format.
class WindowPlace {
public:
    virtual ~WindowPlace() = default;

    /// Empty before the first time, and where nothing can be saved.
    [[nodiscard]] virtual std::string recall() = 0;
    virtual void keep(const std::string& place) = 0;
};

/// The one that is saved in the registry for the user: HKEY_CURRENT_USER "Software\KELReader81U\Options", "Window".
[[nodiscard]] WindowPlace& registeredWindowPlace();

} // namespace kel
