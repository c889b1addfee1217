// SPDX-License-Identifier: MIT
#include "platform/posix/DeviceFacts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <pwd.h>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <vector>

namespace kel {

namespace {

constexpr std::size_t kNameRoom = 16384;

std::string userName(uid_t user)
{
    std::array<char, kNameRoom> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(user, &entry, room.data(), room.size(), &found) == 0 && found)
        return found->pw_name;
    return "user " + std::to_string(user);
}

std::string groupName(gid_t group)
{
    std::array<char, kNameRoom> room{};
    ::group entry{};
    ::group* found = nullptr;
    if (::getgrgid_r(group, &entry, room.data(), room.size(), &found) == 0 && found)
        return found->gr_name;
    return std::to_string(group);
}

/// Whether the group is this process's; and whether it is the user's, if only after the next log-in.
bool processHasGroup(gid_t group)
{
    if (::getegid() == group)
        return true;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, ::getgroups(0, nullptr))));
    const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
    return count > 0 && std::find(groups.begin(), groups.begin() + count, group) != groups.begin() + count;
}

bool userHasGroup(uid_t user, gid_t group)
{
    std::array<char, kNameRoom> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(user, &entry, room.data(), room.size(), &found) != 0 || !found)
        return false;
    std::vector<gid_t> groups(64);
    int count = static_cast<int>(groups.size());
    if (::getgrouplist(found->pw_name, found->pw_gid, groups.data(), &count) < 0) {
        groups.resize(static_cast<std::size_t>(count));
        if (::getgrouplist(found->pw_name, found->pw_gid, groups.data(), &count) < 0)
            return false;
    }
    return std::find(groups.begin(), groups.begin() + count, group) != groups.begin() + count;
}

std::optional<pid_t> asProcess(std::string_view text)
{
    pid_t process = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), process);
    if (error != std::errc() || end != text.data() + text.size() || process <= 0)
        return std::nullopt;
    return process;
}

DeviceUser describe(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::string name;
    std::getline(file, name);
    return {process, name};
}

/// A line of /proc/locks: "1: FLOCK  ADVISORY  WRITE 708 00:18:1234 0 EOF", with the device's file system and inode.
std::optional<pid_t> processWithLock(const struct stat& device)
{
    std::array<char, 64> place{};
    std::snprintf(place.data(), place.size(), "%02x:%02x:%llu", major(device.st_dev), minor(device.st_dev),
                  static_cast<unsigned long long>(device.st_ino));
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        std::istringstream words(line);
        std::string number, kind, advisory, access, process, where;
        if (words >> number >> kind >> advisory >> access >> process >> where && kind == "FLOCK" &&
            where == place.data())
            return asProcess(process);
    }
    return std::nullopt;
}

bool hasOpen(const std::filesystem::path& process, const struct stat& device)
{
    std::error_code ignored;
    for (std::filesystem::directory_iterator file(process / "fd", ignored), end; !ignored && file != end;
         file.increment(ignored)) {
        struct stat found {};
        if (::stat(file->path().c_str(), &found) == 0 && S_ISCHR(found.st_mode) && found.st_rdev == device.st_rdev)
            return true;
    }
    return false;
}

std::optional<pid_t> processWithHandle(const struct stat& device)
{
    std::error_code ignored;
    for (std::filesystem::directory_iterator entry("/proc", ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        const std::optional<pid_t> process = asProcess(entry->path().filename().native());
        if (process && *process != ::getpid() && hasOpen(entry->path(), device))
            return process;
    }
    return std::nullopt;
}

} // namespace

std::string deviceAccessText(const std::string& device)
{
    struct stat facts {};
    const std::string asking = "you are " + userName(::geteuid());
    if (::stat(device.c_str(), &facts) != 0)
        return asking;
    std::array<char, 8> mode{};
    std::snprintf(mode.data(), mode.size(), "%04o", static_cast<unsigned>(facts.st_mode & 07777U));
    return "it belongs to " + userName(facts.st_uid) + ", group " + groupName(facts.st_gid) + ", with mode " +
           mode.data() + ", and " + asking;
}

std::string deviceAccessAdvice(const std::string& device)
{
    constexpr mode_t kGroupReadsAndWrites = S_IRGRP | S_IWGRP;
    struct stat facts {};
    if (::stat(device.c_str(), &facts) != 0 || (facts.st_mode & kGroupReadsAndWrites) != kGroupReadsAndWrites ||
        processHasGroup(facts.st_gid))
        return "ask the administrator for read and write access to " + device;
    const std::string group = groupName(facts.st_gid);
    if (userHasGroup(::geteuid(), facts.st_gid))
        return "log out and in again: you have joined the group " + group + " since";
    return "join the group " + group + " (sudo usermod -a -G " + group + " " + userName(::geteuid()) +
           ") and log in again";
}

std::optional<DeviceUser> deviceUser(const std::string& device)
{
    struct stat facts {};
    if (::stat(device.c_str(), &facts) != 0)
        return std::nullopt;
    if (const std::optional<pid_t> process = processWithLock(facts))
        return describe(*process);
    if (const std::optional<pid_t> process = processWithHandle(facts))
        return describe(*process);
    return std::nullopt;
}

} // namespace kel
