// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

// Where the module begins that this code is linked into; that is its instance handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace kel {

/// The instance handle of the DLL that this code is in, or of the program where it is linked into one.
[[nodiscard]] inline HINSTANCE componentInstance() noexcept
{
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

} // namespace kel
