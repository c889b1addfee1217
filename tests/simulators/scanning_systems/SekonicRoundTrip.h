// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/SimulatorTable.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace kel::test {

inline constexpr Int16 kSekonicRows1 = 30;
inline constexpr Int16 kSekonicRows2 = 22;
inline constexpr Int16 kSekonicColumns = 48;

/// One way to use one Sekonic serial reader.
struct SekonicSession {
    kelReaderType model;
    std::string mode = "0";
    bool windows = false;
    bool duplex = false;
    bool barcode = false;
    bool print = false;
    bool rejecter = false;
    bool plain = false;

    /// Whether the reader has emulation modes; such a one takes its windows from the host and decides on sheets.
    [[nodiscard]] bool isLarge() const
    {
        return model != kelReaderTypeScanningSystemsSR410 && model != kelReaderTypeSekonicSR430;
    }
};

/// Each model in page and in window mode.
inline const std::vector<SekonicSession> kSekonicSessions = {
    {.model = kelReaderTypeScanningSystemsSR601, .mode = "0", .barcode = true, .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR601, .mode = "1", .windows = true, .print = true},
    {.model = kelReaderTypeScanningSystemsSR607,
     .mode = "2",
     .duplex = true,
     .barcode = true,
     .print = true,
     .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR607, .mode = "3", .windows = true, .duplex = true},
    {.model = kelReaderTypeScanningSystemsSR700351, .mode = "1", .barcode = true, .print = true, .plain = true},
    {.model = kelReaderTypeScanningSystemsSR700351, .mode = "2", .windows = true, .barcode = true, .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR700352, .mode = "0", .duplex = true},
    {.model = kelReaderTypeScanningSystemsSR700352,
     .mode = "3",
     .windows = true,
     .duplex = true,
     .barcode = true,
     .print = true,
     .rejecter = true},
    {.model = kelReaderTypeScanningSystemsSR410},
    {.model = kelReaderTypeScanningSystemsSR410, .windows = true},
    {.model = kelReaderTypeSekonicSR430},
    {.model = kelReaderTypeSekonicSR430, .windows = true},
};

inline std::string nameOfSession(const testing::TestParamInfo<SekonicSession>& session)
{
    return "Model" + std::to_string(session.param.model) + (session.param.windows ? "Windows" : "");
}

inline const std::vector<FormWindow> kSekonicWindows = {
    {.StartRow = 2, .NumRows = 5, .RowGap = 1, .StartCol = 3, .NumCols = 10, .ColGap = 1, .Page = 1},
    {.StartRow = 29, .NumRows = 4, .RowGap = -2, .StartCol = 20, .NumCols = 6, .ColGap = 2, .Page = 1},
    {.StartRow = 10, .NumRows = 7, .RowGap = 2, .StartCol = 40, .NumCols = 8, .ColGap = -3, .Page = 1},
    {.StartRow = 1, .NumRows = 1, .RowGap = 1, .StartCol = 1, .NumCols = 1, .ColGap = 1, .Page = 1},
    {.StartRow = 1, .NumRows = 22, .RowGap = 1, .StartCol = 1, .NumCols = 20, .ColGap = 1, .Page = 2},
    {.StartRow = 3, .NumRows = 5, .RowGap = 4, .StartCol = 30, .NumCols = 9, .ColGap = 2, .Page = 2},
};

/// The windows of the session's sides.
inline std::vector<FormWindow> windowsOf(const SekonicSession& session)
{
    std::vector<FormWindow> windows;
    std::copy_if(kSekonicWindows.begin(), kSekonicWindows.end(), std::back_inserter(windows),
                 [&](const FormWindow& window) { return session.windows && (window.Page == 1 || session.duplex); });
    return windows;
}

