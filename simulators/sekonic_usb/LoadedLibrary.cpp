// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/LoadedLibrary.h"

#include <stdexcept>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace kel {

#if defined(_WIN32)

void* loadLibrary(const std::filesystem::path& file)
{
    if (const HMODULE library = ::LoadLibraryW(file.c_str()))
        return library;
    throw std::runtime_error(file.string() + " cannot be loaded: error " + std::to_string(::GetLastError()));
}

void* findInLibrary(void* library, const char* name)
{
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

#else

void* loadLibrary(const std::filesystem::path& file)
{
    if (void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
        return library;
    const char* reason = ::dlerror();
    throw std::runtime_error(reason ? reason : file.string() + " cannot be loaded");
}

void* findInLibrary(void* library, const char* name)
{
    return ::dlsym(library, name);
}

#endif

} // namespace kel
