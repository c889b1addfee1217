// SPDX-License-Identifier: MIT
#include "failure/TypeName.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace kel {

std::string className(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free);
    std::string name = text ? text.get() : type.name();
    name.erase(std::min(name.find('<'), name.size()));
    const std::size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

} // namespace kel
