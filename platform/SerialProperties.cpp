// SPDX-License-Identifier: MIT
#include "platform/SerialProperties.h"

#include "platform/LineSettings.h"
#include "types/RuntimeFailure.h"

namespace kel {

void SerialProperties::CommPort(Int16 value)
{
    if (PortOpen())
        throw RuntimeFailure(FailureCode::PortAlreadyOpen);
    port_ = value;
}

void SerialProperties::Settings(const std::string& value)
{
    LineParameters wanted = parseLineSettings(value);
    if (wanted.dataBits < leastDataBits_)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue,
                             failureText(FailureCode::InvalidPropertyValue) + ": \"" + value + "\"; lines have " +
                                 std::to_string(leastDataBits_) + " to 8 data bits on this system");
    wanted.handshaking = parameters_.handshaking;
    setLine(wanted);
    parameters_ = wanted;
    settings_ = value;
}

void SerialProperties::Handshaking(Int32 value)
{
    if (value < 0 || value > 3)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue, failureText(FailureCode::InvalidPropertyValue) +
                                                                    ": handshaking " + std::to_string(value) +
                                                                    " is not 0 to 3");
    LineParameters wanted = parameters_;
    wanted.handshaking = value;
    setLine(wanted);
    parameters_ = wanted;
}

void SerialProperties::InputLen(Int32 value)
{
    if (value < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    inputLen_ = value;
}

} // namespace kel
