#pragma once

#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
#endif

namespace kel {

#if defined(__cpp_lib_source_location)
/// Where a statement stands.
using SourceLocation = std::source_location;
#else
/// Where a statement stands: the standard's class for compilers that do not have it yet.
class SourceLocation {
public:
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

    [[nodiscard]] constexpr const char* file_name() const noexcept { return file_; }
    [[nodiscard]] constexpr const char* function_name() const noexcept { return function_; }
    [[nodiscard]] constexpr unsigned line() const noexcept { return line_; }

private:
    const char* file_ = "";
    const char* function_ = "";
    unsigned line_ = 0;
};
#endif

} // namespace kel
