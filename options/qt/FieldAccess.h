// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// Has screen readers and other assistive programs told the text and the bounds of the number fields. Qt knows neither:
/// the fields keep them in the model.
void describeNumberFields();

} // namespace kel
