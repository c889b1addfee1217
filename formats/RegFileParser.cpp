// SPDX-License-Identifier: MIT
#include "formats/RegFile.h"

#include "formats/KeyLimits.h"
#include "formats/RegFileText.h"
#include "formats/Utf16.h"
#include "types/Text.h"

#include <algorithm>
#include <charconv>

namespace kel {

namespace {

constexpr std::size_t kMostEntries = 50000;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kTurnedMark = "\xFE\xFF";

std::size_t lineAt(std::string_view text, std::size_t place)
{
    return 1 +
           static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}

/// The file's text in UTF-8, without a byte-order mark.
std::string textOf(std::string_view bytes)
{
    if (bytes.starts_with(kTurnedMark))
        throw RegFileError(1, "the file is UTF-16 in big-endian order; save it as UTF-8 or in little-endian order.");
    const bool marked = bytes.starts_with(kUtf16Mark);
    if (marked || (bytes.size() > 1 && bytes[1] == '\0')) {
        const std::string text = utf8Of(fromLittleEndian(bytes.substr(marked ? kUtf16Mark.size() : 0)));
        if (bytes.size() % 2 != 0)
            throw RegFileError(lineAt(text, text.size()), "the file ends within a character.");
        return text;
    }
    if (bytes.starts_with(kUtf8Mark))
        bytes.remove_prefix(kUtf8Mark.size());
    if (const auto foreign = firstForeignByte(bytes))
        throw RegFileError(lineAt(bytes, *foreign), "a character is not UTF-8; save the file as UTF-8 or UTF-16.");
    return std::string(bytes);
}

bool isHexDigit(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

std::uint32_t numberOf(std::string_view digits)
{
    std::uint32_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return number;
}

std::string littleEndian(std::uint32_t number)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i, number >>= 8)
        bytes += static_cast<char>(number & 0xFF);
    return bytes;
}

/// Goes through the text from its start to its end, and knows the line.
class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    std::vector<RegFileEntry> entries()
    {
        heading();
        while (!atEnd()) {
            blanks();
            if (peek() == '[')
                key();
            else if (peek() == '"' || peek() == '@')
                value();
            else if (peek() != ';' && !atLineEnd())
                fail("this line is neither a key in brackets, nor a value, nor a comment.");
            lineEnd();
        }
        return std::move(entries_);
    }

private:
    void heading()
    {
        const std::string_view first = restOfLine();
        if (first == "REGEDIT4")
            fail("the file is of version 4; export it again in version 5.00.");
        if (first != kRegFileHeading)
            fail("this is not a registry file; such a file begins with \"" + std::string(kRegFileHeading) + "\".");
        take(first.size());
        lineEnd();
    }

    /// `[HKEY_CURRENT_USER\Name]`. The name may hold brackets of its own: the last one is that which nothing but a
    /// comment follows.
    void key()
    {
        take(1);
        const bool removed = takeIf('-');
        const std::string_view line = restOfLine();
        std::size_t end = line.find(']');
        while (end != std::string_view::npos && !isNothing(line.substr(end + 1)))
            end = line.find(']', end + 1);
        if (end == std::string_view::npos)
            fail("the key has no bracket at its end.");
        const std::string_view name = line.substr(0, end);
        const std::optional<RegistryPath> path = registryPath(name);
        if (!path)
            fail("the key does not begin with a hive such as HKEY_CURRENT_USER.");
        if (isTooLong(*path))
            fail("the key is longer than 2,048 bytes, or more than 512 names deep.");
        if (removed && path->subKey.empty())
            fail("a hive as a whole cannot be removed.");
        take(end + 1);
        add({*path, std::nullopt, removed, {}});
        key_ = path;
        keyRemoved_ = removed;
    }

    void add(RegFileEntry entry)
    {
        if (entries_.size() == kMostEntries)
            fail("the file has more than 50,000 keys and values; import it in parts.");
        entries_.push_back(std::move(entry));
    }

    void value()
    {
        if (!key_)
            fail("the value belongs to no key.");
        if (keyRemoved_)
            fail("the value belongs to a key that is removed.");
        RegFileEntry entry{*key_, takeIf('@') ? std::string() : quoted(), false, {}};
        blanks();
        if (!takeIf('='))
            fail("an equals sign has to follow the value's name.");
        blanks();
        if (takeIf('-'))
            entry.removed = true;
        else
            entry.value = data();
        add(std::move(entry));
    }

