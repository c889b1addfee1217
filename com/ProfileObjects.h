// SPDX-License-Identifier: MIT
#pragma once

#include "com/Wrapper.h"
#include "profiles/clsKELReaderProfiles.h"

namespace kel::com {

/// The record of a model for a host.
class ProfileObject final : public Wrapper<_clsKELReaderProfile, clsKELReaderProfile> {
public:
    explicit ProfileObject(std::shared_ptr<clsKELReaderProfile> native)
        : Wrapper(std::move(native), CLSID_clsKELReaderProfile)
    {
    }

#define KEL_PROFILE_PROPERTY(Name) KEL_COM_PROPERTY(decltype(ProfileValues::Name), Name)
#define KEL_PROFILE_READ_ONLY(Name) KEL_COM_GET(std::string, Name)
    KEL_PROFILE_PROPERTIES(KEL_PROFILE_PROPERTY, KEL_PROFILE_READ_ONLY)
#undef KEL_PROFILE_READ_ONLY
#undef KEL_PROFILE_PROPERTY
};

/// The records of the models for a host. An index is a key, if it is a text, or a position.
class ProfilesObject final : public Wrapper<_clsKELReaderProfiles, clsKELReaderProfiles> {
public:
    explicit ProfilesObject(std::shared_ptr<clsKELReaderProfiles> native);

    KEL_COM_GET(Int32, Count)
    STDMETHODIMP get_Item(VARIANT Index, _clsKELReaderProfile** value) override;
    STDMETHODIMP Exists(VARIANT Index, VARIANT_BOOL* result) override;
    KEL_COM_PROPERTY(kelProfileType, ProfileType)
    STDMETHODIMP Remove(VARIANT Index) override;
    STDMETHODIMP RemoveAll() override;
    STDMETHODIMP get__NewEnum(IUnknown** value) override;
};

} // namespace kel::com
