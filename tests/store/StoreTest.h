// SPDX-License-Identifier: MIT
#pragma once

#include "store/OldSheets.h"
#include "store/SheetStore.h"
#include "store/StoreProblem.h"
#include "store/StoredSheets.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kel::store_test {

inline host::Sheet sheetWith(const std::string& barcode)
{
    host::Sheet sheet;
    sheet.side1.ReDim(3, 4);
    sheet.side1(1, 2) = 9;
    sheet.side1(3, 4) = -1;
    sheet.side1TimingMarks = 3;
    sheet.barcodes = TextArray::of(1, {barcode, ""});
    return sheet;
}

inline Entry entryWith(const std::string& barcode, const std::string& reader = "left",
                       const std::string& batch = "monday")
{
    return {.origin = {.station = "hall", .reader = reader, .batch = batch},
            .what = ReadSheetEntry{.setup = {.model = kelReaderTypeScantronScanMark2500, .threshold = 7, .form = "{}"},
                                   .sheet = sheetWith(barcode)}};
}

/// What a store complains of.
template <class Call>
std::string problemOf(Call&& call)
{
    try {
        call();
    } catch (const StoreProblem& problem) {
        return problem.what();
    }
    return "no problem";
}

/// A place for a store, and what is in it.
class StoreTest : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<Entry> entries(const StoreFilter& filter = {}) const
    {
        std::vector<Entry> found;
        StoredSheets(file_).read(filter, 0, [&](const Entry& entry) {
            found.push_back(entry);
            return true;
        });
        return found;
    }

    [[nodiscard]] std::vector<Int32> numbers(const std::string& reader) const
    {
        std::vector<Int32> found;
        for (const Entry& entry : entries({.reader = reader}))
            found.push_back(entry.sheet()->sheet.number);
        return found;
    }

    test::TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "hall.db";
};

} // namespace kel::store_test
