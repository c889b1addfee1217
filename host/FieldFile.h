// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"
#include "host/Form.h"

#include <vector>

namespace kel::host {

/// The fields of a form file, in its order; those with several lines are one field for each line. The form's sizes and
/// windows are read already. JsonRefusal for what does not fit.
[[nodiscard]] std::vector<Field> readFields(const Json& value, const JsonPlace& place, const Form& form);

} // namespace kel::host
