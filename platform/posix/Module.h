// SPDX-License-Identifier: MIT
#pragma once

#include <dlfcn.h>
#include <filesystem>
#include <string>

namespace kel {

/// Where a module lies that belongs to the program, and not to the component.
inline std::filesystem::path besideProgram(const char* module)
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / module;
}

/// A function of a module, which stays loaded; or null with the system's reason.
inline void* moduleFunction(const std::filesystem::path& file, const char* function, std::string& reason)
{
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const found = handle ? ::dlsym(handle, function) : nullptr;
    if (!found) {
        const char* const told = ::dlerror();
        reason = told ? told : file.string();
    }
    return found;
}

} // namespace kel
