// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"

#include <filesystem>
#include <string>
#include <utility>

namespace kel::host {

inline constexpr FileKind kFormFile{"form file", 1};
inline constexpr FileKind kAnswerKeyFile{"answer key file", 4};
inline constexpr FileKind kRegistryFile{"registry file", 8};
inline constexpr FileKind kTranscriptFile{"transcript", 32};

/// The bytes of a file that the command was given; UsageError if it cannot be read, or is too large.
[[nodiscard]] std::string readGivenFile(const std::filesystem::path& file, const FileKind& kind);

/// UsageError for what was refused in a file: one sentence with the file's name and the place. An unknown key is
/// reported with the ones that come nearest.
[[noreturn]] void refuseFile(const std::string& fileName, const JsonRefusal& refusal);

/// Gives what `read` makes of a file's JSON; `refuseFile` reports what it refuses.
template <class Read>
auto readingFile(const std::string& fileName, Read&& read)
{
    try {
        return std::forward<Read>(read)();
    } catch (const JsonRefusal& refusal) {
        refuseFile(fileName, refusal);
    }
}

} // namespace kel::host
