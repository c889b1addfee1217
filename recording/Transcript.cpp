// SPDX-License-Identifier: MIT
#include "recording/Transcript.h"

#include <charconv>
#include <cmath>

namespace kel {

namespace {

constexpr int kMostTranscriptLines = 1000000;

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

int hexDigit(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

bool isPrintable(char character)
{
    return character >= 0x20 && character <= 0x7E;
}

std::string parseBytes(std::string_view text, int line)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (kBlanks.find(text[at]) != std::string_view::npos) {
            ++at;
        } else if (text[at] == '#') {
            break;
        } else if (text[at] == '"') {
            const std::size_t end = text.find('"', at + 1);
            if (end == std::string_view::npos)
                throw TranscriptError(line, "a text has no closing quote");
            for (const char character : text.substr(at + 1, end - at - 1)) {
                if (!isPrintable(character))
                    throw TranscriptError(line, "a quoted text holds printable ASCII only; write other bytes as "
                                                "two hexadecimal digits");
                bytes += character;
            }
            at = end + 1;
        } else {
            const std::size_t end = std::min(text.find_first_of(" \t\r\"#", at), text.size());
            const std::string_view word = text.substr(at, end - at);
            const int high = hexDigit(word[0]);
            const int low = word.size() == 2 ? hexDigit(word[1]) : -1;
            if (high < 0 || low < 0)
                throw TranscriptError(line, "\"" + std::string(word) +
                                                "\" is neither two hexadecimal digits nor a text in quotes");
            bytes += static_cast<char>(high * 16 + low);
            at = end;
        }
    }
    return bytes;
}

double parsePause(std::string_view text, int line)
{
    const std::string_view number = trimmed(text.substr(0, text.find('#')));
    double value = 0;
    const auto [stopped, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc{} || stopped != number.data() + number.size() || !std::isfinite(value) || value < 0 ||
        value > 1e9)
        throw TranscriptError(line, "\"" + std::string(number) + "\" is not a number of milliseconds");
    return value;
}

/// Where a character stands outside of the texts in quotes.
std::size_t findUnquoted(std::string_view text, char wanted)
{
    bool inQuotes = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"')
            inQuotes = !inQuotes;
        else if (text[at] == wanted && !inQuotes)
            return at;
    }
    return std::string_view::npos;
}

/// Numbers with blanks between them.
std::vector<Int32> parseNumbers(std::string_view text, int line)
{
    std::vector<Int32> numbers;
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
        Int32 number = 0;
        const auto [stopped, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc{} || (stopped != text.data() + text.size() && *stopped != ' '))
            throw TranscriptError(line, "\"" + std::string(text) + "\" does not begin with a number in range");
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(stopped - text.data()));
    }
    return numbers;
}

/// `OMR_GetMarks 0 30 63 48 = 1 63 48 : 00 0C`, or `... = failure 53 : "File not found"`.
void parseCall(std::string_view text, TranscriptLine& line)
{
    constexpr std::string_view kFailure = "failure ";
    const std::size_t sign = findUnquoted(text, '=');
    line.call = trimmed(text.substr(0, sign));
    if (sign == std::string_view::npos || !line.call.starts_with("OMR_"))
        throw TranscriptError(line.number, "write a call as: OMR_CloseDevice = 0");
    std::string_view answer = trimmed(text.substr(sign + 1));
    line.failed = answer.starts_with(kFailure);
    if (line.failed)
        answer.remove_prefix(kFailure.size());
    const std::size_t colon = findUnquoted(answer, ':');
    line.results = parseNumbers(answer.substr(0, colon), line.number);
    if (line.results.empty())
        throw TranscriptError(line.number, "a call without a result");
    if (colon != std::string_view::npos)
        line.bytes = parseBytes(answer.substr(colon + 1), line.number);
}

std::string writeCall(const TranscriptLine& line)
{
    std::string text = line.call + " =" + (line.failed ? " failure" : "");
    for (const Int32 number : line.results)
        text += " " + std::to_string(number);
    return line.bytes.empty() ? text : text + " : " + transcriptBytes(line.bytes);
}

std::string noteOf(std::string_view text)
{
    const std::size_t comment = text.find('#');
    return comment == std::string_view::npos ? "" : std::string(trimmed(text.substr(comment + 1)));
}

