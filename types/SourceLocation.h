// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// Where a statement stands. Not the standard's class: that one is part of a library's interface only where the
/// compilers of the library and of its hosts agree on it, and clang 14 with the library of GCC 12 does not.
class SourceLocation {
public:
    /// The place of the call, given as a default argument.
    [[nodiscard]] static constexpr SourceLocation current(const char* file = __builtin_FILE(),
                                                          const char* function = __builtin_FUNCTION(),
                                                          unsigned line = __builtin_LINE()) noexcept
    {
        SourceLocation here;
        here.file_ = file;
        here.function_ = function;
        here.line_ = line;
        return here;
    }

    /// Its file, its function and its line; 0 is no line.
    [[nodiscard]] constexpr const char* file_name() const noexcept { return file_; }
    [[nodiscard]] constexpr const char* function_name() const noexcept { return function_; }
    [[nodiscard]] constexpr unsigned line() const noexcept { return line_; }

private:
    const char* file_ = "";
    const char* function_ = "";
    unsigned line_ = 0;
};

} // namespace kel
