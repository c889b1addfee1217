// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"

namespace kel {

class clsKELReader;

/// What shows the options dialog of a reader object: True when it was closed with OK.
using OptionsDialog = Boolean (*)(clsKELReader& reader, void* parent);

/// Installs it. Called once at start-up; without one `ShowOptions` fails.
void setOptionsDialog(OptionsDialog dialog);
[[nodiscard]] OptionsDialog optionsDialog();

} // namespace kel
