// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel {

/// A caption without the mark of its access key and without the colon of a label.
[[nodiscard]] std::string plainCaption(const std::string& caption);

} // namespace kel
