# SPDX-License-Identifier: MIT
# The headers of the standard library that most sources take, read once a target. Headers of the project's own stay
# out: a change of one would compile everything anew. With its own copy a target keeps its own flags.
function(kel_precompile target)
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <charconv> <chrono> <cmath> <cstdint> <cstring> <filesystem> <fstream> <functional> <iostream>
        <map> <memory> <optional> <set> <sstream> <string> <string_view> <utility> <variant> <vector> ${ARGN})
endfunction()
