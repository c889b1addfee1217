// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Process.h"

namespace kel {

/// This process as the system describes it.
class WindowsProcess final : public Process {
public:
    [[nodiscard]] std::string CommandLine() const override;
    [[nodiscard]] std::filesystem::path ComponentFolder() const override;
    /// The DLL that this code is in, or the program where it is linked into one.
    [[nodiscard]] std::filesystem::path ComponentFile() const override;
    /// As the user has set them.
    [[nodiscard]] NumberSigns numberSigns() const override;
    [[nodiscard]] std::optional<std::string> ProfileString(const std::string& section, const std::string& key,
                                                           const std::string& otherwise, std::size_t bufferSize,
                                                           const std::string& fileName) const override;
};

} // namespace kel
