// SPDX-License-Identifier: MIT
#include "simulators/framework/Fault.h"

#include <array>
#include <charconv>
#include <stdexcept>

namespace kel {

namespace {

struct FaultWord {
    std::string_view word;
    Fault::Kind kind;
    bool takesValue;
    Int32 usualValue;
    bool atByte;  ///< it happens to a byte of the output
    bool atSheet; ///< it can happen to the feeding of a sheet
};

constexpr std::array<FaultWord, 9> kWords = {{
    {"drop", Fault::Kind::Drop, false, 0, true, false},
    {"garble", Fault::Kind::Garble, true, 0x55, true, false},
    {"split", Fault::Kind::Split, true, 200, true, false},
    {"drip", Fault::Kind::Drip, true, 20, true, false},
    {"late", Fault::Kind::Late, true, 1000, true, false},
    {"silent", Fault::Kind::Silent, false, 0, true, false},
    {"jam", Fault::Kind::Jam, false, 0, false, true},
    {"empty", Fault::Kind::Empty, false, 0, false, true},
    {"unplug", Fault::Kind::Unplug, false, 0, true, true},
}};

[[noreturn]] void refuse(std::string_view text, const std::string& why)
{
    std::string words;
    for (const FaultWord& word : kWords)
        words += (words.empty() ? "" : ", ") + std::string(word.word);
    throw std::invalid_argument("fault \"" + std::string(text) + "\": " + why + ". A fault is WORD[=VALUE]@PLACE; " +
                                "the words are " + words + "; a place is byte=N, sheet=N or sheet=N,byte=N. " +
                                "'kelreader simulate --list-faults' lists the others");
}

const FaultWord& wordOf(Fault::Kind kind)
{
    for (const FaultWord& word : kWords)
        if (word.kind == kind)
            return word;
    return kWords.front();
}

bool parseNumber(std::string_view text, Int32& value)
{
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stopped == end;
}

/// Parts a text at the first separator; the second piece is nothing where there is none.
std::pair<std::string_view, std::optional<std::string_view>> parted(std::string_view text, char separator)
{
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos)
        return {text, std::nullopt};
    return {text.substr(0, at), text.substr(at + 1)};
}

void parsePlace(std::string_view text, std::string_view place, Fault& fault)
{
    const auto [name, number] = parted(place, '=');
    Int32 value = 0;
    if (!number || !parseNumber(*number, value) || value < 1)
        refuse(text, "\"" + std::string(place) + "\" is not a place");
    std::optional<Int32>* target = name == "byte" ? &fault.byte : name == "sheet" ? &fault.sheet : nullptr;
    if (!target)
        refuse(text, "unknown place \"" + std::string(name) + "\"");
    if (*target)
        refuse(text, "the place " + std::string(name) + " is there twice");
    *target = value;
}

} // namespace

Fault parseFault(std::string_view text)
{
    const auto [what, places] = parted(text, '@');
    const auto [name, value] = parted(what, '=');
    const FaultWord* word = nullptr;
    for (const FaultWord& each : kWords)
        if (each.word == name)
            word = &each;
    if (!word)
        refuse(text, "unknown word \"" + std::string(name) + "\"");

    Fault fault{.kind = word->kind, .value = word->usualValue, .byte = {}, .sheet = {}};
    if (value && !word->takesValue)
        refuse(text, std::string(name) + " takes no value");
    if (value && (!parseNumber(*value, fault.value) || fault.value < 0))
        refuse(text, "\"" + std::string(*value) + "\" is not a value");
    if (fault.kind == Fault::Kind::Garble && (fault.value < 1 || fault.value > 255))
        refuse(text, "a byte is garbled with 1 to 255");

    if (places) {
        const auto [first, second] = parted(*places, ',');
        parsePlace(text, first, fault);
        if (second)
            parsePlace(text, *second, fault);
    }
    if (!word->atByte && (!fault.sheet || fault.byte))
        refuse(text, std::string(name) + " happens at a sheet");
    if (word->atByte && !fault.byte && !(word->atSheet && fault.sheet))
        fault.byte = 1;
    return fault;
}

std::string toText(const Fault& fault)
{
    const FaultWord& word = wordOf(fault.kind);
    std::string text(word.word);
    if (word.takesValue)
        text += "=" + std::to_string(fault.value);
    char separator = '@';
    if (fault.sheet) {
        text += separator + ("sheet=" + std::to_string(*fault.sheet));
        separator = ',';
    }
    if (fault.byte)
        text += separator + ("byte=" + std::to_string(*fault.byte));
    return text;
}

} // namespace kel
