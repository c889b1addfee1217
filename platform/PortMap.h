// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"
#include "types/Export.h"
#include "types/Numbers.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace kel {

/// Which device a port number 1 to 16 stands for. The map is kept in the registry, under HKEY_CURRENT_USER
/// "Software\KELReader81U\Ports", a text value a port, with the number as its name.
class KEL_INTERNAL PortMap {
public:
    static constexpr Int16 kFirstPort = 1;
    static constexpr Int16 kLastPort = 16;

    /// The longest name of a device, in bytes, as long as a path may be. What others have put into the registry may be
    /// longer; it opens nothing.
    static constexpr std::size_t kLongestDevice = 4096;

    explicit PortMap(Registry& registry) : registry_(registry) {}

    /// The device of a port: the one that this thread has put in its place, or else the mapped one; nothing if there
    /// is none.
    [[nodiscard]] std::optional<std::string> get(Int16 port) const;

    /// Assigns a port to a device, or removes its device. False for a number outside 1 to 16, for a device whose name
    /// is empty or too long, for a port that has none to take away, and when the registry refuses it.
    bool set(Int16 port, const std::string& device);
    bool clear(Int16 port);

    /// All ports that have a device, as `get` gives them.
    [[nodiscard]] std::map<Int16, std::string> all() const;

private:
    Registry& registry_;
};

/// Uses a device instead of a port's for this thread, for as long as it lives, and leaves the registry alone. Of
/// several for the same port the latest wins. It ends on the thread that made it.
class KEL_INTERNAL PortOverride {
public:
    PortOverride(Int16 port, std::string device);
    ~PortOverride();
    PortOverride(const PortOverride&) = delete;
    PortOverride& operator=(const PortOverride&) = delete;

private:
    friend class PortMap;

    Int16 port_;
    std::string device_;
};

} // namespace kel