/// `key: value`; false for any other comment.
bool parseHead(std::string_view comment, std::pair<std::string, std::string>& head)
{
    const std::size_t colon = comment.find(':');
    if (colon == std::string_view::npos)
        return false;
    const std::string_view key = trimmed(comment.substr(0, colon));
    if (key.empty() || key.find_first_of(kBlanks) != std::string_view::npos)
        return false;
    head = {std::string(key), std::string(trimmed(comment.substr(colon + 1)))};
    return true;
}

TranscriptLine parseDialogueLine(std::string_view text, int number)
{
    TranscriptLine line;
    line.number = number;
    const std::string_view rest = text.substr(1);
    switch (text[0]) {
    case '>':
    case '<':
        line.kind = text[0] == '>' ? TranscriptLine::Kind::ToReader : TranscriptLine::Kind::FromReader;
        line.bytes = parseBytes(rest, number);
        if (line.bytes.empty())
            throw TranscriptError(number, "no bytes");
        break;
    case '+':
        line.kind = TranscriptLine::Kind::Pause;
        line.milliseconds = parsePause(rest, number);
        line.note = noteOf(rest);
        break;
    case '!':
        if (trimmed(rest.substr(0, rest.find('#'))) != "unplug")
            throw TranscriptError(number,
                                  "\"" + std::string(trimmed(rest)) + "\" is not an event; the only event is unplug");
        line.kind = TranscriptLine::Kind::Unplug;
        line.note = noteOf(rest);
        break;
    case '@':
        line.kind = TranscriptLine::Kind::Call;
        parseCall(rest, line);
        break;
    default:
        throw TranscriptError(number,
                              "a line begins with #, >, <, +, ! or @, not with \"" + std::string(1, text[0]) + "\"");
    }
    return line;
}

std::string numberText(double value)
{
    char buffer[64];
    const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::fixed);
    return error == std::errc{} ? std::string(buffer, end) : "0";
}

} // namespace

std::optional<std::string> Transcript::value(std::string_view key) const
{
    for (const auto& [name, text] : head)
        if (name == key)
            return text;
    return std::nullopt;
}

std::vector<std::string> Transcript::values(std::string_view key) const
{
    std::vector<std::string> found;
    for (const auto& [name, text] : head)
        if (name == key)
            found.push_back(text);
    return found;
}

Transcript parseTranscript(std::string_view text)
{
    Transcript transcript;
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    for (int number = 1; !text.empty(); ++number) {
        if (number > kMostTranscriptLines)
            throw TranscriptError(number, "a transcript of more than a million lines; replay it in parts");
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty())
            continue;
        if (line[0] != '#') {
            transcript.lines.push_back(parseDialogueLine(line, number));
            continue;
        }
        std::pair<std::string, std::string> head;
        if (transcript.lines.empty() && parseHead(line.substr(1), head))
            transcript.head.push_back(std::move(head));
    }
    return transcript;
}

std::string parseTranscriptBytes(std::string_view text)
{
    return parseBytes(text, 1);
}

std::string transcriptBytes(std::string_view bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    bool inQuotes = false;
    for (const char character : bytes) {
        const bool quoted = isPrintable(character) && character != '"';
        if (inQuotes && !quoted)
            text += '"';
        if (!inQuotes || !quoted)
            text += text.empty() ? "" : " ";
        if (quoted) {
            if (!inQuotes)
                text += '"';
            text += character;
        } else {
            const auto value = static_cast<Byte>(character);
            text += digits[value >> 4];
            text += digits[value & 15];
        }
        inQuotes = quoted;
    }
    if (inQuotes)
        text += '"';
    return text;
}

std::string writeTranscriptLine(const TranscriptLine& line)
{
    const std::string note = line.note.empty() ? "" : " # " + line.note;
    switch (line.kind) {
    case TranscriptLine::Kind::ToReader: return "> " + transcriptBytes(line.bytes);
    case TranscriptLine::Kind::FromReader: return "< " + transcriptBytes(line.bytes);
    case TranscriptLine::Kind::Pause: return "+ " + numberText(line.milliseconds) + note;
    case TranscriptLine::Kind::Unplug: return "! unplug" + note;
    case TranscriptLine::Kind::Call: return "@ " + writeCall(line);
    }
    return {};
}

std::string writeTranscript(const Transcript& transcript)
{
    std::string text;
    for (const auto& [key, value] : transcript.head)
        text += "# " + key + ": " + value + "\n";
    for (const TranscriptLine& line : transcript.lines)
        text += writeTranscriptLine(line) + "\n";
    return text;
}

} // namespace kel
