// SPDX-License-Identifier: MIT
#pragma once

#include <wtypes.h>

#include <string>
#include <string_view>

namespace kel::com {

// Hosts have characters, inside are bytes. Which bytes stand for a character depends on what the text is:
//
//   for people     a model's name, a report, a file, a registry key     UTF-8
//   of a sheet     a print line, a barcode, a field, a form's number    as the reader has it: the system's ANSI code
//                                                                       page, which may have two bytes a character
//   of a line      what a serial control sends and receives as a text   any bytes; none may get lost on the way

/// A text for people as a new BSTR. What is no UTF-8 in it is taken for a text of a sheet: a report may quote one.
[[nodiscard]] BSTR newText(std::string_view utf8);
/// A text of a sheet as a new BSTR.
[[nodiscard]] BSTR newSheetText(std::string_view bytes);
/// Bytes of a line as a new BSTR: the characters that they are in the code page; a byte that is none there, as one of
/// two that has lost the other, is the character of its own number.
[[nodiscard]] BSTR newLineText(std::string_view bytes);

/// The text that a BSTR holds; no BSTR at all is an empty one.
[[nodiscard]] std::string textOf(BSTR text);
/// The bytes that the system has for the characters of a BSTR: "?", or a letter like it, for one that the code page
/// does not have.
[[nodiscard]] std::string sheetTextOf(BSTR text);
/// The bytes that `newLineText` has made characters of; "?" for a character that stands for none.
[[nodiscard]] std::string lineTextOf(BSTR text);

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
