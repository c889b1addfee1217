// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"

namespace kel {

class clsKELReader;

/// Lets the user choose the reader's model and settings in the options dialog. `parent` is the owner window, of the
/// presenter's own kind, or null. True when it was closed with OK; the reader then has the settings. Fails if nothing
/// can show the dialog.
Boolean showOptionsDialog(clsKELReader& reader, void* parent);

} // namespace kel
