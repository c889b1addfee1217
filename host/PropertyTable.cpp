// SPDX-License-Identifier: MIT
#include "host/PropertyTable.h"

#include "formats/NearestNames.h"
#include "host/EnumeratorNames.h"
#include "host/UsageError.h"
#include "types/LineText.h"
#include "types/Text.h"

#include <charconv>
#include <limits>
#include <optional>

namespace kel::host {

namespace {

/// What a text has to be; thrown as the second half of the sentence that refuses it.
struct DoesNotFit {
    std::string wanted;
};

template <class T>
std::optional<T> wholeText(std::string_view text)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

template <class T>
T parsed(std::string_view text);

template <class T>
T parsedWhole(std::string_view text)
{
    if (const auto value = wholeText<T>(text))
        return *value;
    throw DoesNotFit{"a whole number from " + CStr(std::numeric_limits<T>::min()) + " to " +
                     CStr(std::numeric_limits<T>::max())};
}

template <>
Int16 parsed(std::string_view text)
{
    return parsedWhole<Int16>(text);
}

template <>
Int32 parsed(std::string_view text)
{
    return parsedWhole<Int32>(text);
}

template <>
float parsed(std::string_view text)
{
    if (const auto value = wholeText<float>(text); value && *value - *value == 0)
        return *value;
    throw DoesNotFit{"a number such as 1 or 1.5"};
}

template <>
Boolean parsed(std::string_view text)
{
    if (equalNoCase(text, "true"))
        return True;
    if (equalNoCase(text, "false"))
        return False;
    throw DoesNotFit{"true or false"};
}

template <>
std::string parsed(std::string_view text)
{
    return std::string(text);
}

template <class Enum>
Enum parsedMember(std::string_view text, const Enumeration& enumeration)
{
    if (const auto number = wholeText<Int32>(text))
        return static_cast<Enum>(*number);
    if (const auto value = enumeration.valueOf(text))
        return static_cast<Enum>(*value);
    const std::vector<std::string> names = enumeration.names();
    const bool few = names.size() <= 5;
    throw DoesNotFit{"a 32-bit whole number or one of the enumeration's names: " +
                     (few ? listed(names) : listed(nearestNames(text, names)) + " are the nearest")};
}

template <>
kelReaderType parsed(std::string_view text)
{
    return parsedMember<kelReaderType>(text, readerTypes());
}

template <>
kelReaderBaudRate parsed(std::string_view text)
{
    return parsedMember<kelReaderBaudRate>(text, baudRates());
}

template <>
kelReaderDataBits parsed(std::string_view text)
{
    return parsedMember<kelReaderDataBits>(text, dataBits());
}

template <>
kelReaderFlowControl parsed(std::string_view text)
{
    return parsedMember<kelReaderFlowControl>(text, flowControls());
}

template <>
kelRecognitionType parsed(std::string_view text)
{
    return parsedMember<kelRecognitionType>(text, recognitionTypes());
}

// The texts of the printer go over the line.

template <class T>
T parsedOfPrinter(std::string_view text)
{
    if constexpr (!std::is_same_v<T, std::string>)
        return parsed<T>(text);
    else if (const auto line = lineOfText(text))
        return *line;
    else
        throw DoesNotFit{"characters of Latin-1 only"};
}

template <class T>
Json jsonOfPrinter(const T& value)
{
    if constexpr (std::is_same_v<T, std::string>)
        return textOfLine(value);
    else
        return jsonValue(value);
}

#define KEL_READER_PROPERTY(Name)                                                                                      \
    {                                                                                                                  \
#Name, [](const clsKELReader& reader) { return jsonValue(reader.Name()); },                                       \
            [](clsKELReader& reader, std::string_view text) {                                                          \
                reader.Name(parsed<decltype(reader.Name())>(text));                                                    \
            }    \
    }
#define KEL_PRINTER_PROPERTY(Name)                                                                                     \
    {                                                                                                                  \
        "Printer." #Name, [](const clsKELReader& reader) { return jsonOfPrinter(reader.Printer()->Name()); },          \
            [](clsKELReader& reader, std::string_view text) {                                                          \
                reader.Printer()->Name(parsedOfPrinter<decltype(reader.Printer()->Name())>(text));                     \
            }                                                                                                          \
    }

constexpr PropertyRow kProperties[] = {
    KEL_READER_PROPERTY(ReaderGrade),
    KEL_READER_PROPERTY(BaudRate),
    KEL_READER_PROPERTY(SleepTime),
    KEL_READER_PROPERTY(DataBits),
    KEL_READER_PROPERTY(Duplex),
    KEL_READER_PROPERTY(DuplexForm),
    KEL_READER_PROPERTY(Barcode),
    KEL_READER_PROPERTY(Feeder),
    KEL_READER_PROPERTY(FlowControl),
    KEL_READER_PROPERTY(MarkCutOff),
    KEL_READER_PROPERTY(MarkDiscrimination),
    KEL_READER_PROPERTY(Parity),
    KEL_READER_PROPERTY(Port),
    KEL_READER_PROPERTY(CancelScan),
    KEL_READER_PROPERTY(ReaderType),
    KEL_READER_PROPERTY(RecognitionThreshold),
    KEL_READER_PROPERTY(Rejecter),
    KEL_READER_PROPERTY(StopBits),
    KEL_READER_PROPERTY(Timeout),
    KEL_READER_PROPERTY(Windowing),
    KEL_READER_PROPERTY(RecognitionMode),
    KEL_PRINTER_PROPERTY(Enabled),
    KEL_PRINTER_PROPERTY(Active),
    KEL_PRINTER_PROPERTY(Buffer1),
    KEL_PRINTER_PROPERTY(Buffer2),
    KEL_PRINTER_PROPERTY(Buffer3),
    KEL_PRINTER_PROPERTY(Distance),
};

#undef KEL_PRINTER_PROPERTY
#undef KEL_READER_PROPERTY

} // namespace

std::span<const PropertyRow> readerProperties()
{
    return kProperties;
}

const PropertyRow& propertyNamed(std::string_view name)
{
    for (const PropertyRow& row : kProperties) {
        if (equalNoCase(row.name, name))
            return row;
    }
    std::vector<std::string> names;
    for (const PropertyRow& row : kProperties)
        names.emplace_back(row.name);
    throw UsageError("The reader has no property '" + std::string(name) + "' that can be set; " +
                     nearestListed(nearestNames(name, names)) + ".");
}

void applyAssignment(clsKELReader& reader, std::string_view assignment)
{
    const std::size_t sign = assignment.find('=');
    if (sign == std::string_view::npos)
        throw UsageError("'" + std::string(assignment) + "' sets nothing; write Property=Value.");
    const PropertyRow& row = propertyNamed(assignment.substr(0, sign));
    const std::string_view value = assignment.substr(sign + 1);
    try {
        row.set(reader, value);
    } catch (const DoesNotFit& refusal) {
        throw UsageError("'" + std::string(value) + "' does not fit " + std::string(row.name) + ", which takes " +
                         refusal.wanted + ".");
    }
}

} // namespace kel::host
