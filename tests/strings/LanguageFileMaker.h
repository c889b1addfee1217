// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace kel::test {

/// The content of a language file, put together from its parts.
struct LanguageFileMaker {
    struct Section {
        std::string name;
        std::vector<std::string> lines;
        std::string heading = "[" + name + "]";
    };

    std::vector<Section> sections;
    std::vector<std::string> head; ///< the lines of the head after the languages: "NumStrings=2" and so on
    int startIsOffBy = 0;
    std::string lineEnd = "\r\n";

    [[nodiscard]] std::string text() const
    {
        // The positions have as many digits in the first attempt as in the second.
        std::vector<int> starts(sections.size(), 0);
        for (int attempt = 0;; ++attempt) {
            std::string result = headText(starts);
            for (std::size_t i = 0; i < sections.size(); ++i) {
                starts[i] = static_cast<int>(result.size()) + 1 + startIsOffBy;
                result += sections[i].heading + lineEnd;
                for (const auto& line : sections[i].lines)
                    result += line + lineEnd;
            }
            if (attempt == 1)
                return result;
        }
    }

private:
    [[nodiscard]] std::string headText(const std::vector<int>& starts) const
    {
        std::string result = "[VBLM]" + lineEnd + "NumLanguages=" + std::to_string(sections.size()) + lineEnd;
        for (std::size_t i = 0; i < sections.size(); ++i) {
            const std::string key = "Language" + std::to_string(i + 1);
            char position[16];
            std::snprintf(position, sizeof position, "%06d", starts[i]);
            result += key + "=" + sections[i].name + lineEnd;
            result += key + "Start=" + position + lineEnd;
        }
        for (const auto& line : head)
            result += line + lineEnd;
        return result;
    }
};

} // namespace kel::test