/// The side as the host has to get it: all of it, or what lies in its windows.
inline std::vector<std::vector<Int16>> wantedMarks(const SekonicSession& session, const MarkRows& marks, Int16 page)
{
    const Int16 rows = page == 1 ? kSekonicRows1 : kSekonicRows2;
    std::vector<std::vector<Int16>> cells(static_cast<std::size_t>(rows), std::vector<Int16>(kSekonicColumns, 0));
    const auto take = [&](Int32 row, Int32 column) {
        cells.at(static_cast<std::size_t>(row - 1)).at(static_cast<std::size_t>(column - 1)) =
            markAt(marks, row, column);
    };
    if (!session.windows)
        for (Int32 row = 1; row <= rows; ++row)
            for (Int32 column = 1; column <= kSekonicColumns; ++column)
                take(row, column);
    for (const FormWindow& window : windowsOf(session))
        for (Int32 row = 0; row < window.NumRows && window.Page == page; ++row)
            for (Int32 column = 0; column < window.NumCols; ++column)
                take(window.StartRow + row * window.RowGap, window.StartCol + column * window.ColGap);
    return cells;
}

inline std::vector<std::vector<Int16>> cellsOf(const MarkArray& marks)
{
    std::vector<std::vector<Int16>> cells;
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        cells.emplace_back();
        for (Int32 column = 1; column <= marks.columns(); ++column)
            cells.back().push_back(marks(row, column));
    }
    return cells;
}

/// The reader of a session, without its sheets. A small one has learnt its windows before.
inline SimulatorOptions optionsOf(const SekonicSession& session, std::map<std::string, std::string> settings = {})
{
    settings.emplace("mode", session.mode);
    settings.emplace("rejecter", session.rejecter ? "true" : "false");
    settings.emplace("plain", session.plain ? "true" : "false");
    SimulatorOptions options{.settings = std::move(settings)};
    if (!session.isLarge())
        options.form.windows = windowsOf(session);
    return options;
}

inline void describeForm(clsKELReader& reader, const SekonicSession& session)
{
    reader.RecognitionMode(session.windows ? kelRecognitionTypeWindow : kelRecognitionTypePage);
    reader.Side1Rows(pages({kSekonicRows1}));
    reader.Side1Cols(pages({kSekonicColumns}));
    reader.Side2Rows(pages({kSekonicRows2}));
    reader.Side2Cols(pages({kSekonicColumns}));
    reader.Duplex(session.duplex);
    reader.DuplexForm(session.duplex);
    reader.Barcode(session.barcode);
    reader.Rejecter(session.isLarge());
    if (session.barcode) {
        const auto zone = makeReference<clsKELReaderBarcode>();
        zone->Distance(120);
        reader.Barcodes()->Add(zone);
    }
    for (const FormWindow& of : windowsOf(session)) {
        const auto window = makeReference<clsKELReaderWindow>();
        window->Page(of.Page);
        window->StartRow(of.StartRow);
        window->NumRows(of.NumRows);
        window->RowGap(of.RowGap);
        window->StartCol(of.StartCol);
        window->NumCols(of.NumCols);
        window->ColGap(of.ColGap);
        reader.Windows()->Add(window);
    }
    reader.Printer()->Enabled(session.print);
    reader.Printer()->Active(session.print);
    reader.Printer()->Distance(25);
}

/// Heights from no row to the form's and beyond it, every eighth sheet without a barcode.
inline std::vector<SimulatedSheet> randomSekonicSheets(const SekonicSession& session, std::size_t count)
{
    std::vector<SimulatedSheet> sheets;
    for (std::size_t place = 0; place < count; ++place) {
        const auto spread = static_cast<Int32>(place);
        const bool reversed = session.model == kelReaderTypeSekonicSR430 && !session.windows;
        SheetShape shape{.side1Rows = spread * 7 % 33,
                         .side1Columns = reversed ? 15 : kSekonicColumns,
                         .densityPercent = spread * 3 % 101,
                         .highestMark = 15,
                         .barcodes = spread % 8 == 7 ? 0 : 1};
        if (session.duplex) {
            shape.side2Rows = spread * 5 % 24;
            shape.side2Columns = kSekonicColumns;
        }
        sheets.push_back(randomSheet(shape, 5, place));
    }
    return sheets;
}

