// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace kel {

/// The component's texts, which are UTF-8, as Qt's.
inline QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

} // namespace kel
