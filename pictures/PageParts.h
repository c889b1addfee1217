// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kel {

/// The style of pictures.
extern const std::string_view kSheetCss;

/// The beginning of a batch's page, with its style and its script: the data go after it.
extern const std::string_view kBatchHtml;

} // namespace kel