/// Reads all sheets of a session in one batch, with no line to three lines of print, rejecting every ninth: what the
/// host gets is what was laid in, and the reader's log is what was asked of it. The bench has `reader()`, `heard()`,
/// `expectNoComplaints()` at the end of the session, and then `log()`.
template <class Bench>
class SekonicRoundTrip {
public:
    SekonicRoundTrip(Bench& bench, const SekonicSession& session, const std::vector<SimulatedSheet>& sheets)
        : bench_(bench), session_(session), sheets_(sheets)
    {
    }

    void expectAll()
    {
        bench_.heard().onReadSheet = [this](MarkArray& side1, MarkArray& side2, TextArray& barcodes, Boolean& bReject) {
            ASSERT_LT(static_cast<std::size_t>(sheet_), sheets_.size());
            const SimulatedSheet& paper = sheets_[static_cast<std::size_t>(sheet_++)];
            SCOPED_TRACE("sheet " + std::to_string(sheet_));
            expectSheet(paper, side1, side2, barcodes);
            decide(bReject);
        };
        const auto count = static_cast<Int32>(sheets_.size());
        Int32 lSheetCount = 0;
        EXPECT_EQ(bench_.reader().ReadBatch(session_.print, count, lSheetCount), True);
        EXPECT_EQ(sheet_, count);
        bench_.expectNoComplaints();
        if (session_.isLarge() && count % kRejected != 0)
            log_.push_back({SheetEvent::Ejected, count});
        EXPECT_EQ(bench_.log(), log_);
        EXPECT_EQ(bench_.reader().Rejecter() == True, session_.rejecter);
        const std::vector<std::string>& heard = bench_.heard().order;
        EXPECT_EQ(std::count(heard.begin(), heard.end(), "AfterPrint"), session_.print ? count - count / kRejected : 0);
    }

private:
    static constexpr Int32 kRejected = 9;

    void expectSheet(const SimulatedSheet& paper, const MarkArray& side1, const MarkArray& side2,
                     const TextArray& barcodes)
    {
        log_.push_back({SheetEvent::Fed, sheet_});
        log_.push_back({SheetEvent::Read, sheet_});
        EXPECT_EQ(cellsOf(side1), wantedMarks(session_, paper.side1, 1));
        EXPECT_EQ(static_cast<std::size_t>(bench_.reader().Side1TimingMarks()), paper.side1.size());
        if (session_.duplex) {
            log_.push_back({SheetEvent::Read, sheet_});
            EXPECT_EQ(cellsOf(side2), wantedMarks(session_, paper.side2, 2));
            EXPECT_EQ(static_cast<std::size_t>(bench_.reader().Side2TimingMarks()), paper.side2.size());
        } else {
            EXPECT_EQ(bench_.reader().Side2TimingMarks(), -1);
        }
        const std::string barcode = paper.barcodes.empty() ? "?" : paper.barcodes[0];
        EXPECT_THAT(barcodes.elements(), testing::ElementsAre(session_.barcode ? barcode : ""));
    }

    void decide(Boolean& bReject)
    {
        const std::array<std::string, 3> lines = {"A" + std::to_string(sheet_), "second \"line\"",
                                                  std::string(90, 'z') + " "};
        const auto line = [&](Int32 number) {
            return number <= sheet_ % 4 ? lines.at(static_cast<std::size_t>(number - 1)) : "";
        };
        const auto printer = bench_.reader().Printer();
        printer->Buffer1(line(1));
        printer->Buffer2(line(2));
        printer->Buffer3(line(3));
        if (sheet_ % kRejected == 0) {
            bench_.reader().RejectPage();
            bReject = True;
            if (session_.isLarge())
                log_.push_back({session_.rejecter ? SheetEvent::Rejected : SheetEvent::Ejected, sheet_});
            if (session_.isLarge() && session_.print) // the print that is called off lets it go once more
                log_.push_back({SheetEvent::Ejected, sheet_});
        } else if (session_.print) {
            for (Int32 number = 1; number <= sheet_ % 4; ++number)
                log_.push_back({SheetEvent::Printed, sheet_, line(number), number, 25});
        }
    }

    Bench& bench_;
    const SekonicSession& session_;
    const std::vector<SimulatedSheet>& sheets_;
    std::vector<SheetRecord> log_;
    Int32 sheet_ = 0;
};

} // namespace kel::test
