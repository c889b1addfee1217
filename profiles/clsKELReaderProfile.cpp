#include "profiles/clsKELReaderProfile.h"

#include "dispatch/ReaderModels.h"
#include "failure/ObjectLife.h"

#include <utility>

namespace kel {

struct clsKELReaderProfile::Fields {
    ObjectLife life{"clsKELReaderProfile,1"};
    ProfileValues values;
};

clsKELReaderProfile::clsKELReaderProfile() = default;
clsKELReaderProfile::clsKELReaderProfile(const ProfileValues& values)
{
    fields_->values = values;
}
clsKELReaderProfile::clsKELReaderProfile(const clsKELReaderProfile& other) = default;
clsKELReaderProfile& clsKELReaderProfile::operator=(const clsKELReaderProfile& other) = default;
clsKELReaderProfile::~clsKELReaderProfile() = default;

// clang-format off
#define KEL_PROPERTY(Name)                                                                                             \
    decltype(ProfileValues::Name) clsKELReaderProfile::Name() const                                                    \
    {                                                                                                                  \
        return fields_->values.Name;                                                                                   \
    }                                                                                                                  \
    void clsKELReaderProfile::Name(decltype(ProfileValues::Name) value)                                                \
    {                                                                                                                  \
        fields_->values.Name = std::move(value);                                                                       \
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
