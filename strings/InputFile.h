// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace kel {

/// The path that a text in UTF-8 says. A path that is made of the text itself takes it for another code on Windows.
[[nodiscard]] inline std::filesystem::path filePath(const std::string& utf8)
{
    return std::u8string(utf8.begin(), utf8.end());
}

/// A text file that is read line by line. A line ends with CR LF, LF or CR.
/// Every call on a file that is not open is failure 52, and a read error is failure 57.
class InputFile {
public:
    /// No file is open.
    InputFile() = default;

    /// Opens a file, whose name is in UTF-8, at its first byte: 53 if there is none, 70 if it may not be read, 57 for
    /// anything else.
    explicit InputFile(const std::string& name);

    /// The length in bytes.
    [[nodiscard]] Int32 LOF();

    /// Goes to a byte, counted from 1; 63 for a position below 1. A position after the end is at the end.
    void Seek(Int32 position);

    [[nodiscard]] bool Eof();

    /// The next line without its end; 62 at the end of the file.
    [[nodiscard]] std::string LineInput();

private:
    struct Close {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };

    [[nodiscard]] std::FILE* handle() const;
    void seek(long offset, int origin);
    void fill();

    std::unique_ptr<std::FILE, Close> file_;
    std::string buffer_; ///< what has been read of the file and not all been taken yet
    std::size_t taken_ = 0;
};

} // namespace kel
