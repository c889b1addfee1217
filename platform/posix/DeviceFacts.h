// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace kel {

/// Who may use a device and who is asking: "it belongs to root, group dialout, with mode 0660, and you are alice".
[[nodiscard]] std::string deviceAccessText(const std::string& device);

/// What the current user could do to get access: the group to join, or to log in again if that is already done.
[[nodiscard]] std::string deviceAccessAdvice(const std::string& device);

/// A process and what it is called.
struct DeviceUser {
    pid_t process = 0;
    std::string name;
};

/// The process that has a device locked or, if none has, open; this process included. Nothing where that cannot be
/// found out: other users' open files are private.
[[nodiscard]] std::optional<DeviceUser> deviceUser(const std::string& device);

} // namespace kel
