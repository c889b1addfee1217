// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"
#include "simulators/SimulatorTable.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Seeded sheets through a simulated Apperson reader, over whatever line: what the host gets is what lay in the feeder.

namespace kel::test {

/// One way to use one Apperson reader.
struct AppersonSession {
    const char* name;
    kelReaderType model;
    Int16 rows;
    Int16 columns;
    Int16 rows2 = 0;
    Int16 columns2 = 0;
    bool grades = false;
    std::map<std::string, std::string> settings = {};

    [[nodiscard]] bool sendsLines() const
    {
        return model == kelReaderTypeAppersonBenchMark3000 || model == kelReaderTypeAppersonAdvantage1200;
    }
};

inline const std::vector<AppersonSession> kAppersonSessions = {
    {"AdvantageLink", kelReaderTypeAppersonAdvantageLink, 40, 12},
    {"AdvantageLinkOfOneColumn", kelReaderTypeAppersonAdvantageLink, 99, 1},
    {"GradeMaster", kelReaderTypeAppersonGradeMaster, 100, 5},
    {"GradeMasterOfAllRows", kelReaderTypeAppersonGradeMaster, 285, 5},
    {"BenchMark",
     kelReaderTypeAppersonBenchMark3000,
     50,
     5,
     0,
     0,
     false,
     {{"short-line", "\"OK\" 0D 0A"}, {"end-line", "z1"}}},
    {"BenchMarkThatGrades", kelReaderTypeAppersonBenchMark3000, 20, 5, 0, 0, true, {{"reader-grade", "true"}}},
    {"Advantage1200", kelReaderTypeAppersonAdvantage1200, 50, 5, 30, 4},
    {"Advantage1200ThatGrades", kelReaderTypeAppersonAdvantage1200, 50, 5, 30, 4, true, {{"reader-grade", "true"}}},
};

inline FormDescription formOf(const AppersonSession& session)
{
    FormDescription form{.side1Rows = {session.rows}, .side1Cols = {session.columns}};
    if (session.rows2 > 0) {
        form.side2Rows = {session.rows2};
        form.side2Cols = {session.columns2};
    }
    return form;
}

inline constexpr std::uint64_t kAppersonSeed = 17;

inline SimulatorOptions optionsOf(const AppersonSession& session, std::uint64_t sheets)
{
    return {.seeded = SeededSheets{kAppersonSeed, sheets}, .form = formOf(session), .settings = session.settings};
}

/// The rest of a session once its reader has a line: `bench` has `reader()`, `heard()` and, after the session,
/// `expectNoComplaints()` of the simulated reader.
template <class Bench>
class AppersonRoundTrip {
public:
    AppersonRoundTrip(Bench& bench, const AppersonSession& session) : bench_(bench), session_(session)
    {
        clsKELReader& reader = bench.reader();
        reader.Side1Rows(pages({session.rows}));
        reader.Side1Cols(pages({session.columns}));
        reader.Side2Rows(pages({session.rows2}));
        reader.Side2Cols(pages({session.columns2}));
        reader.DuplexForm(session.rows2 > 0 ? True : False);
        reader.ReaderGrade(session.grades ? True : False);
        if (session.model == kelReaderTypeAppersonGradeMaster)
            reader.RecognitionThreshold(kMark);
        bench.heard().onTranslateData = [this](Dictionary& data, MarkArray& side1, MarkArray& side2,
                                               TextArray& barcodes,
                                               Boolean&) { translate(data, side1, side2, barcodes); };
    }

    /// Reads so many sheets. A BenchMark 3000 says by itself that there are no more.
    void expectAll(std::uint64_t sheets)
    {
        const bool endsByItself = session_.model == kelReaderTypeAppersonBenchMark3000;
        Int32 count = 0;
        EXPECT_TRUE(bool(bench_.reader().ReadBatch(False, endsByItself ? -1 : static_cast<Int32>(sheets), count)));
        bench_.expectNoComplaints();
        ASSERT_EQ(bench_.heard().sheets.size(), sheets);
        for (std::size_t place = 0; place < sheets; ++place) {
            SCOPED_TRACE("sheet " + std::to_string(place + 1));
            expectSheet(bench_.heard().sheets[place], place);
        }
    }

private:
    static constexpr Int16 kMark = 7;

    /// The host makes marks of a record, as one that knows the form does.
    void translate(Dictionary& data, MarkArray& side1, MarkArray& side2, TextArray& barcodes)
    {
        for (Int32 question = 1; question <= session_.rows + session_.rows2; ++question) {
            if (!data.Exists(question))
                continue;
            const bool first = question <= session_.rows;
            for (const char letter : itemText(data.Item(question))) {
                if (letter != '\t')
                    (first ? side1 : side2)(first ? question : question - session_.rows, letter - 'A' + 1) = 1;
            }
        }
        barcodes = TextArray::of(1, {itemText(data.Item("Student ID"))});
        records_.push_back(data);
    }

    void expectSheet(const HeardSheet& heard, std::size_t place)
    {
        const SimulatedSheet sheet = randomSheet(sheetShape(session_.model, formOf(session_)), kAppersonSeed, place);
        EXPECT_EQ(heard.side1, marksOf(sheet.side1, session_.rows, session_.columns));
        if (session_.rows2 > 0) {
            EXPECT_EQ(heard.side2, marksOf(sheet.side2, session_.rows2, session_.columns2));
        }
        if (session_.model == kelReaderTypeAppersonGradeMaster) {
            EXPECT_EQ(heard.barcodes, TextArray::of(1, sheet.barcodes));
        }
        if (session_.sendsLines()) {
            EXPECT_EQ(heard.barcodes, TextArray::of(1, {fieldOf(sheet, "Student ID")}));
            expectRecord(sheet, records_.at(place));
        }
    }

    void expectRecord(const SimulatedSheet& sheet, Dictionary& record)
    {
        std::map<std::string, std::string> fields = sheet.fields;
        if (session_.model == kelReaderTypeAppersonBenchMark3000)
            fields["Error Code"] = "   ";
        if (fields["Page 2 ID"] == "0000" || session_.model == kelReaderTypeAppersonBenchMark3000)
            fields.erase("Page 2 ID");
        if (!session_.grades)
            fields.erase("Essay Score");
        std::map<std::string, std::string> heard;
        for (const DictionaryKey& key : record.Keys()) {
            if (const auto* name = std::get_if<std::string>(&key))
                heard[*name] = itemText(record.Item(key));
        }
        EXPECT_EQ(heard, fields);
    }

    [[nodiscard]] MarkArray marksOf(const MarkRows& sent, Int16 rows, Int16 columns) const
    {
        MarkArray marks(rows, columns);
        for (Int32 row = 1; row <= rows; ++row) {
            for (Int32 column = 1; column <= columns; ++column) {
                const Int16 mark = markAt(sent, row, column);
                marks(row, column) = mark != 0 && session_.model == kelReaderTypeAppersonGradeMaster ? kMark : mark;
            }
        }
        return marks;
    }

    Bench& bench_;
    const AppersonSession& session_;
    std::vector<Dictionary> records_;
};

} // namespace kel::test
