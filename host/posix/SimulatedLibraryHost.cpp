// SPDX-License-Identifier: MIT
#include "host/SimulatedLibraryHost.h"

#include "host/SimulatorParts.h"

#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <system_error>

namespace kel::host {

namespace {

constexpr std::string_view kFault = "fault: ";

std::filesystem::path newFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "kelreader-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::filesystem::filesystem_error("mkdtemp", name, std::error_code(errno, std::generic_category()));
    return name;
}

} // namespace

SimulatedLibraryHost::SimulatedLibraryHost(OmrSimulationState state, const std::filesystem::path& link)
{
    const std::filesystem::path library = simulatedOmrApiFile();
    if (link.empty())
        folder_ = newFolder();
    link_ = std::filesystem::absolute(link.empty() ? folder_ / "libOMRAPI.so" : link);
    if (std::filesystem::is_symlink(link_))
        std::filesystem::remove(link_);
    std::filesystem::create_symlink(library, link_);
    std::ofstream(beside(".log"), std::ios::trunc).flush();
    log_.open(beside(".log"), std::ios::binary);
    state.logFile = beside(".log");
    std::ofstream(beside(".json"), std::ios::binary) << toJson(state);
}

SimulatedLibraryHost::~SimulatedLibraryHost()
{
    std::error_code ignored;
    for (const std::filesystem::path& file : {link_, beside(".json"), beside(".log"), folder_})
        std::filesystem::remove(file, ignored);
}

std::vector<SimulatedLibraryHost::News> SimulatedLibraryHost::news()
{
    log_.clear(); // the end of the file is where it was a moment ago
    unfinished_.append(std::istreambuf_iterator<char>(log_), {});
    std::vector<News> result;
    for (std::size_t end = unfinished_.find('\n'); end != std::string::npos; end = unfinished_.find('\n')) {
        const std::string line = unfinished_.substr(0, end);
        unfinished_.erase(0, end + 1);
        const bool fault = line.starts_with(kFault);
        result.push_back({fault, fault ? line.substr(kFault.size()) : line});
    }
    return result;
}

std::filesystem::path SimulatedLibraryHost::beside(const char* ending) const
{
    return link_.string() + ending;
}

} // namespace kel::host
