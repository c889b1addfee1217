// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsOmrApiLoader.h"

#include "platform/windows/WindowsText.h"
#include "types/RuntimeFailure.h"

#include <fstream>
#include <string>
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

void* entryOf(void* module, const char* name)
{
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(module), name));
}

[[noreturn]] void failMissing()
{
    throw RuntimeFailure(FailureCode::FileNotFound, failureText(FailureCode::FileNotFound) + ": " + kOmrLibraryName);
}

/// A file that is there and cannot be loaded is reported with the system's own words.
[[noreturn]] void failToLoad(unsigned long error)
{
    throw RuntimeFailure(FailureCode::ErrorLoadingLibrary, failureText(FailureCode::ErrorLoadingLibrary) + " " +
                                                               kOmrLibraryName + ": " + systemErrorText(error));
}

/// The kind of processor that a library is for, 0 if the file is no library.
WORD processorOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    IMAGE_DOS_HEADER head{};
    if (!stream.read(reinterpret_cast<char*>(&head), sizeof head) || head.e_magic != IMAGE_DOS_SIGNATURE)
        return 0;
    DWORD signature = 0;
    IMAGE_FILE_HEADER image{};
    stream.seekg(head.e_lfanew);
    if (!stream.read(reinterpret_cast<char*>(&signature), sizeof signature) || signature != IMAGE_NT_SIGNATURE ||
        !stream.read(reinterpret_cast<char*>(&image), sizeof image))
        return 0;
    return image.Machine;
}

bool isOfOtherWidth(const std::filesystem::path& file)
{
#if defined(_WIN64)
    return processorOf(file) == IMAGE_FILE_MACHINE_I386;
#else
    return processorOf(file) == IMAGE_FILE_MACHINE_AMD64;
#endif
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
    isUnfit_ = false;
    if (!module_)
        module_ = load();
    void* const entry = entryOf(module_, name);
#if defined(_WIN64)
    if (!entry)
        failUnfit();
#endif
    return entry;
}

void* WindowsOmrApiLoader::Library::findDecorated(const char* name, std::size_t argumentBytes)
{
#if defined(_WIN64)
    static_cast<void>(name);
    static_cast<void>(argumentBytes);
    return nullptr;
#else
    const std::string decorated = std::string("_") + name + "@" + std::to_string(argumentBytes);
    void* const entry = entryOf(module_, decorated.c_str());
    return entry ? entry : entryOf(module_, decorated.c_str() + 1); // some compilers do without the underscore
#endif
}

void WindowsOmrApiLoader::Library::failUnfit()
{
    isUnfit_ = true;
    failMissing();
}

/// What the library itself needs is looked for beside it.
void* WindowsOmrApiLoader::Library::open(const std::filesystem::path& file)
{
    if (const HMODULE module = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
        return module;
    const DWORD error = ::GetLastError();
    if (isOfOtherWidth(file))
        failUnfit();
    failToLoad(error);
}

void WindowsOmrApiLoader::Library::file(const std::filesystem::path& file)
{
    // A name without a folder would be looked for where the system looks.
    file_ = file.empty() ? file : std::filesystem::absolute(file);
    module_ = nullptr;
}

void* WindowsOmrApiLoader::Library::load()
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
    if (error == ERROR_BAD_EXE_FORMAT)
        failUnfit();
    if (error != ERROR_MOD_NOT_FOUND && error != ERROR_DLL_NOT_FOUND && error != ERROR_FILE_NOT_FOUND)
        failToLoad(error);
    failMissing();
}

} // namespace kel
