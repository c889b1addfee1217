// SPDX-License-Identifier: MIT
#pragma once

#include "tests/windows/clients/Host.h"

/// A host's carrier around the reader's own one: every access goes through the host's objects.
class OwnCarrier {
public:
    explicit OwnCarrier(IDispatch* inner) : inner_(inner)
    {
        forward(control_, L"mscComm",
                {L"CommPort", L"Settings", L"Handshaking", L"PortOpen", L"InputLen", L"InBufferCount", L"Input",
                 L"Output"});
        forward(timer_, L"tmrScan", {L"Interval", L"Enabled"});
        carrier_.member(L"mscComm", [this](const Call& c) { return c.give(Value(&control_)), S_OK; });
        carrier_.member(L"tmrScan", [this](const Call& c) { return c.give(Value(&timer_)), S_OK; });
    }

    HostObject& object() { return carrier_; }
    std::map<std::wstring, int>& accesses() { return accesses_; }
    std::wstring settings;
    std::wstring sent; // what went through Output

private:
    void forward(HostObject& to, const wchar_t* part, const std::vector<const wchar_t*>& names)
    {
        for (const wchar_t* name : names) {
            to.member(name, [this, part, name](const Call& c) {
                ++accesses_[name];
                const Value inner = get(inner_, part);
                if (c.puts()) {
                    Value value;
                    VariantCopy(value.out(), &c.argument(0));
                    if (std::wstring_view(name) == L"Settings")
                        settings = value.text();
                    if (std::wstring_view(name) == L"Output")
                        sent += value.text();
                    const Outcome done = call(inner.object(), name, DISPATCH_PROPERTYPUT, {value});
                    return done.code == DISP_E_EXCEPTION ? c.fail(done.failure, done.description.c_str()) : done.code;
                }
                c.give(get(inner.object(), name));
                return S_OK;
            });
        }
    }

    IDispatch* inner_;
    HostObject control_;
    HostObject timer_;
    HostObject carrier_;
    std::map<std::wstring, int> accesses_;
};
