// SPDX-License-Identifier: MIT
#include "station/web/Secrets.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/stat.h>

namespace kel {

std::string readSecretFile(const std::filesystem::path& file, const std::string& what)
{
    const std::string name = "The " + what + " " + file.string();
    struct stat facts {};
    if (::stat(file.c_str(), &facts) != 0)
        throw std::runtime_error(name + " cannot be read: " + std::strerror(errno) + ".");
    if (!S_ISREG(facts.st_mode))
        throw std::runtime_error(name + " is not a file.");
    if ((facts.st_mode & (S_IROTH | S_IWOTH)) != 0)
        throw std::runtime_error(
            name + " can be read or written by everybody; prevent that with 'chmod o= " + file.string() + "'.");
    std::ifstream bytes(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(bytes), {}};
    if (!bytes.is_open() || bytes.bad())
        throw std::runtime_error(name + " cannot be read by this user; give the file to the station's group.");
    return text;
}

} // namespace kel
