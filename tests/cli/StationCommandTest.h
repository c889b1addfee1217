// SPDX-License-Identifier: MIT
#pragma once

#include "store/StoredSheets.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace kel::test {

using Json = nlohmann::json;

inline std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

/// A station in a folder of its own.
class StationCommand : public testing::Test {
protected:
    /// A station's file with these readers.
    std::string file(const std::string& readers) const
    {
        return folder_.write("station.json", R"({"station": "hall", "store": "hall.db",
            "retry": {"first": 0.05, "longest": 0.1}, "readers": [)" +
                                                 readers + "]}");
    }

    static std::string simulated(const std::string& name, int count)
    {
        return R"({"name": ")" + name + R"(", "model": 13, "simulate": {"unlimited": true, "count": )" +
               std::to_string(count) + R"(}, "set": {"SleepTime": 1, "Timeout": 600}})";
    }

    /// A sheet of a simulated reader, with one mark.
    static std::string sheetWith(const std::string& mark)
    {
        const std::string rest = [] {
            std::string zeros;
            for (int column = 1; column < 48; ++column)
                zeros += ", 0";
            return zeros;
        }();
        return R"({"side1": [[)" + mark + rest + "], [0" + rest + "]]}";
    }

    /// What the store has of a reader: sheets by their numbers, with what became of them, and titles of reports.
    [[nodiscard]] std::vector<std::string> kept(const std::string& reader) const
    {
        std::vector<std::string> found;
        StoredSheets(store_).read({.reader = reader}, 0, [&](const Entry& entry) {
            if (const ReportEntry* const report = entry.report()) {
                found.push_back(report->failure.title + " after " + std::to_string(report->afterSheet));
                return true;
            }
            const host::Sheet& sheet = entry.sheet()->sheet;
            found.push_back(std::to_string(sheet.number) + (sheet.rejected ? " rejected" : "") +
                            (sheet.printed ? " printed" : ""));
            return true;
        });
        return found;
    }

    [[nodiscard]] std::vector<Int32> numbers(const std::string& reader) const
    {
        std::vector<Int32> found;
        StoredSheets(store_).read({.reader = reader, .failures = false}, 0, [&](const Entry& entry) {
            found.push_back(entry.sheet()->sheet.number);
            return true;
        });
        return found;
    }

    [[nodiscard]] Json state() const
    {
        const CommandOutcome outcome =
            runCommand({"station", folder_.file("station.json"), "--state", "--format", "json"});
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return Json::parse(outcome.output);
    }

    TemporaryFolder folder_;
    std::string store_ = folder_.file("hall.db");
};

} // namespace kel::test
