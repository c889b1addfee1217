// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/SimulatorTable.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace kel::test {

/// A command in its frame.
inline std::string frame(const std::string& text)
{
    return "\x12\x1B" + text +
           "\x12"
           "E";
}

/// The entries of a reader's log of one kind, by sheet.
inline std::vector<Int32> sheetsLogged(const Simulator& device, SheetEvent event)
{
    std::vector<Int32> sheets;
    for (const SheetRecord& record : device.log())
        if (record.event == event)
            sheets.push_back(record.sheet);
    return sheets;
}

/// A reader object on a simulated reader whose marks come packed, two bytes a row of 12 columns.
class PackedReader {
public:
    PackedReader(kelReaderType model, std::vector<SimulatedSheet> sheets,
                 std::map<std::string, std::string> settings = {}, std::initializer_list<const char*> faults = {})
    {
        SimulatorOptions options{.sheets = SheetFeeder::of(sheets), .settings = std::move(settings)};
        options.settings.emplace("line", "9600,E,7,1");
        for (const char* fault : faults)
            options.faults.push_back(parseFault(fault));
        device = makeSimulator(model, std::move(options));
        host.connect(model, *device);
        host.reader().SleepTime(50);
    }

    [[nodiscard]] clsKELReader& reader() { return host.reader(); }
    [[nodiscard]] RecordingHost& heard() { return host.heard(); }

    /// The entries of the reader's log of one kind, by sheet.
    [[nodiscard]] std::vector<Int32> logged(SheetEvent event) const { return sheetsLogged(*device, event); }

    void expectNoComplaints()
    {
        EXPECT_THAT(device->errors(), testing::IsEmpty());
        for (const ErrorReport& report : host.heard().reports)
            ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    }

    std::unique_ptr<Simulator> device; // outlives the line
    ReaderHost host;
};

/// Sheets of random heights, from no row at all to the most.
inline std::vector<SimulatedSheet> randomSheets(std::size_t count, Int32 mostRows, std::uint64_t seed)
{
    std::vector<SimulatedSheet> sheets;
    for (std::size_t place = 0; place < count; ++place) {
        const auto rows = static_cast<Int32>(place * 37 % static_cast<std::size_t>(mostRows + 1));
        const auto density = static_cast<Int32>(place * 13 % 101);
        sheets.push_back(randomSheet({.side1Rows = rows, .side1Columns = 12, .densityPercent = density}, seed, place));
    }
    return sheets;
}

inline void expectMarks(const MarkArray& marks, const SimulatedSheet& sheet, Int32 rows, Int16 value)
{
    ASSERT_EQ(marks.rows(), rows);
    ASSERT_EQ(marks.columns(), 12);
    for (Int32 row = 1; row <= rows; ++row)
        for (Int32 column = 1; column <= 12; ++column)
            ASSERT_EQ(marks(row, column), markAt(sheet.side1, row, column) != 0 ? value : 0)
                << "row " << row << ", column " << column;
}

/// Reads all sheets in one batch, rejecting every seventh, and compares each with what was laid in.
template <class Bench>
void expectRoundTrip(Bench& bench, const std::vector<SimulatedSheet>& sheets, Int32 rows)
{
    const auto value = static_cast<Int16>(bench.reader().RecognitionThreshold() + 1);
    std::size_t read = 0;
    bench.heard().onReadSheet = [&](MarkArray& side1, MarkArray&, TextArray&, Boolean&) {
        ASSERT_LT(read, sheets.size());
        SCOPED_TRACE("sheet " + std::to_string(read + 1));
        expectMarks(side1, sheets[read], rows, value);
        EXPECT_EQ(static_cast<std::size_t>(bench.reader().Side1TimingMarks()), sheets[read].side1.size());
        EXPECT_EQ(bench.reader().Side2TimingMarks(), -1);
        ++read;
        if (read % 7 == 0)
            bench.reader().RejectPage();
    };
    Int32 lSheetCount = 0;
    EXPECT_EQ(bench.reader().ReadBatch(False, static_cast<Int32>(sheets.size()), lSheetCount), True);
    EXPECT_EQ(read, sheets.size());
    bench.expectNoComplaints();
}

} // namespace kel::test
