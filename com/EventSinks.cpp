// SPDX-License-Identifier: MIT
#include "com/EventSinks.h"

#include "com/Boundary.h"
#include "com/CountedObject.h"
#include "com/ListEnumerator.h"

#include <olectl.h>

#include <algorithm>

namespace kel::com {

namespace {

/// How a sink goes out in an enumeration.
struct GiveConnection {
    static CONNECTDATA give(const std::pair<DWORD, ComPtr<IUnknown>>& connection)
    {
        return {ComPtr<IUnknown>(connection.second).detach(), connection.first};
    }
};

} // namespace

STDMETHODIMP EventSinks::QueryInterface(REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IConnectionPoint);
    *object = known ? static_cast<IConnectionPoint*>(this) : nullptr;
    if (!known)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

STDMETHODIMP EventSinks::GetConnectionInterface(IID* iid)
{
    if (!iid)
        return E_POINTER;
    *iid = events_;
    return S_OK;
}

STDMETHODIMP EventSinks::GetConnectionPointContainer(IConnectionPointContainer** container)
{
    if (!container)
        return E_POINTER;
    *container = ComPtr<IConnectionPointContainer>(&container_).detach();
    return S_OK;
}

STDMETHODIMP EventSinks::Advise(IUnknown* sink, DWORD* cookie)
{
    if (!sink || !cookie)
        return E_POINTER;
    *cookie = 0;
    auto object = queryFor<IDispatch>(sink, events_);
    if (!object)
        object = queryFor<IDispatch>(sink, IID_IDispatch);
    if (!object)
        return CONNECT_E_CANNOTCONNECT;
    return atBoundary(IID_IConnectionPoint, [&] {
        sinks_.push_back(std::make_shared<Sink>(Sink{++lastCookie_, std::move(object)}));
        *cookie = lastCookie_;
    });
}

STDMETHODIMP EventSinks::Unadvise(DWORD cookie)
{
    const auto found =
        std::find_if(sinks_.begin(), sinks_.end(), [cookie](const auto& sink) { return sink->cookie == cookie; });
    if (found == sinks_.end())
        return CONNECT_E_NOCONNECTION;
    const std::shared_ptr<Sink> sink = *found;
    sinks_.erase(found);
    // Letting go of the sink may run the host's code, which finds it gone.
    sink->object = nullptr;
    return S_OK;
}

STDMETHODIMP EventSinks::EnumConnections(IEnumConnections** connections)
{
    return atBoundary(IID_IConnectionPoint, [&] {
        std::vector<std::pair<DWORD, ComPtr<IUnknown>>> present;
        for (const auto& sink : sinks_)
            present.emplace_back(sink->cookie, queryFor<IUnknown>(sink->object.get(), IID_IUnknown));
        using Connections = ListEnumerator<IEnumConnections, &IID_IEnumConnections, CONNECTDATA,
                                           std::pair<DWORD, ComPtr<IUnknown>>, GiveConnection>;
        place(connections) = new Connections(std::move(present));
    });
}

void EventSinks::raise(DISPID event, std::span<const VARIANT> arguments)
{
    const std::vector<std::shared_ptr<Sink>> present = sinks_;
    for (const auto& sink : present) {
        const ComPtr<IDispatch> object = sink->object;
        if (!object)
            continue;
        // The last argument comes first, again for each sink.
        std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
        DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        EXCEPINFO exception{};
        UINT wrongArgument = 0;
        const HRESULT told = object->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                                            &exception, &wrongArgument);
        if (FAILED(told))
            static_cast<void>(failureOfCall(told, exception, SourceLocation::current()));
    }
}

} // namespace kel::com
