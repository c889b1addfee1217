// SPDX-License-Identifier: MIT
#include "cli/check/SheetFindings.h"

#include "types/ModelTable.h"

#include <algorithm>
#include <cmath>

namespace kel {

namespace {

constexpr std::size_t kMostMissed = 5;
constexpr std::size_t kLeastRows = 5;

std::string count(std::size_t number, const char* what)
{
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

CheckResult passed(const char* name)
{
    return {.stage = CheckStage::Sheets, .name = name, .status = CheckStatus::Pass};
}

std::vector<SheetRows> sidesOf(const SheetsSeen& seen, int side)
{
    std::vector<SheetRows> sides;
    for (const host::Sheet& sheet : seen.sheets)
        sides.push_back(rowsOf(sheet, side));
    return sides;
}

CheckResult checkCount(const SheetsSeen& seen)
{
    CheckResult result = passed("all sheets come");
    result.expected = count(static_cast<std::size_t>(seen.wanted), "sheet");
    result.seen = count(seen.sheets.size(), "sheet");
    if (seen.sheets.size() >= static_cast<std::size_t>(seen.wanted) && seen.failures.empty())
        return result;
    result.status = CheckStatus::Fail;
    result.cause = causeOfMissing(seen);
    if (!seen.failures.empty())
        result.seen += "; " + host::failureSentence(seen.failures.front());
    return result;
}

/// The status of a sheet has a byte a side.
CheckResult checkStatus(const SheetsSeen& seen)
{
    CheckResult result{
        .stage = CheckStage::Sheets, .name = "the status has its length", .status = CheckStatus::NotApplicable};
    const Exchange* const status = seen.dialogue.last("?\r");
    const Dialect dialect = dialectOf(seen.model).dialect;
    if (seen.usb || (dialect != Dialect::SekonicLarge && dialect != Dialect::SekonicSmall) || !status ||
        status->arrivals.empty())
        return result;
    const std::size_t usual = Wire("SekonicLargeDuplex").isOf(seen.model) ? 2 : 1;
    const std::size_t length = status->reply().size();
    result.status = length == usual ? CheckStatus::Pass : CheckStatus::Warn;
    result.expected = count(usual, "byte");
    result.seen = count(length, "byte");
    if (length != usual)
        result.cause = length > usual ? Cause::StatusLonger : Cause::StatusShorter;
    return result;
}

CheckResult checkErrors(const SheetsSeen& seen)
{
    CheckResult result = passed("characters arrive whole");
    if (seen.usb) {
        result.status = CheckStatus::NotApplicable;
    } else if (seen.errors.any()) {
        result.status = CheckStatus::Fail;
        result.seen = lineErrorsText(seen.errors);
        result.cause = seen.errors.parity + seen.errors.framing > 0 ? Cause::Garbled : Cause::BytesLost;
    }
    return result;
}

/// Rows that sheets have less than others, or than the form.
CheckResult checkTimingMarks(const SheetsSeen& seen)
{
    CheckResult result = passed("timing marks");
    std::vector<Int16> marks;
    for (const host::Sheet& sheet : seen.sheets)
        marks.push_back(sheet.side1TimingMarks);
    for (const Int16 each : marks)
        result.seen += (result.seen.empty() ? "" : ", ") + std::to_string(each);
    if (seen.formRows)
        result.expected = std::to_string(*seen.formRows);
    if (missesXon(seen, false)) {
        result.status = CheckStatus::Fail;
        result.cause = Cause::BytesSwallowed;
        return result;
    }
    const std::vector<SheetRows> sides = sidesOf(seen, 1);
    for (std::size_t at = 0; at < sides.size(); ++at)
        for (std::size_t other = 0; other < sides.size(); ++other) {
            const bool fewer = marks[at] >= 0 && marks[at] < marks[other];
            if (fewer || missesRows(sides[at], sides[other])) {
                result.status = CheckStatus::Fail;
                result.seen =
                    "sheet " + std::to_string(at + 1) + " has fewer rows than sheet " + std::to_string(other + 1);
                result.cause = Cause::SkewedSheet;
                return result;
            }
        }
    const bool allShort = seen.formRows && !marks.empty() &&
                          std::ranges::all_of(marks, [&](Int16 each) { return each > 0 && each < *seen.formRows; });
    if (!allShort)
        return result;
    result.status = CheckStatus::Warn;
    result.cause = missesXon(seen, true) ? Cause::BytesSwallowed : Cause::SkewedSheet;
    return result;
}

CheckResult checkHead(const SheetsSeen& seen)
{
    CheckResult result = passed("no column is dark throughout");
    for (const int side : {1, 2}) {
        if (const std::optional<std::size_t> column = darkColumn(sidesOf(seen, side))) {
            result.status = CheckStatus::Warn;
            result.seen = "column " + std::to_string(*column) + " of side " + std::to_string(side);
            result.cause = Cause::DirtyHead;
        }
    }
    return result;
}

std::size_t differences(const SheetRows& one, const SheetRows& other, std::size_t& cells)
{
    std::size_t found = 0;
    for (std::size_t row = 0; row < std::max(one.size(), other.size()); ++row) {
        const std::vector<Int16> none;
        const std::vector<Int16>& a = row < one.size() ? one[row] : none;
        const std::vector<Int16>& b = row < other.size() ? other[row] : none;
        for (std::size_t column = 0; column < std::max(a.size(), b.size()); ++column) {
            const Int16 left = column < a.size() ? a[column] : Int16{0};
            const Int16 right = column < b.size() ? b[column] : Int16{0};
            cells += left != 0 || right != 0 ? 1 : 0;
            found += left != right ? 1 : 0;
        }
    }
    return found;
}

/// The same sheet, read again, cell by cell.
CheckResult checkSame(const SheetsSeen& seen)
{
    CheckResult result = passed("the same sheet reads the same");
    if (seen.sheets.size() < 2) {
        result.status = CheckStatus::NotApplicable;
        result.seen = "one sheet only";
        return result;
    }
    std::size_t worst = 0;
    std::size_t marked = 0;
    for (const int side : {1, 2}) {
        const std::vector<SheetRows> sides = sidesOf(seen, side);
        for (std::size_t at = 1; at < sides.size(); ++at) {
            std::size_t cells = 0;
            const std::size_t found = differences(sides.front(), sides[at], cells);
            if (found > worst) {
                worst = found;
                marked = cells;
            }
        }
    }
    if (worst == 0)
        return result;
    result.seen = count(worst, "cell") + " of " + std::to_string(marked) + " differ";
    const bool otherSheet = 2 * worst > marked;
    result.status = otherSheet ? CheckStatus::NotApplicable : CheckStatus::Warn;
    if (otherSheet)
        result.seen += ": these are different sheets";
    else
        result.cause = Cause::SheetsDiffer;
    return result;
}

CheckResult checkRange(const SheetsSeen& seen)
{
    CheckResult result = passed("values are the model's");
    if (seen.highestMark == 0) {
        result.status = CheckStatus::NotApplicable;
        return result;
    }
    result.expected = "0 to " + std::to_string(seen.highestMark);
    for (const host::Sheet& sheet : seen.sheets)
        for (const int side : {1, 2})
            for (const host::Mark& mark : sheet.marks(side))
                if (mark.value < 0 || mark.value > seen.highestMark) {
                    result.status = CheckStatus::Warn;
                    result.seen = std::to_string(mark.value);
                    result.cause = Cause::OutOfRange;
                }
    return result;
}

CheckResult checkBarcodes(const SheetsSeen& seen)
{
    CheckResult result = passed("barcodes");
    std::size_t read = 0;
    for (const host::Sheet& sheet : seen.sheets)
        read += static_cast<std::size_t>(
            std::ranges::count_if(sheet.texts(), [](const std::string& text) { return !text.empty() && text != "?"; }));
    result.seen = count(read, "barcode");
    if (read == 0)
        result.status = CheckStatus::NotApplicable;
    return result;
}

CheckResult checkPace(const SheetsSeen& seen)
{
    CheckResult result = passed("bytes come at the pace of the line");
    const std::optional<Pace> pace = seen.usb ? std::nullopt : paceOf(seen.dialogue, seen.character);
    if (!pace) {
        result.status = CheckStatus::NotApplicable;
        return result;
    }
    const auto microseconds = [](double time) { return std::to_string(std::lround(time * 1000)) + " us a byte"; };
    result.expected = microseconds(seen.character);
    result.seen = microseconds(pace->character);
    result.cause = causeOfPace(*pace, seen.character);
    if (result.cause == Cause::Lumps)
        result.seen += ", in lumps of " + std::to_string(std::lround(pace->lump)) + " ms";
    if (result.cause != Cause::None)
        result.status = CheckStatus::Warn;
    return result;
}

} // namespace

SheetRows rowsOf(const host::Sheet& sheet, int side)
{
    SheetRows rows;
    if (side == 1 && sheet.record) {
        const std::vector<DictionaryKey> keys = sheet.record->Keys();
        const std::vector<DictionaryItem> items = sheet.record->Items();
        for (std::size_t at = 0; at < keys.size(); ++at) {
            const auto* const question = std::get_if<Int32>(&keys[at]);
            if (!question || *question < 1)
                continue;
            rows.resize(std::max(rows.size(), static_cast<std::size_t>(*question)));
            std::vector<Int16>& row = rows[static_cast<std::size_t>(*question) - 1];
            for (const char letter : itemText(items[at])) {
                if (letter < 'A' || letter > 'Z')
                    continue;
                row.resize(std::max<std::size_t>(row.size(), static_cast<std::size_t>(letter - 'A') + 1));
                row[static_cast<std::size_t>(letter - 'A')] = 1;
            }
        }
        return rows;
    }
    for (const host::Mark& mark : sheet.marks(side)) {
        rows.resize(std::max(rows.size(), static_cast<std::size_t>(mark.row)));
        std::vector<Int16>& row = rows[static_cast<std::size_t>(mark.row) - 1];
        row.resize(std::max(row.size(), static_cast<std::size_t>(mark.column)));
        row[static_cast<std::size_t>(mark.column) - 1] = mark.value;
    }
    return rows;
}

bool missesRows(const SheetRows& rows, const SheetRows& whole)
{
    const auto first = static_cast<std::size_t>(std::ranges::mismatch(rows, whole).in1 - rows.begin());
    for (std::size_t missed = 1; missed <= kMostMissed; ++missed) {
        if (first + missed >= whole.size() || rows.size() > whole.size() || rows.size() < first + kLeastRows)
            continue;
        const auto behind = whole.begin() + static_cast<std::ptrdiff_t>(first + missed);
        if (std::ranges::equal(rows.begin() + static_cast<std::ptrdiff_t>(first), rows.end(), behind, whole.end()))
            return true;
    }
    return false;
}

std::optional<std::size_t> darkColumn(const std::vector<SheetRows>& sheets)
{
    if (sheets.empty() || sheets.front().size() < kLeastRows)
        return std::nullopt;
    std::size_t columns = 0;
    for (const SheetRows& rows : sheets)
        for (const std::vector<Int16>& row : rows)
            columns = std::max(columns, row.size());
    std::optional<std::size_t> dark;
    std::size_t found = 0;
    for (std::size_t column = 0; column < columns; ++column) {
        const bool throughout = std::ranges::all_of(sheets, [&](const SheetRows& rows) {
            return std::ranges::all_of(
                rows, [&](const std::vector<Int16>& row) { return column < row.size() && row[column] != 0; });
        });
        if (throughout) {
            dark = column + 1;
            ++found;
        }
    }
    return found < columns ? dark : std::nullopt;
}

Cause causeOfPace(const Pace& pace, double character)
{
    constexpr double kLeastDeviation = 0.008;
    constexpr double kMostDeviation = 0.07; // a byte with a stop bit more or less differs by more
    constexpr double kStopBit = 0.13;
    constexpr double kStandardErrors = 4;
    if (pace.lump > 0)
        return Cause::Lumps;
    const double deviation = pace.character / character - 1;
    const bool sure = std::abs(deviation) > kStandardErrors * pace.standardError / character;
    if (!sure || std::abs(deviation) < kLeastDeviation || std::abs(deviation) > kStopBit)
        return Cause::None;
    return std::abs(deviation) < kMostDeviation ? Cause::ClockOff : Cause::WrongStopBits;
}

CheckResults judgeSheets(const SheetsSeen& seen)
{
    CheckResults results{checkCount(seen)};
    if (const CheckResult status = checkStatus(seen); status.status != CheckStatus::NotApplicable)
        results.push_back(status);
    if (seen.sheets.empty())
        return results;
    for (const auto check : {checkErrors, checkTimingMarks, checkHead, checkSame, checkRange, checkBarcodes, checkPace})
        results.push_back(check(seen));
    return results;
}

} // namespace kel
