// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/CatalogueModel.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace kel {

/// Takes a line apart as it is written in a model's row:
///
///     19200,N,8,2            what the line starts from: speed, parity, data bits, stop bits; all the user's to change
///     9600,N,7,2 hardware    the same with hardware handshaking
///     9600,E,7,1 fixed       the reader knows no other line: neither it nor the pace of the dialogue is the user's
///                            business
///     USB                    no line: the dialog shows the settings of one greyed out
///
/// A line that is written wrongly does not compile.
class ModelLine {
public:
    [[nodiscard]] static consteval ModelLink link(std::string_view text)
    {
        if (text == "USB")
            return {.InterfaceType = kelReaderInterfaceTypeUSB, .LineSettings = UserMay::See};
        ModelLine line(text);
        const kelReaderBaudRate speed = line.takeSpeed();
        const char* parity = line.takeParity();
        const int dataBits = line.takeDigit('4', '8', "the data bits are 4 to 8");
        const auto stopBits = static_cast<float>(line.takeDigit('1', '2', "the stop bits are 1 or 2"));
        ModelLink link{.Defaults = LineDefaults{speed, dataBits, parity, stopBits}};
        if (line.rest_ == "hardware") {
            link.Defaults->FlowControl = kelReaderFlowControlHardware;
        } else if (line.rest_ == "fixed") {
            link.LineSettings = UserMay::SeeNothing;
            link.PauseAndTimeout = UserMay::SeeNothing;
        } else if (!line.rest_.empty()) {
            throw "after the settings of a line comes nothing, hardware or fixed";
        }
        return link;
    }

private:
    consteval explicit ModelLine(std::string_view text) : rest_(text) {}

    /// What stands before the next comma, or blank.
    consteval std::string_view take()
    {
        const std::size_t end = std::min(rest_.find_first_of(", "), rest_.size());
        const std::string_view part = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return part;
    }

    consteval kelReaderBaudRate takeSpeed()
    {
        constexpr kelReaderBaudRate kSpeeds[] = {
            kelReaderBaudRate110,   kelReaderBaudRate300,   kelReaderBaudRate600,   kelReaderBaudRate1200,
            kelReaderBaudRate2400,  kelReaderBaudRate9600,  kelReaderBaudRate14400, kelReaderBaudRate19200,
            kelReaderBaudRate28800, kelReaderBaudRate38400, kelReaderBaudRate56000, kelReaderBaudRate128000,
            kelReaderBaudRate256000};
        int speed = 0;
        for (const char digit : take())
            speed = speed * 10 + (digit - '0');
        if (std::find(std::begin(kSpeeds), std::end(kSpeeds), speed) == std::end(kSpeeds))
            throw "a line starts from a speed of kelReaderBaudRate";
        return static_cast<kelReaderBaudRate>(speed);
    }

    consteval const char* takeParity()
    {
        const std::string_view parity = take();
        for (const char* known : {"N", "E", "O"})
            if (parity == known)
                return known;
        throw "the parity is N, E or O";
    }

    consteval int takeDigit(char least, char most, const char* wrong)
    {
        const std::string_view digit = take();
        if (digit.size() != 1 || digit.front() < least || digit.front() > most)
            throw wrong;
        return digit.front() - '0';
    }

    std::string_view rest_;
};

} // namespace kel
