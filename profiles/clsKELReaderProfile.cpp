// SPDX-License-Identifier: MIT
#include "profiles/clsKELReaderProfile.h"

#include "failure/ObjectLife.h"
#include "failure/guarded.h"
#include "profiles/ReaderModels.h"

#include <type_traits>
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
#undef KEL_PROPERTY
// clang-format on

std::string clsKELReaderProfile::dumpMembers() const
{
    VariableLines lines;
    const auto add = [&lines](std::string_view name, const auto& value) {
        if constexpr (std::is_enum_v<std::remove_cvref_t<decltype(value)>>)
            lines.add(name, static_cast<Int32>(value));
        else
            lines.add(name, value);
    };
#define KEL_DUMP(Name) add(#Name, fields_->values.Name);
    KEL_PROFILE_PROPERTIES(KEL_DUMP, KEL_NOT_STORED)
#undef KEL_DUMP
#undef KEL_NOT_STORED
    return lines.text();
}

std::string clsKELReaderProfile::ReaderName() const
{
    return captured("clsKELReaderProfile.ReaderName", moduleOf(*this), [&] { return ReturnReaderName(ReaderType()); });
}

} // namespace kel
