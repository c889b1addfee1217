// SPDX-License-Identifier: MIT
// Prints all keys of a hive's classes, HKLM's or HKCU's, as programs of this width see them. The system's own program
// prints their values too, and takes several times as long.
// Usage: class_keys HKLM|HKCU

#include <windows.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

constexpr int kWrongUsage = 2;
constexpr DWORD kLongestName = 256;
constexpr const char* kClasses = "Software\\Classes";

void printKeysOf(HKEY parent, const std::string& path)
{
    std::array<char, kLongestName> name{};
    DWORD length = kLongestName;
    for (DWORD index = 0;
         RegEnumKeyExA(parent, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index, length = kLongestName) {
        const std::string child = path + "\\" + name.data();
        std::puts(child.c_str());
        HKEY key = nullptr;
        if (RegOpenKeyExA(parent, name.data(), 0, KEY_READ, &key) != ERROR_SUCCESS)
            continue;
        printKeysOf(key, child);
        RegCloseKey(key);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view hive = argc == 2 ? argv[1] : "";
    if (hive != "HKLM" && hive != "HKCU")
        return kWrongUsage;
    HKEY classes = nullptr;
    const HKEY root = hive == "HKLM" ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    if (RegOpenKeyExA(root, kClasses, 0, KEY_READ, &classes) == ERROR_SUCCESS)
        printKeysOf(classes, std::string(hive) + "\\" + kClasses);
    return 0;
}
