// SPDX-License-Identifier: MIT
#include "simulators/scanning_systems/SekonicReplies.h"

#include <string_view>

namespace kel {

namespace {

constexpr std::string_view kReversed = "9876543210XYABC";
constexpr Int32 kMostColumns = 48;

char valueCharacter(Int16 value)
{
    return static_cast<char>('0' + value);
}

char columnCharacter(Int32 column, ColumnLetters letters)
{
    if (letters == ColumnLetters::Reversed)
        return kReversed.at(static_cast<std::size_t>(column - 1));
    return static_cast<char>('0' + column - 1);
}

} // namespace

std::string pageReply(const MarkRows& marks, Int32 rows, ColumnLetters letters, const ReplyStyle& style)
{
    const Int32 columns = letters == ColumnLetters::Reversed ? static_cast<Int32>(kReversed.size()) : kMostColumns;
    std::string reply;
    for (Int32 row = 1; row <= rows; ++row) {
        for (Int32 column = 1; column <= columns; ++column) {
            const Int16 value = markAt(marks, row, column);
            const bool shown = value != 0 || (style.explicitZeros && (row * 7 + column) % 31 == 0);
            if (!shown)
                continue;
            if (style.blanks && (row + column) % 5 == 0)
                reply += ' ';
            reply += columnCharacter(column, letters);
            reply += valueCharacter(value);
        }
        if (style.blanks && row % 3 == 0)
            reply += ' ';
        reply += '\r';
    }
    return reply;
}

std::string windowReply(const MarkRows& marks, const std::vector<LoadedWindow>& windows, const ReplyStyle& style)
{
    std::string reply;
    Int32 number = 0;
    for (const LoadedWindow& window : windows) {
        for (Int32 row = 0; row < window.rows; ++row) {
            std::string field;
            for (Int32 column = 0; column < window.columns; ++column) {
                const Int16 value = markAt(marks, window.startRow + row * window.rowGap,
                                           window.startColumn + column * window.columnGap);
                const bool shown = value != 0 || (style.explicitZeros && (row * 7 + column) % 31 == 3);
                if (!shown)
                    continue;
                field += static_cast<char>('1' + column);
                field += valueCharacter(value);
            }
            reply += field.empty() ? (row % 2 == 0 ? "  " : " 0") : field;
            reply += ',';
        }
        ++number;
        reply += style.separators && number % 2 == 0 ? ",\r,\r\r" : "\r";
    }
    return reply;
}

} // namespace kel
