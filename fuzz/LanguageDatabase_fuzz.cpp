// SPDX-License-Identifier: MIT
// Feeds damaged language files to the language database. Whatever the file holds, every call has an answer, the table
// that came into being stays, and the mouse pointer is put back.

#include "fuzz/Input.h"
#include "strings/LanguageDatabase.h"
#include "tests/failure/RecordingPlatform.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace {

using namespace kel;

constexpr std::size_t kMostBoxes = 20;

/// The one file of this process; each input takes the place of the one before.
const std::string& writeFile(std::string_view content)
{
    static const std::string name =
        (std::filesystem::temp_directory_path() / ("kel-fuzz-" + std::to_string(getpid()) + ".txt")).string();
    static const bool atEnd = std::atexit([] { std::remove(name.c_str()); }) == 0;
    static_cast<void>(atEnd);
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    demand(file && std::fwrite(content.data(), 1, content.size(), file) == content.size() && std::fclose(file) == 0,
           "the file could be written");
    return name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The first byte says what else there is: a language in the command line, and the answers to boxes.
    const unsigned kind = size > 0 ? data[0] : 0;
    const std::string_view content(reinterpret_cast<const char*>(data) + (size > 0 ? 1 : 0), size > 0 ? size - 1 : 0);
    test::RecordingPlatform platform;
    platform.process_.commandLine = (kind & 1U) != 0 ? "program /L=German" : "program";
    platform.screen_.answers.assign(kMostBoxes, (kind & 2U) != 0 ? BoxAnswer::Ignore : BoxAnswer::Abort);
    if ((kind & 4U) != 0)
        platform.screen_.answers.front() = BoxAnswer::Retry;

    LanguageDatabase database(writeFile(content));
    const std::string first = database.RTString(-1);
    demand(platform.screen_.pointer == kMousePointerDefault, "the mouse pointer was put back");
    for (const Int32 index : {0, 1, 102, 2147483647, -2147483647 - 1}) {
        const std::string text = database.RTString(index);
        if (first.empty())
            demand(index >= 0 || text == "Invalid Index", "a negative index lies outside every table");
        demand(!first.empty() || text == database.RTString(index), "the table stays");
    }
    demand(platform.screen_.boxes.size() <= 6 * (kMostBoxes + 1), "each load ends");
    return 0;
}
