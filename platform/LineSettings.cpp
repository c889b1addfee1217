// SPDX-License-Identifier: MIT
#include "platform/LineSettings.h"

#include "types/Text.h"

#include <charconv>

namespace kel {

namespace {

bool parseWhole(std::string_view text, Int32& value)
{
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stopped == end;
}

bool parseStopBits(std::string_view text, double& value)
{
    if (text == "1")
        value = 1;
    else if (text == "1.5")
        value = 1.5;
    else if (text == "2")
        value = 2;
    else
        return false;
    return true;
}

} // namespace

LineParameters parseLineSettings(std::string_view text, SourceLocation where)
{
    const std::vector<std::string> pieces = split(text, ',');
    LineParameters line;
    bool good = pieces.size() == 4;
    good = good && parseWhole(pieces[0], line.baudRate) && line.baudRate > 0;
    if (good) {
        const std::string parity = upperCase(pieces[1]);
        good = parity.size() == 1 && std::string_view("NEOMS").find(parity) != std::string_view::npos;
        line.parity = good ? parity[0] : 'N';
    }
    good = good && parseWhole(pieces[2], line.dataBits) && line.dataBits >= 4 && line.dataBits <= 8;
    good = good && parseStopBits(pieces[3], line.stopBits);
    if (!good)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue,
                             failureText(FailureCode::InvalidPropertyValue) + ": \"" + std::string(text) + "\"", where);
    return line;
}

std::string lineSettingsText(const LineParameters& line)
{
    return CStr(line.baudRate) + "," + line.parity + "," + CStr(line.dataBits) + "," + CStr(line.stopBits);
}

} // namespace kel
