// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ErrorLibrary.h"

#include <memory>
#include <string>

namespace kel {

/// How the system finds a class that no host has registered: `CreateObject` where there is such a thing. It gives
/// nothing, or fails, where there is no such class.
using ObjectCreator = std::shared_ptr<ErrorLibraryObject> (*)(const std::string& className);

/// Installs how classes are found. Called once at start-up.
void setObjectCreator(ObjectCreator creator);

/// An object of a class by its name: what a host has registered, or what the system finds; nothing, and no failure,
/// where there is no such class.
[[nodiscard]] std::shared_ptr<ErrorLibraryObject> createErrorLibrary(const std::string& className);

} // namespace kel
