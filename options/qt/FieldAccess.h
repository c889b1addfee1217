// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// Gives screen readers and other assistive programs the text and the bounds of the number fields. Qt knows neither:
/// they are in the model.
void describeNumberFields();

} // namespace kel
