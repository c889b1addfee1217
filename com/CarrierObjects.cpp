// SPDX-License-Identifier: MIT
#include "com/CarrierObjects.h"

#include "com/LateBoundCarrier.h"
#include "com/NamedObject.h"
#include "com/OwnObject.h"
#include "com/SafeArrays.h"

#include <array>

namespace kel::com {

namespace {

/// The bytes that a host sends: the characters of a text, or a byte array.
std::string bytesToSend(const OleVariant& value)
{
    const VARIANT& given = value.get();
    return given.vt == (VT_ARRAY | VT_UI1) ? bytesOf(given.parray) : value.asLineText();
}

/// A part of a carrier for a host. It keeps the carrier alive.
class SerialObject final : public NamedObject {
public:
    explicit SerialObject(std::shared_ptr<Carrier> carrier)
        : NamedObject(&carrier->mscComm(), typeid(SerialControl), kProperties), carrier_(std::move(carrier))
    {
    }

private:
    static SerialControl& of(NamedObject& object) { return static_cast<SerialObject&>(object).carrier_->mscComm(); }

    static constexpr std::array kProperties{
        Property{L"CommPort", [](NamedObject& o) { return OleVariant::of(of(o).CommPort()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).CommPort(v.asInt16()); }},
        Property{L"Settings", [](NamedObject& o) { return OleVariant::ofText(of(o).Settings()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).Settings(v.asText()); }},
        Property{L"Handshaking", [](NamedObject& o) { return OleVariant::of(of(o).Handshaking()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).Handshaking(v.asInt32()); }},
        Property{L"PortOpen", [](NamedObject& o) { return OleVariant::of(of(o).PortOpen()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).PortOpen(v.asBoolean()); }},
        Property{L"InputLen", [](NamedObject& o) { return OleVariant::of(of(o).InputLen()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).InputLen(v.asInt32()); }},
        Property{L"InBufferCount", [](NamedObject& o) { return OleVariant::of(of(o).InBufferCount()); }, nullptr},
        Property{L"Input", [](NamedObject& o) { return OleVariant::ofLineText(of(o).Input()); }, nullptr},
        Property{L"Output", nullptr, [](NamedObject& o, const OleVariant& v) { of(o).Output(bytesToSend(v)); }},
    };

    std::shared_ptr<Carrier> carrier_;
};

class TimerObject final : public NamedObject {
public:
    explicit TimerObject(std::shared_ptr<Carrier> carrier)
        : NamedObject(&carrier->tmrScan(), typeid(ScanTimer), kProperties), carrier_(std::move(carrier))
    {
    }

private:
    static ScanTimer& of(NamedObject& object) { return static_cast<TimerObject&>(object).carrier_->tmrScan(); }

    static constexpr std::array kProperties{
        Property{L"Interval", [](NamedObject& o) { return OleVariant::of(of(o).Interval()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).Interval(v.asInt32()); }},
        Property{L"Enabled", [](NamedObject& o) { return OleVariant::of(of(o).Enabled()); },
                 [](NamedObject& o, const OleVariant& v) { of(o).Enabled(v.asBoolean()); }},
    };

    std::shared_ptr<Carrier> carrier_;
};

/// The living object of a part, or a new one.
template <class Object>
OleVariant partOf(const void* part, const std::type_info& kind, const std::shared_ptr<Carrier>& carrier)
{
    CountedObject* const living = CountedObject::find(part, kind);
    const auto object = ComPtr<IDispatch>::owning(living ? static_cast<Object*>(living) : new Object(carrier));
    return OleVariant::of(object.get());
}

class CarrierObject final : public NamedObject, public IOwnObject {
public:
    explicit CarrierObject(std::shared_ptr<Carrier> carrier)
        : NamedObject(carrier.get(), typeid(Carrier), kProperties), carrier_(std::move(carrier))
    {
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override { return NamedObject::QueryInterface(iid, object); }
    STDMETHODIMP_(ULONG) AddRef() override { return acquire(); }
    STDMETHODIMP_(ULONG) Release() override { return release(); }

    [[nodiscard]] std::shared_ptr<void> native(const std::type_info& kind) const override
    {
        return kind == typeid(Carrier) ? std::shared_ptr<void>(carrier_) : nullptr;
    }

private:
    [[nodiscard]] void* ownInterface(REFIID iid) override
    {
        return IsEqualIID(iid, IID_IOwnObject) ? static_cast<IOwnObject*>(this) : nullptr;
    }

    static const std::shared_ptr<Carrier>& of(NamedObject& object)
    {
        return static_cast<CarrierObject&>(object).carrier_;
    }

    static constexpr std::array kProperties{
        Property{L"mscComm",
                 [](NamedObject& o) { return partOf<SerialObject>(&of(o)->mscComm(), typeid(SerialControl), of(o)); },
                 nullptr},
        Property{L"tmrScan",
                 [](NamedObject& o) { return partOf<TimerObject>(&of(o)->tmrScan(), typeid(ScanTimer), of(o)); },
                 nullptr},
    };

    std::shared_ptr<Carrier> carrier_;
};

} // namespace

IDispatch* carrierObjectOf(const Reference<Carrier>& carrier)
{
    if (carrier.isNothing())
        return nullptr;
    if (const auto* const host = dynamic_cast<const LateBoundCarrier*>(carrier.shared().get()))
        return ComPtr<IDispatch>(host->object()).detach();
    if (CountedObject* const living = CountedObject::find(carrier.shared().get(), typeid(Carrier)))
        return static_cast<CarrierObject*>(living);
    return static_cast<NamedObject*>(new CarrierObject(carrier.shared()));
}

Reference<Carrier> carrierOf(IDispatch* object)
{
    if (!object)
        return nullptr;
    if (const auto own = queryFor<IOwnObject>(object, IID_IOwnObject)) {
        if (auto native = own->native(typeid(Carrier)))
            return std::static_pointer_cast<Carrier>(native);
    }
    return makeReference<LateBoundCarrier>(ComPtr<IDispatch>(object));
}

} // namespace kel::com
