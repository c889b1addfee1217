// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"

#include <ocidl.h>

#include <memory>
#include <span>
#include <vector>

namespace kel::com {

/// The connection point of an object's events: the sinks of its hosts. A sink may come or go while an event is under
/// way; one that has gone hears nothing more, one that has come hears the next event. What a sink answers is not
/// looked at: a sink that fails stops neither the others nor the reader.
///
/// It is a part of the object: it counts on the object's references.
class EventSinks final : public IConnectionPoint {
public:
    EventSinks(IConnectionPointContainer& container, const IID& events) : container_(container), events_(events) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return container_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return container_.Release(); }

    STDMETHODIMP GetConnectionInterface(IID* iid) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

    [[nodiscard]] bool isEmpty() const noexcept { return sinks_.empty(); }

    /// Raises an event; the arguments in the order of its declaration, all by reference.
    void raise(DISPID event, std::span<const VARIANT> arguments);

private:
    struct Sink {
        DWORD cookie = 0;
        ComPtr<IDispatch> object; // nothing once it has gone
    };

    IConnectionPointContainer& container_;
    const IID& events_;
    std::vector<std::shared_ptr<Sink>> sinks_;
    DWORD lastCookie_ = 0;
};

} // namespace kel::com
