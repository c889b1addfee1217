// SPDX-License-Identifier: MIT
#include "types/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <locale>
#include <optional>
#include <sstream>

namespace kel {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// A number after "&h" or "&o": as many digits of the base as there are, the sign bit of 16 or 32 bits included. An
/// "&" after them makes it one of 32 bits.
double radixNumber(std::string_view digits, int base)
{
    std::uint64_t value = 0;
    bool isLong = false;
    for (const char c : digits) {
        const char d = lower(c);
        isLong = d == '&';
        int digit = -1;
        if (isDigit(d))
            digit = d - '0';
        else if (d >= 'a' && d <= 'f')
            digit = d - 'a' + 10;
        if (digit < 0 || digit >= base)
            break;
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        if (value > 0xFFFFFFFFU)
            throw RuntimeFailure(FailureCode::Overflow);
    }
    if (value <= 0xFFFFU && !isLong)
        return static_cast<std::int16_t>(value);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// The length of the decimal number at the beginning of a text without blanks.
std::size_t decimalPrefix(std::string_view text)
{
    std::size_t at = 0;
    const auto digits = [&] {
        const std::size_t from = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        return at - from;
    };
    if (at < text.size() && (text[at] == '+' || text[at] == '-'))
        ++at;
    std::size_t mantissa = digits();
    if (at < text.size() && text[at] == '.') {
        ++at;
        mantissa += digits();
    }
    if (mantissa == 0)
        return 0;
    if (at < text.size() && (lower(text[at]) == 'e' || lower(text[at]) == 'd')) {
        const std::size_t before = at++;
        if (at < text.size() && (text[at] == '+' || text[at] == '-'))
            ++at;
        if (digits() == 0)
            at = before;
    }
    return at;
}

double decimalNumber(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return lower(c) == 'd'; }, 'e');
    std::string_view digits = text;
    if (!digits.empty() && digits.front() == '+')
        digits.remove_prefix(1);
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        // Too small for a double is 0; only too large is a failure. The host's locale has no say in the decimal point.
        std::istringstream stream(text);
        stream.imbue(std::locale::classic());
        stream >> value;
        if (std::abs(value) < 1)
            return 0;
        throw RuntimeFailure(FailureCode::Overflow);
    }
    return value;
}

/// The number that a whole text is, blanks around it allowed.
std::optional<double> wholeNumber(std::string_view text)
{
    while (!text.empty() && (isBlank(text.front()) || text.front() == '\r'))
        text.remove_prefix(1);
    while (!text.empty() && (isBlank(text.back()) || text.back() == '\r'))
        text.remove_suffix(1);
    if (text.size() > 2 && text.front() == '&') {
        const char kind = lower(text[1]);
        const std::string_view digits = text.substr(2);
        const bool fits = std::all_of(digits.begin(), digits.end(), [&](char c) {
            return kind == 'h' ? isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'f') : c >= '0' && c <= '7';
        });
        if ((kind == 'h' || kind == 'o') && fits)
            return radixNumber(digits, kind == 'h' ? 16 : 8);
        return std::nullopt;
    }
    if (text.empty() || decimalPrefix(text) != text.size())
        return std::nullopt;
    return decimalNumber(std::string(text));
}

template <class Float>
std::string shortest(Float value)
{
    char buffer[64];
    const auto plain = std::to_chars(buffer, buffer + sizeof buffer, value);
    std::string text(buffer, plain.ptr);
    if (text.find('e') == std::string::npos)
        return text;
    // Numbers of a usual size are said without an exponent.
    if (std::abs(value) >= Float(1e-4) && std::abs(value) < Float(1e15)) {
        const auto fixed = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
        return std::string(buffer, fixed.ptr);
    }
    return upperCase(text);
}

} // namespace

double Val(std::string_view text)
{
    std::string compact;
    compact.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(compact), [](char c) { return !isBlank(c); });
    if (compact.size() >= 2 && compact[0] == '&') {
        if (lower(compact[1]) == 'h')
            return radixNumber(std::string_view(compact).substr(2), 16);
        if (lower(compact[1]) == 'o')
            return radixNumber(std::string_view(compact).substr(2), 8);
        return 0;
    }
    const std::size_t length = decimalPrefix(compact);
    if (length == 0)
        return 0;
    compact.resize(length);
    return decimalNumber(std::move(compact));
}

std::string CStr(float value)
{
    return shortest(value);
}

std::string CStr(double value)
{
    return shortest(value);
}

std::string CStr(Boolean value)
{
    return value ? "True" : "False";
}

Boolean CBool(std::string_view text, SourceLocation where)
{
    const std::string word = Trim(text);
    if (equalNoCase(word, "True"))
        return True;
    if (equalNoCase(word, "False"))
        return False;
    const auto number = wholeNumber(text);
    if (!number)
        throw RuntimeFailure(FailureCode::TypeMismatch, where);
    return *number != 0;
}

float CSng(std::string_view text, SourceLocation where)
{
    const auto number = wholeNumber(text);
    if (!number)
        throw RuntimeFailure(FailureCode::TypeMismatch, where);
    const auto single = static_cast<float>(*number);
    if (std::isinf(single))
        throw RuntimeFailure(FailureCode::Overflow, where);
    return single;
}

bool IsNumeric(std::string_view text)
{
    try {
        return wholeNumber(text).has_value();
    } catch (const RuntimeFailure&) {
        return false;
    }
}

std::string formatZeros(Int32 value, int digits)
{
    const std::int64_t wide = value;
    std::string text = std::to_string(wide < 0 ? -wide : wide);
    if (text.size() < static_cast<std::size_t>(digits))
        text.insert(0, static_cast<std::size_t>(digits) - text.size(), '0');
    return wide < 0 ? "-" + text : text;
}

Int16 Asc(std::string_view text, SourceLocation where)
{
    if (text.empty())
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
    return static_cast<unsigned char>(text.front());
}

std::string Space(Int32 count, SourceLocation where)
{
    if (count < 0)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
    return std::string(static_cast<std::size_t>(count), ' ');
}

std::string Trim(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return std::string(text);
}

std::string Mid(std::string_view text, Int32 start, Int32 count, SourceLocation where)
{
    if (start < 1 || count < 0)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
    if (static_cast<std::size_t>(start) > text.size())
        return {};
    return std::string(text.substr(static_cast<std::size_t>(start) - 1, static_cast<std::size_t>(count)));
}

std::string Left(std::string_view text, Int32 count, SourceLocation where)
{
    return Mid(text, 1, count, where);
}

std::string Right(std::string_view text, Int32 count, SourceLocation where)
{
    if (count < 0)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall, where);
    return std::string(text.substr(text.size() - std::min(text.size(), static_cast<std::size_t>(count))));
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with)
{
    std::string result;
    while (!what.empty()) {
        const std::size_t at = text.find(what);
        if (at == std::string_view::npos)
            break;
        result.append(text.substr(0, at)).append(with);
        text.remove_prefix(at + what.size());
    }
    return result.append(text);
}

std::vector<std::string> split(std::string_view text, char separator)
{
    std::vector<std::string> pieces;
    if (text.empty())
        return pieces;
    for (;;) {
        const std::size_t at = text.find(separator);
        pieces.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos)
            return pieces;
        text.remove_prefix(at + 1);
    }
}

bool equalNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && compareNoCase(a, b) == 0;
}

int compareNoCase(std::string_view a, std::string_view b)
{
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto x = static_cast<unsigned char>(lower(a[i]));
        const auto y = static_cast<unsigned char>(lower(b[i]));
        if (x != y)
            return x < y ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

std::string upperCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

} // namespace kel
