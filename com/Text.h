#pragma once

#include <wtypes.h>

#include <string>
#include <string_view>

namespace kel::com {

// Two kinds of text cross the boundary. A text for people (a model's name, a report, a file name) is UTF-8 inside. A
// text of a line (a barcode, a print line, a parity letter) holds a byte a character, as it goes over the wire;
// outside, each byte is the character that the system's ANSI code page has at that place.

/// A text for people as a new BSTR. One that is no UTF-8 is taken for a text of a line.
[[nodiscard]] BSTR newText(std::string_view utf8);
/// A text of a line as a new BSTR.
[[nodiscard]] BSTR newLineText(std::string_view bytes);

/// The text that a BSTR holds; no BSTR at all is an empty one.
[[nodiscard]] std::string textOf(BSTR text);
/// The bytes that stand for the characters of a BSTR; "?" for a character that the code page does not have.
[[nodiscard]] std::string lineTextOf(BSTR text);
/// The text in the ANSI code page, as the system's older functions take it.
[[nodiscard]] std::string ansiTextOf(BSTR text);

/// A BSTR that is freed with its owner.
class OwnedText {
public:
    explicit OwnedText(BSTR text = nullptr) noexcept : text_(text) {}
    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;
    ~OwnedText();

    [[nodiscard]] BSTR get() const noexcept { return text_; }
    [[nodiscard]] BSTR* out() noexcept { return &text_; }
    [[nodiscard]] std::wstring_view view() const noexcept;

private:
    BSTR text_;
};

} // namespace kel::com
