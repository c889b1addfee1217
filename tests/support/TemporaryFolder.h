// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

namespace kel::test {

/// All that a file holds.
[[nodiscard]] inline std::string fileText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A folder of its own for a test's files, gone with the object.
class TemporaryFolder {
public:
    TemporaryFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("kel-" + std::to_string(std::random_device{}()) + "-" + std::to_string(std::random_device{}())))
    {
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream(path_ / name, std::ios::binary) << content;
        return file(name);
    }

private:
    std::filesystem::path path_;
};

} // namespace kel::test
