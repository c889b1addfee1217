// SPDX-License-Identifier: MIT
#include "reader/HostCarrier.h"

#include "platform/FaultCapture.h"

#include <utility>

namespace kel {

class HostCarrier::Control final : public SerialControl {
public:
    void serve(SerialControl& control) { control_ = &control; }

    Int16 CommPort() const override { return ask(&SerialControl::CommPort); }
    void CommPort(Int16 value) override { tell<Int16>(&SerialControl::CommPort, value); }
    std::string Settings() const override { return ask(&SerialControl::Settings); }
    void Settings(const std::string& value) override { tell<const std::string&>(&SerialControl::Settings, value); }
    Int32 Handshaking() const override { return ask(&SerialControl::Handshaking); }
    void Handshaking(Int32 value) override { tell<Int32>(&SerialControl::Handshaking, value); }
    Boolean PortOpen() const override { return ask(&SerialControl::PortOpen); }
    void PortOpen(Boolean value) override { tell<Boolean>(&SerialControl::PortOpen, value); }
    Int32 InputLen() const override { return ask(&SerialControl::InputLen); }
    void InputLen(Int32 value) override { tell<Int32>(&SerialControl::InputLen, value); }

    Int32 InBufferCount() override
    {
        const HostCode host;
        return control_->InBufferCount();
    }
    std::string Input() override
    {
        const HostCode host;
        return control_->Input();
    }
    void Output(std::string_view bytes) override
    {
        const HostCode host;
        control_->Output(bytes);
    }

private:
    template <class Value>
    Value ask(Value (SerialControl::*property)() const) const
    {
        const HostCode host;
        return (control_->*property)();
    }
    template <class Value>
    void tell(void (SerialControl::*property)(Value), Value value)
    {
        const HostCode host;
        (control_->*property)(value);
    }

    SerialControl* control_ = nullptr;
};

class HostCarrier::Timer final : public ScanTimer {
public:
    void serve(ScanTimer& timer) { timer_ = &timer; }

    Int32 Interval() const override
    {
        const HostCode host;
        return std::as_const(*timer_).Interval();
    }
    void Interval(Int32 milliseconds) override
    {
        const HostCode host;
        timer_->Interval(milliseconds);
    }
    Boolean Enabled() const override
    {
        const HostCode host;
        return std::as_const(*timer_).Enabled();
    }
    void Enabled(Boolean value) override
    {
        const HostCode host;
        timer_->Enabled(value);
    }

private:
    ScanTimer* timer_ = nullptr;
};

HostCarrier::HostCarrier(Reference<Carrier> carrier)
    : carrier_(std::move(carrier)), control_(std::make_unique<Control>()), timer_(std::make_unique<Timer>())
{
}

HostCarrier::~HostCarrier() = default;

SerialControl& HostCarrier::mscComm()
{
    const HostCode host;
    control_->serve(carrier_->mscComm());
    return *control_;
}

ScanTimer& HostCarrier::tmrScan()
{
    const HostCode host;
    timer_->serve(carrier_->tmrScan());
    return *timer_;
}

} // namespace kel
