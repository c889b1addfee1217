// SPDX-License-Identifier: MIT
#include "platform/posix/PosixOmrApiLoader.h"

#include <dlfcn.h>

#include <string>
#include <system_error>
#include <utility>

namespace kel {

namespace {

// The usual name of a shared object comes first, the library's own name last.
constexpr const char* kNamesBesideComponent[] = {"libOMRAPI.so", "OMRAPI.so", kOmrLibraryName};
constexpr const char* kNamesOnLoaderPath[] = {"libOMRAPI.so", "OMRAPI.so"};

// Everything that the library itself needs must be there now, not at some later call.
constexpr int kOpenMode = RTLD_NOW | RTLD_LOCAL;

bool isThere(const std::filesystem::path& file)
{
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

/// A file that is there and cannot be loaded is reported with the loader's own words.
void* open(const std::filesystem::path& file)
{
    if (void* handle = ::dlopen(file.c_str(), kOpenMode))
        return handle;
    const char* reason = ::dlerror();
    throw RuntimeFailure(FailureCode::ErrorLoadingLibrary, failureText(FailureCode::ErrorLoadingLibrary) + " " +
                                                               kOmrLibraryName + ": " + (reason ? reason : ""));
}

[[noreturn]] void failMissing()
{
    throw RuntimeFailure(FailureCode::FileNotFound, failureText(FailureCode::FileNotFound) + ": " + kOmrLibraryName);
}

} // namespace

PosixOmrApiLoader::PosixOmrApiLoader(std::filesystem::path componentFolder) : library_(std::move(componentFolder))
{
    binding_.emplace(library_);
}

void PosixOmrApiLoader::libraryFile(const std::filesystem::path& file)
{
    library_.file(file);
    binding_.emplace(library_);
}

void* PosixOmrApiLoader::Library::find(const char* name)
{
    if (!handle_)
        handle_ = load();
    return ::dlsym(handle_, name);
}

void PosixOmrApiLoader::Library::file(const std::filesystem::path& file)
{
    // A name without a folder would be looked for on the loader's path.
    file_ = file.empty() ? file : std::filesystem::absolute(file);
    handle_ = nullptr;
}

void* PosixOmrApiLoader::Library::load() const
{
    if (!file_.empty()) {
        if (!isThere(file_))
            failMissing();
        return open(file_);
    }
    for (const char* name : kNamesBesideComponent) {
        if (isThere(componentFolder_ / name))
            return open(componentFolder_ / name);
    }
    for (const char* name : kNamesOnLoaderPath) {
        if (void* handle = ::dlopen(name, kOpenMode))
            return handle;
    }
    failMissing();
}

} // namespace kel
