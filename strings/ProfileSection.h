// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace kel {

/// One section of a profile file, with the rules of Windows for them: names are compared without regard to case, blanks
/// around a key and its value do not count, one pair of quotes around a value is dropped, the first section and the
/// first key of a name are the ones that count.
class ProfileSection {
public:
    /// A section without keys.
    ProfileSection() = default;

    /// Reads a section of a file; it has no keys if the file cannot be read or has no such section.
    ProfileSection(const std::string& fileName, std::string_view section);

    /// The value of a key, or `otherwise` if the key is not there; no more of it than fits into a buffer of
    /// `bufferSize` characters together with a terminator. Characters are those of UTF-8.
    [[nodiscard]] std::string value(std::string_view key, std::string_view otherwise, std::size_t bufferSize) const;

private:
    void read(const std::string& fileName, std::string_view section);

    std::unordered_map<std::string, std::string> entries_; // by the key in lower case
};

} // namespace kel
