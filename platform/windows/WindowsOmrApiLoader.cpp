#include "platform/windows/WindowsOmrApiLoader.h"

#include "platform/windows/WindowsText.h"
#include "types/RuntimeFailure.h"

#include <system_error>
#include <windows.h>

namespace kel {

namespace {

constexpr const wchar_t* kLibraryFile = L"OMRAPI.DLL";

bool isThere(const std::filesystem::path& file)
{
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

[[noreturn]] void failMissing()
{
    throw RuntimeFailure(FailureCode::FileNotFound, failureText(FailureCode::FileNotFound) + ": " + kOmrLibraryName);
}

/// A file that is there and cannot be loaded is told with the system's own words.
[[noreturn]] void failToLoad(unsigned long error)
{
    throw RuntimeFailure(FailureCode::ErrorLoadingLibrary, failureText(FailureCode::ErrorLoadingLibrary) + " " +
                                                               kOmrLibraryName + ": " + systemErrorText(error));
}

/// What the library itself needs is looked for beside it.
HMODULE open(const std::filesystem::path& file)
{
    const HMODULE module = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module)
        failToLoad(::GetLastError());
    return module;
}

} // namespace

WindowsOmrApiLoader::WindowsOmrApiLoader(std::filesystem::path componentFolder) : library_(std::move(componentFolder))
{
    binding_.emplace(library_);
}

void WindowsOmrApiLoader::libraryFile(const std::filesystem::path& file)
{
    library_.file(file);
    binding_.emplace(library_);
}

void* WindowsOmrApiLoader::Library::find(const char* name)
{
    if (!module_)
        module_ = load();
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(module_), name));
}

void WindowsOmrApiLoader::Library::file(const std::filesystem::path& file)
{
    // A name without a folder would be looked for where the system looks.
    file_ = file.empty() ? file : std::filesystem::absolute(file);
    module_ = nullptr;
}

void* WindowsOmrApiLoader::Library::load() const
{
    if (!file_.empty()) {
        if (!isThere(file_))
            failMissing();
        return open(file_);
    }
    if (isThere(componentFolder_ / kLibraryFile))
        return open(componentFolder_ / kLibraryFile);
    if (const HMODULE module = ::LoadLibraryW(kLibraryFile))
        return module;
    const DWORD error = ::GetLastError();
    if (error != ERROR_MOD_NOT_FOUND && error != ERROR_DLL_NOT_FOUND && error != ERROR_FILE_NOT_FOUND)
        failToLoad(error);
    failMissing();
}

} // namespace kel