    RegistryValue data()
    {
        if (peek() == '"')
            return {RegistryType::Text, quoted()};
        const std::string_view line = restOfLine();
        const std::size_t colon = line.find(':');
        const std::string kind = lowerCase(line.substr(0, colon));
        if (colon == std::string_view::npos || (kind != "dword" && kind != "hex" && !kind.starts_with("hex(")))
            fail("the value is neither a text in quotes nor dword: nor hex:.");
        const RegistryType type = kind == "dword" ? RegistryType::Number : hexType(kind);
        take(colon + 1);
        if (kind == "dword")
            return {type, littleEndian(numberOf(digits(8, "dword: needs one to eight hexadecimal digits.")))};
        return {type, isText(type) ? textOfBytes(bytes()) : bytes()};
    }

    /// `hex` or `hex(2)`.
    RegistryType hexType(std::string_view kind) const
    {
        if (kind == "hex")
            return RegistryType::Binary;
        kind.remove_prefix(std::string_view("hex(").size());
        const std::string_view number = kind.substr(0, kind.find(')'));
        const bool closed = number.size() + 1 == kind.size();
        if (!closed || number.empty() || number.size() > 8 || !std::all_of(number.begin(), number.end(), isHexDigit))
            fail("hex( ) needs the number of a type, in one to eight hexadecimal digits.");
        return static_cast<RegistryType>(numberOf(number));
    }

    /// `01,02,\` and what the next lines go on with.
    std::string bytes()
    {
        std::string bytes;
        blanksAndTurns();
        if (isNothing(restOfLine()))
            return bytes;
        do {
            blanksAndTurns();
            bytes += static_cast<char>(numberOf(digits(2, "hex: needs bytes of two hexadecimal digits.")));
            blanksAndTurns();
        } while (takeIf(','));
        return bytes;
    }

    std::string textOfBytes(const std::string& bytes) const
    {
        if (bytes.size() % 2 != 0)
            fail("the text ends within a character of two bytes.");
        std::u16string text = fromLittleEndian(bytes);
        if (text.ends_with(u'\0'))
            text.pop_back();
        return utf8Of(text);
    }

    /// A text between quotes, which may hold line ends.
    std::string quoted()
    {
        const std::size_t line = line_;
        take(1);
        std::string text;
        while (!takeIf('"')) {
            if (takeIf('\\') && peek() != '\\' && peek() != '"')
                fail("write a backslash within quotes twice.");
            if (atEnd())
                throw RegFileError(line, "the text has no quote at its end.");
            text += peek();
            take(1);
        }
        return text;
    }

    std::string_view digits(std::size_t most, const char* wanted)
    {
        std::size_t count = 0;
        while (at_ + count < text_.size() && isHexDigit(text_[at_ + count]))
            ++count;
        if (count == 0 || count > most)
            fail(wanted);
        const std::string_view found = text_.substr(at_, count);
        take(count);
        return found;
    }

    void blanks()
    {
        while (!atEnd() && (peek() == ' ' || peek() == '\t'))
            take(1);
    }

    /// Blanks, and backslashes at the end of a line, by which it goes on.
    void blanksAndTurns()
    {
        blanks();
        while (peek() == '\\') {
            take(1);
            if (!isNothing(restOfLine()))
                fail("a backslash between bytes has to end its line.");
            lineEnd();
            if (atEnd())
                fail("the file ends within a value.");
            blanks();
        }
    }

    /// Whether a rest of a line says nothing: it is empty, blank, or a comment.
    static bool isNothing(std::string_view rest)
    {
        const std::size_t start = rest.find_first_not_of(" \t");
        return start == std::string_view::npos || rest[start] == ';';
    }

    void lineEnd()
    {
        const std::string_view rest = restOfLine();
        if (!isNothing(rest))
            fail("the line goes on after its end: " + std::string(rest));
        take(rest.size());
        takeIf('\r');
        takeIf('\n');
    }

    /// What the line still has, without its end.
    [[nodiscard]] std::string_view restOfLine() const
    {
        std::string_view rest = text_.substr(at_);
        rest = rest.substr(0, rest.find('\n'));
        if (rest.ends_with('\r'))
            rest.remove_suffix(1);
        return rest;
    }

    [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }
    [[nodiscard]] bool atLineEnd() const { return restOfLine().empty(); }
    [[nodiscard]] char peek() const { return atEnd() ? '\0' : text_[at_]; }

    bool takeIf(char character)
    {
        if (atEnd() || peek() != character)
            return false;
        take(1);
        return true;
    }

    void take(std::size_t count)
    {
        for (; count > 0; --count) {
            if (text_[at_++] == '\n')
                ++line_;
        }
    }

    [[noreturn]] void fail(const std::string& text) const { throw RegFileError(line_, text); }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
    std::optional<RegistryPath> key_;
    bool keyRemoved_ = false;
    std::vector<RegFileEntry> entries_;
};

} // namespace

std::vector<RegFileEntry> parseRegFile(std::string_view bytes)
{
    const std::string text = textOf(bytes);
    return Parser(text).entries();
}

} // namespace kel
