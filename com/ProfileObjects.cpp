// SPDX-License-Identifier: MIT
#include "com/ProfileObjects.h"

#include "com/CollectionIndex.h"
#include "com/PositionCollection.h"
#include "failure/guarded.h"

namespace kel::com {

ProfilesObject::ProfilesObject(std::shared_ptr<clsKELReaderProfiles> native)
    : Wrapper(std::move(native), CLSID_clsKELReaderProfiles)
{
}

STDMETHODIMP ProfilesObject::get_Item(VARIANT Index, _clsKELReaderProfile** value)
{
    return atBoundary(iid(), [&] {
        place(value) = nullptr;
        Reference<clsKELReaderProfile> profile;
        ignoringFailures(
            [&] { profile = std::visit([&](const auto& index) { return native().Item(index); }, indexOf(Index)); });
        *value = objectOf<ProfileObject>(profile);
    });
}

STDMETHODIMP ProfilesObject::Exists(VARIANT Index, VARIANT_BOOL* result)
{
    return atBoundary(iid(), [&] {
        Boolean exists = False;
        ignoringFailures(
            [&] { exists = std::visit([&](const auto& index) { return native().Exists(index); }, indexOf(Index)); });
        place(result) = exists.bits();
    });
}

STDMETHODIMP ProfilesObject::Remove(VARIANT Index)
{
    return atBoundary(iid(), [&] {
        guarded("KELReader81 - clsKELReaderProfiles.Remove",
                [&] { std::visit([&](const auto& index) { native().Remove(index); }, indexOf(Index)); });
    });
}

STDMETHODIMP ProfilesObject::RemoveAll()
{
    return atBoundary(iid(), [&] { native().RemoveAll(); });
}

STDMETHODIMP ProfilesObject::get__NewEnum(IUnknown** value)
{
    return atBoundary(iid(), [&] { place(value) = newEnumerator<ProfileObject>(native()); });
}

} // namespace kel::com
