// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsProcess.h"

#include "platform/windows/ComponentInstance.h"
#include "platform/windows/WindowsText.h"

namespace kel {

namespace {

constexpr DWORD kLongestPath = 32768;

std::string userSign(LCTYPE kind)
{
    std::wstring sign(16, L'\0');
    const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, kind, sign.data(), static_cast<int>(sign.size()));
    sign.resize(length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
    return utf8Text(sign);
}

} // namespace

std::string WindowsProcess::CommandLine() const
{
    return utf8FromAnsi(::GetCommandLineA());
}

/// A folder whose name the code page does not have comes with question marks, which are in no name.
std::filesystem::path WindowsProcess::ComponentFile() const
{
    std::string name(kLongestPath, '\0');
    name.resize(::GetModuleFileNameA(componentInstance(), name.data(), kLongestPath));
    if (name.find('?') == std::string::npos)
        return wideText(utf8FromAnsi(name));
    std::wstring wide(kLongestPath, L'\0');
    wide.resize(::GetModuleFileNameW(componentInstance(), wide.data(), kLongestPath));
    return wide;
}

std::filesystem::path WindowsProcess::ComponentFolder() const
{
    return ComponentFile().parent_path();
}

NumberSigns WindowsProcess::numberSigns() const
{
    return {userSign(LOCALE_SDECIMAL), userSign(LOCALE_STHOUSAND)};
}

/// The values come as the file has them, byte by byte.
std::optional<std::string> WindowsProcess::ProfileString(const std::string& section, const std::string& key,
                                                         const std::string& otherwise, std::size_t bufferSize,
                                                         const std::string& fileName) const
{
    const std::string ansiName = ansiText(fileName);
    if (utf8FromAnsi(ansiName) != fileName)
        return std::nullopt;
    std::string value(bufferSize, '\0');
    value.resize(::GetPrivateProfileStringA(section.c_str(), key.c_str(), otherwise.c_str(), value.data(),
                                            static_cast<DWORD>(bufferSize), ansiName.c_str()));
    return value;
}

} // namespace kel
