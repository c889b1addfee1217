// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

namespace kel::com {

/// Where the server is registered: for the machine, or for the user alone.
enum class RegistrationScope { Machine, User };

/// Writes everything by which hosts find the classes and the type library: what is written follows from the embedded
/// type library. What was written is taken back when something fails.
[[nodiscard]] HRESULT registerServer(RegistrationScope scope) noexcept;

/// Removes everything that registration writes, and the keys above it where nothing else is left in them. What is not
/// there is no failure.
[[nodiscard]] HRESULT unregisterServer(RegistrationScope scope) noexcept;

} // namespace kel::com
