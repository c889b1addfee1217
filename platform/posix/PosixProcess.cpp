// SPDX-License-Identifier: MIT
#include "platform/posix/PosixProcess.h"

#include "types/Text.h"

#include <clocale>
#include <dlfcn.h>
#include <fstream>
#include <iterator>
#include <langinfo.h>
#include <link.h>
#include <locale.h>
#include <system_error>

namespace kel {

std::string joinCommandLine(std::string_view words)
{
    std::string line;
    while (!words.empty()) {
        const std::string_view word = words.substr(0, words.find('\0'));
        words.remove_prefix(std::min(word.size() + 1, words.size()));
        if (!line.empty())
            line += ' ';
        if (word.empty() || word.find_first_of(" \t\"") != std::string_view::npos)
            line += '"' + replaceAll(word, "\"", "\\\"") + '"';
        else
            line += word;
    }
    return line;
}

std::string PosixProcess::CommandLine() const
{
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    return joinCommandLine(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::filesystem::path PosixProcess::ComponentFile() const
{
    std::error_code ignored;
    Dl_info found{};
    void* loaded = nullptr;
    const auto here = reinterpret_cast<const void*>(&joinCommandLine);
    if (::dladdr1(here, &found, &loaded, RTLD_DL_LINKMAP) != 0 && loaded) {
        // The program itself has no name among the loaded objects.
        if (const std::string_view name = static_cast<const link_map*>(loaded)->l_name; !name.empty())
            return std::filesystem::weakly_canonical(name, ignored);
    }
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

std::filesystem::path PosixProcess::ComponentFolder() const
{
    return ComponentFile().parent_path();
}

NumberSigns PosixProcess::numberSigns() const
{
    const char* const chosen = std::setlocale(LC_NUMERIC, nullptr);
    const bool isNobodys = !chosen || std::string_view(chosen) == "C" || std::string_view(chosen) == "POSIX";
    const locale_t locale = ::newlocale(LC_NUMERIC_MASK, isNobodys ? "" : chosen, nullptr);
    if (!locale)
        return {};
    const NumberSigns signs{::nl_langinfo_l(RADIXCHAR, locale), ::nl_langinfo_l(THOUSEP, locale)};
    ::freelocale(locale);
    return signs;
}

} // namespace kel
