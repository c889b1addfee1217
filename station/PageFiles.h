// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kel {

// The files of a station's page.
extern const std::string_view kStationHtml;
extern const std::string_view kStationCss;
extern const std::string_view kStationScript;
extern const std::string_view kStationIcon;

} // namespace kel
