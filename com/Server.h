// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <string>

namespace kel::com {

/// The component's module, and what keeps it in the process: living objects and locks of the class factories.
void moduleLoaded(HINSTANCE module) noexcept;
[[nodiscard]] HINSTANCE module() noexcept;
/// The full path of the module's file.
[[nodiscard]] std::wstring modulePath();

void objectCreated() noexcept;
void objectDestroyed() noexcept;
void lockServer(bool lock) noexcept;
[[nodiscard]] bool isServerInUse() noexcept;

} // namespace kel::com
