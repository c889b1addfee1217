// SPDX-License-Identifier: MIT
#include "failure/ErrorReport.h"

namespace kel {

ErrorObject::ErrorObject() = default;
ErrorObject::~ErrorObject() = default;

Boolean ErrorObject::Silent()
{
    return *silent_;
}

void ErrorObject::Silent(Boolean value)
{
    *silent_ = value;
}

} // namespace kel
