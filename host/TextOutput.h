// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kel::host {

/// Where lines of output go: standard output, or a file. A line is one system call, so it appears at once and as a
/// whole. When a line cannot be written the output stops for good, and a file is cut back to the lines before it.
class TextOutput {
public:
    /// Standard output.
    TextOutput() = default;

    /// A new or emptied file. OperationError if that is not possible.
    explicit TextOutput(const std::filesystem::path& file);

    ~TextOutput();
    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    /// Writes a line, or several, line end included. False if it could not be written, or an earlier one could not.
    bool write(std::string_view line);

    /// The same; OperationError if it could not be written.
    void writeOrFail(std::string_view line);

    /// Whether a line could not be written, and the sentence that says so.
    [[nodiscard]] bool failed() const { return !problem_.empty(); }
    [[nodiscard]] const std::string& problem() const { return problem_; }

private:
    void fail(int error);

    int descriptor_ = 1;
    bool ownFile_ = false;
    std::string name_ = "standard output";
    std::string problem_;
};

} // namespace kel::host
