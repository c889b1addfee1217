// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ErrorLibrary.h"

#include <memory>
#include <string>

namespace kel::com {

/// A new object of a registered class, as an error library: its members `ErrorHandler` and `Action` are called by their
/// names. Nothing where there is no such class.
[[nodiscard]] std::shared_ptr<ErrorLibraryObject> createRegisteredErrorLibrary(const std::string& className);

} // namespace kel::com
