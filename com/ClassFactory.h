// SPDX-License-Identifier: MIT
#pragma once

#include <unknwn.h>

namespace kel::com {

/// The factory of a public class, as the system asks for it; CLASS_E_CLASSNOTAVAILABLE if the class is none of them.
[[nodiscard]] HRESULT classFactoryOf(REFCLSID classID, REFIID iid, void** object) noexcept;

} // namespace kel::com
