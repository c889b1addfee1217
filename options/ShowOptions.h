// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"

namespace kel {

class clsKELReader;

/// Lets the user choose the reader's model and settings in the options dialog. `parent` is the owner window, of the
/// presenter's own kind, or nothing. True when it was closed with OK; the settings are then in the reader.
/// Fails where nothing can show it.
Boolean showOptionsDialog(clsKELReader& reader, void* parent);

} // namespace kel
