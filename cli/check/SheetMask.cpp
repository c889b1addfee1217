// SPDX-License-Identifier: MIT
#include "cli/check/SheetMask.h"

#include "cli/check/Dialects.h"
#include "dispatch/PaperCommands.h"
#include "recording/ReportSections.h"
#include "recording/Transcript.h"
#include "types/ModelTable.h"

#include <algorithm>

namespace kel {

namespace {

using Kind = TranscriptLine::Kind;

bool isDigitOrLetter(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// Has all bytes from one on replaced by what `blank` makes of them.
template <class Blank>
std::string replaced(std::string bytes, std::size_t from, Blank blank)
{
    for (std::size_t at = from; at < bytes.size(); ++at)
        bytes[at] = blank(bytes[at]);
    return bytes;
}

/// Pairs of column and value: a first column without a mark.
std::string maskedPairs(std::string bytes)
{
    bool isColumn = true;
    for (char& byte : bytes) {
        if (byte == '\r' || byte == ',' || byte == ' ') {
            isColumn = true;
            continue;
        }
        byte = isColumn ? '1' : '0';
        isColumn = !isColumn;
    }
    return bytes;
}

/// LF, two bytes a row, CR.
std::string maskedHalfRows(std::string bytes)
{
    constexpr char kNoMarks = 0x40;
    const std::size_t begin = bytes.find('\n');
    if (begin == std::string::npos)
        return bytes;
    const std::size_t end = bytes.ends_with('\r') ? bytes.size() - 1 : bytes.size();
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(begin) + 1, bytes.begin() + static_cast<std::ptrdiff_t>(end),
              kNoMarks);
    return bytes;
}

/// What a USB reader's library delivers of a sheet.
std::string maskedCall(const std::string& line)
{
    TranscriptLine call = parseTranscript(line).lines.front();
    if (call.call.starts_with("OMR_GetMarks"))
        call.bytes.clear();
    else if (call.call.starts_with("OMR_GetBarcodeData"))
        call.bytes.assign(call.bytes.size(), '0');
    return writeTranscriptLine(call) + "\n";
}

} // namespace

std::string maskedSheet(kelReaderType model, const std::string& sent, std::string bytes)
{
    constexpr unsigned char kBlockEnd = 200;
    const Dialect dialect = dialectOf(model).dialect;
    switch (dialect) {
    case Dialect::Scanmark: {
        const bool raw = Wire("ScanmarkRaw").isOf(model);
        return replaced(std::move(bytes), 0, [&](char c) { return c == '\r' ? c : raw ? '\0' : '0'; });
    }
    // Row openers are small letters, marks are hexadecimal digits, barcodes have capitals too; the byte after 15
    // counts, and is left.
    case Dialect::OpScan: {
        bool counts = false;
        return replaced(std::move(bytes), 0, [&](char c) {
            const bool isCount = std::exchange(counts, c == '\x15');
            return !isCount && ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z')) ? '0' : c;
        });
    }
    case Dialect::AppersonLink:
    case Dialect::AppersonGradeMaster:
        return replaced(std::move(bytes), 0,
                        [](char c) { return static_cast<unsigned char>(c) < kBlockEnd ? '\0' : c; });
    case Dialect::PeripheralDynamics: return maskedHalfRows(std::move(bytes));
    // The letter before a sheet announces it.
    case Dialect::EZData:
    case Dialect::Chatsworth: {
        const std::size_t from = bytes.size() > 1 && bytes[1] == '\r' ? 2 : 0;
        return replaced(std::move(bytes), from, [](char c) { return c == '\r' ? c : ' '; });
    }
    case Dialect::SekonicLarge:
    case Dialect::SekonicSmall:
        if (!sent.starts_with('\x13'))
            return maskedPairs(std::move(bytes));
        break;
    case Dialect::AppersonLine: break;
    }
    const std::size_t from = bytes.starts_with("OK") ? bytes.find('\n') : 0;
    return replaced(std::move(bytes), from, [](char c) { return isDigitOrLetter(c) ? '0' : c; });
}

/// Whether a sheet's marks, barcode or fields come upon a command, and not only a word that it is on its way.
bool SheetMask::bringsSheet(const std::string& sent) const
{
    for (const char* other : {"?\r", "?P\r", "?F\r", "FB\r", "FE\r", "\x1BPRN$", "\x1B\x45JCT"}) {
        if (sent.starts_with(other))
            return false;
    }
    return !movesNoPaper(model_, sent, before_);
}

std::string SheetMask::takeReply()
{
    std::string bytes;
    for (const std::string& line : waiting_) {
        if (line[0] == '<')
            bytes += parseTranscript(line).lines.front().bytes;
    }
    bytes = maskedSheet(model_, before_, std::move(bytes));
    std::string text;
    std::size_t at = 0;
    for (const std::string& line : std::exchange(waiting_, {})) {
        if (line[0] != '<') {
            text += line;
            continue;
        }
        TranscriptLine parsed = parseTranscript(line).lines.front();
        parsed.bytes = bytes.substr(at, parsed.bytes.size());
        at += parsed.bytes.size();
        text += writeTranscriptLine(parsed) + "\n";
    }
    return text;
}

std::string SheetMask::masked(const std::string& line)
{
    const bool ofReply = line[0] == '<' || line[0] == '+' || line.starts_with("# so far");
    if (inSheets_ && ofSheet_ && ofReply) {
        waiting_.push_back(line);
        return {};
    }
    const std::string reply = takeReply();
    if (line.starts_with(kSectionMark)) {
        const std::string name = line.substr(kSectionMark.size(), line.size() - kSectionMark.size() - 1);
        inSheets_ = name == kSheetsSection || name.starts_with("confirm");
        before_.clear();
        ofSheet_ = true; // some send by themselves
    } else if (inSheets_ && line[0] == '@') {
        return reply + maskedCall(line);
    } else if (inSheets_ && line[0] == '>') {
        const std::string sent = parseTranscript(line).lines.front().bytes;
        ofSheet_ = bringsSheet(sent);
        before_ = sent;
    }
    return reply + line;
}

} // namespace kel
