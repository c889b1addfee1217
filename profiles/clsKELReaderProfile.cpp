#include "profiles/clsKELReaderProfile.h"

#include "dispatch/ReaderModels.h"

#include <utility>

namespace kel {

clsKELReaderProfile::clsKELReaderProfile() = default;
clsKELReaderProfile::clsKELReaderProfile(const ProfileValues& values) : values_(values) {}
clsKELReaderProfile::clsKELReaderProfile(const clsKELReaderProfile& other) = default;
clsKELReaderProfile& clsKELReaderProfile::operator=(const clsKELReaderProfile& other) = default;
clsKELReaderProfile::~clsKELReaderProfile() = default;

// clang-format off
#define KEL_PROPERTY(Name)                                                                                             \
    decltype(ProfileValues::Name) clsKELReaderProfile::Name() const                                                    \
    {                                                                                                                  \
        return values_->Name;                                                                                          \
    }                                                                                                                  \
    void clsKELReaderProfile::Name(decltype(ProfileValues::Name) value)                                                \
    {                                                                                                                  \
        values_->Name = std::move(value);                                                                              \
    }
#define KEL_NOT_STORED(Name)
KEL_PROFILE_PROPERTIES(KEL_PROPERTY, KEL_NOT_STORED)
#undef KEL_NOT_STORED
#undef KEL_PROPERTY
// clang-format on

std::string clsKELReaderProfile::ReaderName() const
{
    return ReturnReaderName(ReaderType());
}

} // namespace kel
