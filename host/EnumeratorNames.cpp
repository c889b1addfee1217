// SPDX-License-Identifier: MIT
#include "host/EnumeratorNames.h"

#include "types/ModelTable.h"
#include "types/Text.h"

#include <algorithm>
#include <array>

namespace kel::host {

namespace {

#define KEL_ENUMERATOR(name)                                                                                           \
    Enumerator                                                                                                         \
    {                                                                                                                  \
#name, name                                                                                                    \
    }

// In the order of the numbers.
constexpr auto kReaderTypes = [] {
    std::array<Enumerator, kReaderTypeCount> types{};
    types[kelReaderTypeNone] = KEL_ENUMERATOR(kelReaderTypeNone);
    for (const ModelRow& row : kModels)
        types[static_cast<std::size_t>(row.number)] = {row.enumerator, row.number};
    return types;
}();

constexpr Enumerator kBaudRates[] = {
    KEL_ENUMERATOR(kelReaderBaudRate110),    KEL_ENUMERATOR(kelReaderBaudRate300),
    KEL_ENUMERATOR(kelReaderBaudRate600),    KEL_ENUMERATOR(kelReaderBaudRate1200),
    KEL_ENUMERATOR(kelReaderBaudRate2400),   KEL_ENUMERATOR(kelReaderBaudRate9600),
    KEL_ENUMERATOR(kelReaderBaudRate14400),  KEL_ENUMERATOR(kelReaderBaudRate19200),
    KEL_ENUMERATOR(kelReaderBaudRate28800),  KEL_ENUMERATOR(kelReaderBaudRate38400),
    KEL_ENUMERATOR(kelReaderBaudRate56000),  KEL_ENUMERATOR(kelReaderBaudRate128000),
    KEL_ENUMERATOR(kelReaderBaudRate256000),
};

constexpr Enumerator kDataBits[] = {
    KEL_ENUMERATOR(kelReaderDataBits4), KEL_ENUMERATOR(kelReaderDataBits5), KEL_ENUMERATOR(kelReaderDataBits6),
    KEL_ENUMERATOR(kelReaderDataBits7), KEL_ENUMERATOR(kelReaderDataBits8),
};

constexpr Enumerator kFlowControls[] = {
    KEL_ENUMERATOR(kelReaderFlowControlNone),
    KEL_ENUMERATOR(kelReaderFlowControlXonXoff),
    KEL_ENUMERATOR(kelReaderFlowControlHardware),
    KEL_ENUMERATOR(kelReaderFlowControlBoth),
};

constexpr Enumerator kRecognitionTypes[] = {
    KEL_ENUMERATOR(kelRecognitionTypePage),
    KEL_ENUMERATOR(kelRecognitionTypeWindow),
};

#undef KEL_ENUMERATOR

} // namespace

const Enumeration& readerTypes()
{
    static constexpr Enumeration enumeration{"kelReaderType", kReaderTypes};
    return enumeration;
}

const Enumeration& baudRates()
{
    static constexpr Enumeration enumeration{"kelReaderBaudRate", kBaudRates};
    return enumeration;
}

const Enumeration& dataBits()
{
    static constexpr Enumeration enumeration{"kelReaderDataBits", kDataBits};
    return enumeration;
}

const Enumeration& flowControls()
{
    static constexpr Enumeration enumeration{"kelReaderFlowControl", kFlowControls};
    return enumeration;
}

const Enumeration& recognitionTypes()
{
    static constexpr Enumeration enumeration{"kelRecognitionType", kRecognitionTypes};
    return enumeration;
}

std::optional<Int32> Enumeration::valueOf(std::string_view wanted) const
{
    const auto found = std::find_if(members.begin(), members.end(), [&](const Enumerator& member) {
        return equalNoCase(member.name, wanted) || equalNoCase(shortName(member), wanted);
    });
    return found == members.end() ? std::nullopt : std::optional(found->value);
}

std::vector<std::string> Enumeration::names() const
{
    std::vector<std::string> result;
    for (const Enumerator& member : members)
        result.emplace_back(member.name);
    return result;
}

} // namespace kel::host
