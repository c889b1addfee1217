// SPDX-License-Identifier: MIT
#include "tests/simulators/ncs/RandomSession.h"

#include "strings/VBLMRTSModule.h"

#include <gmock/gmock.h>

#include <random>

namespace kel::test {

namespace {

constexpr Int32 kRows = 150;
constexpr Int32 kColumns = 48;

class Chance {
public:
    explicit Chance(std::uint64_t seed) : numbers_(seed) {}

    int number(int lowest, int highest)
    {
        return lowest + static_cast<int>(numbers_() % static_cast<std::uint64_t>(highest - lowest + 1));
    }
    bool one(int of) { return number(1, of) == 1; }

    template <class T, std::size_t N>
    T of(const T (&choices)[N])
    {
        return choices[number(0, static_cast<int>(N) - 1)];
    }

    /// Marks with stretches of equal ones.
    MarkRows marks(int rows)
    {
        MarkRows marks(static_cast<std::size_t>(rows), std::vector<Int16>(kColumns));
        for (auto& row : marks) {
            Int16 value = 0;
            const int change = number(1, 10);
            for (Int16& cell : row)
                cell = value = one(change) ? static_cast<Int16>(number(0, 15)) : value;
        }
        return marks;
    }

    std::string barcode()
    {
        constexpr std::string_view characters = "0000123456789ABCDEFGXYZabcdefgxyz -.$/+%";
        std::string text;
        for (int left = number(0, 20); left > 0; --left)
            text += characters[static_cast<std::size_t>(number(0, static_cast<int>(characters.size()) - 1))];
        return text;
    }

private:
    std::mt19937_64 numbers_;
};

} // namespace

MarkArray heardOf(const MarkRows& marks)
{
    MarkArray array(kRows, kColumns);
    for (Int32 row = 1; row <= kRows; ++row)
        for (Int32 column = 1; column < kColumns; ++column)
            array(row, column) = markAt(marks, row, column);
    return array;
}

HeardBarcodes heardOf(const std::vector<std::string>& barcodes, const OpScanFormat& format)
{
    constexpr char run = 0x15;
    HeardBarcodes heard;
    std::size_t number = 0; // of the barcode that grows
    bool rowIsWhole = true;
    const auto rowBegins = [&](Int16& timingMarks) {
        heard.rowsOfAnotherLength += rowIsWhole ? 0 : 1;
        rowIsWhole = false;
        ++timingMarks;
    };
    const std::string reply = opScanReply({.barcodes = barcodes}, format);
    for (std::size_t at = 0; at < reply.size(); ++at) {
        switch (reply[at]) {
        case 'a': rowBegins(heard.timingMarks1); break;
        case 'b': rowBegins(heard.timingMarks2); break;
        case 'c':
            number = 1;
            heard.texts.front().clear();
            break;
        case 'd':
            heard.texts[number - 1].erase(0, 2);
            heard.texts.resize(++number);
            heard.texts.back().clear();
            break;
        case '\r':
            if (number > 1)
                heard.texts.resize(number - 1);
            return heard;
        case run:
            heard.texts[number - 1] += std::string(static_cast<std::size_t>(reply[at + 1] - 0x40), reply[at + 2]);
            at += 2;
            break;
        default: heard.texts[number - 1] += reply[at]; break;
        }
    }
    return heard;
}

RandomSession::RandomSession(std::uint64_t seed, Limits limits)
{
    Chance chance(seed);
    model_ = chance.of(kOpScanModels);
    const bool printedTwoSides = chance.one(2);
    for (int left = chance.number(limits.fewestSheets, limits.mostSheets); left > 0; --left) {
        SimulatedSheet sheet{.side1 = chance.marks(chance.number(0, limits.mostRows))};
        if (printedTwoSides)
            sheet.side2 = chance.marks(chance.number(0, limits.mostRows));
        for (int barcodes = chance.number(0, 5); barcodes > 0; --barcodes)
            sheet.barcodes.push_back(chance.barcode());
        sheets_.push_back(sheet);
    }
    duplex_ = Boolean(chance.one(2));
    duplexForm_ = Boolean(chance.one(2));
    feeder_ = Boolean(chance.one(2));
    readerGrade_ = Boolean(chance.one(2));
    mode_ = std::string(1, "ietdws"[chance.number(0, 5)]);
    settings_ = {{"mode", mode_},
                 {"driver-status", std::string(1, "NNAi"[chance.number(0, 3)])},
                 {"late-reports", std::to_string(chance.number(0, 10))},
                 {"feeder", feeder_ ? "true" : "false"},
                 {"compress", chance.one(2) ? "true" : "false"},
                 {"alternate", chance.one(2) ? "true" : "false"},
                 {"end", chance.one(2) ? "crlf" : "silence"},
                 {"barcode-prefix", chance.one(2) ? "00" : "X9"}};
}

OpScanFormat RandomSession::format() const
{
    return {.compressed = settings_.at("compress") == "true",
            .alternating = settings_.at("alternate") == "true",
            .silentEnd = settings_.at("end") == "silence",
            .barcodePrefix = settings_.at("barcode-prefix")};
}

SimulatorOptions RandomSession::options(Rate rate) const
{
    SimulatorOptions options{.model = model_, .sheets = SheetFeeder::of(sheets_), .rate = rate};
    options.settings = settings_;
    return options;
}

void RandomSession::describeTo(clsKELReader& reader) const
{
    reader.Duplex(duplex_);
    reader.DuplexForm(duplexForm_);
    reader.Feeder(feeder_);
    reader.ReaderGrade(readerGrade_);
}

void RandomSession::expectHeard(const clsKELReader& reader, const RecordingHost& heard, const OpScan& device) const
{
    EXPECT_THAT(device.errors(), testing::IsEmpty());
    ASSERT_EQ(heard.sheets.size(), sheets_.size());
    HeardBarcodes barcodes;
    std::size_t reports = 0;
    for (std::size_t index = 0; index < sheets_.size(); ++index) {
        barcodes = heardOf(sheets_[index].barcodes, format());
        reports += barcodes.rowsOfAnotherLength;
        const HeardSheet& sheet = heard.sheets[index];
        EXPECT_EQ(sheet.side1, heardOf(sheets_[index].side1));
        EXPECT_EQ(sheet.side2, readsTwoSides() ? heardOf(sheets_[index].side2) : MarkArray());
        EXPECT_EQ(sheet.barcodes.LBound(), 1);
        EXPECT_EQ(sheet.barcodes.elements(), barcodes.texts);
    }
    // Of the rows that begin within a barcode all but the first come after none of 48 positions.
    for (const ErrorReport& report : heard.reports)
        EXPECT_EQ(report.ErrorTitle, VBLM_RTString(TextNumber(282))) << report.ErrorDescription;
    EXPECT_EQ(heard.reports.size(), reports);
    const auto marks1 = static_cast<Int16>(sheets_.back().side1.size()) + barcodes.timingMarks1;
    const auto marks2 = static_cast<Int16>(sheets_.back().side2.size()) + barcodes.timingMarks2;
    EXPECT_EQ(reader.Side1TimingMarks(), marks1);
    EXPECT_EQ(reader.Side2TimingMarks(), readsTwoSides() ? marks2 : -1);
    EXPECT_EQ(std::string(1, device.mode()), mode_ == "w" ? "i" : mode_);
    EXPECT_EQ(device.log().back().event, feeder_ ? SheetEvent::Ejected : SheetEvent::Ended);
}

} // namespace kel::test
