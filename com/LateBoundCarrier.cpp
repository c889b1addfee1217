// SPDX-License-Identifier: MIT
#include "com/LateBoundCarrier.h"

#include "com/SafeArrays.h"

namespace kel::com {

Int16 LateBoundSerialControl::CommPort() const
{
    return object_.get(L"CommPort").asInt16();
}

void LateBoundSerialControl::CommPort(Int16 value)
{
    object_.put(L"CommPort", OleVariant::of(value));
}

std::string LateBoundSerialControl::Settings() const
{
    return object_.get(L"Settings").asText();
}

void LateBoundSerialControl::Settings(const std::string& value)
{
    object_.put(L"Settings", OleVariant::ofText(value));
}

Int32 LateBoundSerialControl::Handshaking() const
{
    return object_.get(L"Handshaking").asInt32();
}

void LateBoundSerialControl::Handshaking(Int32 value)
{
    object_.put(L"Handshaking", OleVariant::of(value));
}

Boolean LateBoundSerialControl::PortOpen() const
{
    return object_.get(L"PortOpen").asBoolean();
}

void LateBoundSerialControl::PortOpen(Boolean value)
{
    object_.put(L"PortOpen", OleVariant::of(value));
}

Int32 LateBoundSerialControl::InputLen() const
{
    return object_.get(L"InputLen").asInt32();
}

void LateBoundSerialControl::InputLen(Int32 value)
{
    object_.put(L"InputLen", OleVariant::of(value));
}

Int32 LateBoundSerialControl::InBufferCount()
{
    return object_.get(L"InBufferCount").asInt32();
}

std::string LateBoundSerialControl::Input()
{
    const OleVariant received = object_.get(L"Input");
    const VARIANT& value = received.get();
    return value.vt == (VT_ARRAY | VT_UI1) ? bytesOf(value.parray) : received.asLineText();
}

void LateBoundSerialControl::Output(std::string_view bytes)
{
    object_.put(L"Output", OleVariant::ofLineText(bytes));
}

Int32 LateBoundScanTimer::Interval() const
{
    return object_.get(L"Interval").asInt32();
}

void LateBoundScanTimer::Interval(Int32 milliseconds)
{
    object_.put(L"Interval", OleVariant::of(milliseconds));
}

Boolean LateBoundScanTimer::Enabled() const
{
    return object_.get(L"Enabled").asBoolean();
}

void LateBoundScanTimer::Enabled(Boolean value)
{
    object_.put(L"Enabled", OleVariant::of(value));
}

SerialControl& LateBoundCarrier::mscComm()
{
    return mscComm_.emplace(LateBound(LateBound(object_).get(L"mscComm").asObject()));
}

ScanTimer& LateBoundCarrier::tmrScan()
{
    return tmrScan_.emplace(LateBound(LateBound(object_).get(L"tmrScan").asObject()));
}

} // namespace kel::com
