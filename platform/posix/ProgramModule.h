#pragma once

#include <dlfcn.h>
#include <filesystem>
#include <string>

namespace kel {

/// A function of a module that lies beside the program and stays loaded, or null with the system's reason.
inline void* moduleFunction(const char* module, const char* function, std::string& reason)
{
    const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe").parent_path() / module;
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const found = handle ? ::dlsym(handle, function) : nullptr;
    if (!found) {
        const char* const told = ::dlerror();
        reason = told ? told : file.string();
    }
    return found;
}

} // namespace kel
