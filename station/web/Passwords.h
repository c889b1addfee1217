// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace kel {

/// The people whom a server answers, from a file with a line each: name:hash. Any thread may ask.
class Passwords {
public:
    /// std::runtime_error, a sentence, if the file cannot be used.
    explicit Passwords(const std::filesystem::path& file);

    /// Whether the value of the header "Authorization" is that of one of them.
    [[nodiscard]] bool accept(const std::string& authorization);

private:
    using Digest = std::array<unsigned char, 32>;

    [[nodiscard]] Digest digestOf(const std::string& text) const;
    [[nodiscard]] bool isRight(const std::string& name, const std::string& password) const;

    std::map<std::string, std::string> hashes_;
    Digest salt_{};
    std::mutex mutex_;
    std::set<Digest> accepted_;
};

} // namespace kel
