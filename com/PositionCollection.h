// SPDX-License-Identifier: MIT
#pragma once

#include "com/CollectionIndex.h"
#include "com/Enumerator.h"
#include "com/Wrapper.h"
#include "failure/guarded.h"

#include <vector>

namespace kel::com {

/// The objects of a collection by position, for a walk through them.
template <class ItemObject, class Collection>
[[nodiscard]] IUnknown* newEnumerator(const Collection& collection)
{
    std::vector<ComPtr<IDispatch>> items;
    const Int32 count = collection.Count();
    for (Int32 position = 1; position <= count; ++position)
        items.push_back(ComPtr<IDispatch>::owning(objectOf<ItemObject>(collection.Item(position))));
    return static_cast<IEnumVARIANT*>(new Enumerator(std::move(items)));
}

/// The calls of a collection whose objects have positions from 1 and no keys. An index that is no position fails
/// where the collection would fail: quietly in `Item` and `Exists`, with a report in `Add` and `Remove`.
template <class Interface, class Native, class ItemInterface, class ItemNative, class ItemObject>
class PositionCollection : public Wrapper<Interface, Native> {
public:
    KEL_COM_GET(Int32, Count)

    STDMETHODIMP get_Item(VARIANT Index, ItemInterface** value) override
    {
        return atBoundary(this->iid(), [&] {
            place(value) = nullptr;
            Reference<ItemNative> item;
            ignoringFailures([&] { item = this->native().Item(positionOf(Index)); });
            *value = objectOf<ItemObject>(item);
        });
    }

    STDMETHODIMP Exists(VARIANT Index, VARIANT_BOOL* result) override
    {
        return atBoundary(this->iid(), [&] {
            Boolean exists = False;
            ignoringFailures([&] { exists = this->native().Exists(positionOf(Index)); });
            place(result) = exists.bits();
        });
    }

    STDMETHODIMP Add(ItemInterface* item, VARIANT Before, VARIANT After) override
    {
        return atBoundary(this->iid(), [&] {
            const auto native = nativeOf<ItemNative>(item);
            guarded(addSource_,
                    [&] { this->native().Add(native, optionalPositionOf(Before), optionalPositionOf(After)); });
        });
    }

    STDMETHODIMP Remove(VARIANT Index) override
    {
        return atBoundary(this->iid(),
                          [&] { guarded(removeSource_, [&] { this->native().Remove(positionOf(Index)); }); });
    }

    STDMETHODIMP RemoveAll() override
    {
        return atBoundary(this->iid(), [&] { this->native().RemoveAll(); });
    }

    STDMETHODIMP get__NewEnum(IUnknown** value) override
    {
        return atBoundary(this->iid(), [&] { place(value) = newEnumerator<ItemObject>(this->native()); });
    }

protected:
    PositionCollection(std::shared_ptr<Native> native, REFCLSID classID, const char* addSource,
                       const char* removeSource)
        : Wrapper<Interface, Native>(std::move(native), classID), addSource_(addSource), removeSource_(removeSource)
    {
    }

private:
    const char* addSource_;
    const char* removeSource_;
};

} // namespace kel::com
