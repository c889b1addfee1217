// SPDX-License-Identifier: MIT
#include "failure/ProcedureVariables.h"

#include "failure/guarded.h"

#include <algorithm>

namespace kel {

void VariableLines::addNext(std::string_view& names, AddOne write, const void* value)
{
    const std::size_t end = std::min(names.find(','), names.size());
    std::string sName = Trim(names.substr(0, end));
    names.remove_prefix(std::min(end + 1, names.size()));
    if (sName.ends_with('_'))
        sName.pop_back();
    ignoringFailures([&] { write(*this, sName, value); });
}

} // namespace kel
