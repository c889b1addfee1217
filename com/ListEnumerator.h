// SPDX-License-Identifier: MIT
#pragma once

#include "com/Boundary.h"
#include "com/CountedObject.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace kel::com {

/// One of the system's enumerators (IEnumXXX) over a list. `Give::give` turns an item into what a host gets, with the
/// references that the host is to release.
template <class Interface, const IID* iid, class Given, class Item, class Give>
class ListEnumerator final : public Interface, public CountedObject {
public:
    explicit ListEnumerator(std::vector<Item> items, std::size_t next = 0) : items_(std::move(items)), next_(next) {}

    STDMETHODIMP QueryInterface(REFIID asked, void** object) override
    {
        if (!object)
            return E_POINTER;
        const bool known = IsEqualIID(asked, IID_IUnknown) || IsEqualIID(asked, *iid);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known)
            return E_NOINTERFACE;
        acquire();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return acquire(); }
    STDMETHODIMP_(ULONG) Release() override { return release(); }

    STDMETHODIMP Next(ULONG count, Given* values, ULONG* fetched) override
    {
        if (!values || (!fetched && count > 1))
            return E_POINTER;
        ULONG given = 0;
        for (; given < count && next_ < items_.size(); ++given, ++next_)
            values[given] = Give::give(items_[next_]);
        if (fetched)
            *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }

    STDMETHODIMP Skip(ULONG count) override
    {
        const std::size_t left = items_.size() - next_;
        next_ += std::min<std::size_t>(count, left);
        return count <= left ? S_OK : S_FALSE;
    }

    STDMETHODIMP Reset() override
    {
        next_ = 0;
        return S_OK;
    }

    STDMETHODIMP Clone(Interface** copy) override
    {
        return atBoundary(*iid, [&] { place(copy) = new ListEnumerator(items_, next_); });
    }

private:
    std::vector<Item> items_;
    std::size_t next_;
};

} // namespace kel::com
