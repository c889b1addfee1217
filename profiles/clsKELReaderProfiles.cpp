// SPDX-License-Identifier: MIT
#include "profiles/clsKELReaderProfiles.h"

#include "failure/ObjectLife.h"
#include "failure/guarded.h"
#include "profiles/Catalogue.h"
#include "profiles/KeyedCollection.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kSourceItem = "KELReader81 - clsKELReaderProfiles.Item";
constexpr const char* kSourceRemove = "KELReader81 - clsKELReaderProfiles.Remove";

using Profiles = KeyedCollection<clsKELReaderProfile>;

template <class Index>
Boolean holds(const Profiles& profiles, Index index)
{
    Boolean bResult = False;
    ignoringFailures([&] { bResult = !profiles.Item(index).isNothing(); });
    return bResult;
}

} // namespace

struct clsKELReaderProfiles::Fields {
    [[nodiscard]] std::string dumpMembers() const
    {
        return dumpOfValue("kelProfiles", collectionVariant(kelProfiles)) +
               dumpOfValue("eProfileType", toVariant(static_cast<Int32>(eProfileType)));
    }

    template <class KeyOrPosition>
    [[nodiscard]] Reference<clsKELReaderProfile> itemOrNothing(KeyOrPosition Index) const
    {
        Reference<clsKELReaderProfile> cProfile;
        guarded(kSourceItem, KEL_PARAMETERS(Index) + moduleOf(*this), [&] {
            if (holds(kelProfiles, Index))
                cProfile = kelProfiles.Item(Index);
        });
        return cProfile;
    }

    ObjectLife life{"clsKELReaderProfiles,1"};
    Profiles kelProfiles;
    kelProfileType eProfileType = kelProfileTypeAll;
};

clsKELReaderProfiles::clsKELReaderProfiles()
{
    FillProfiles();
}

clsKELReaderProfiles::~clsKELReaderProfiles()
{
    fields_->life.ends();
}

Int32 clsKELReaderProfiles::Count() const
{
    Int32 lResult = 0;
    guarded("KELReader81 - clsKELReaderProfiles.Count", moduleOf(*fields_),
            [&] { lResult = fields_->kelProfiles.Count(); });
    return lResult;
}

Reference<clsKELReaderProfile> clsKELReaderProfiles::Item(std::string_view Key) const
{
    return fields_->itemOrNothing(Key);
}

Reference<clsKELReaderProfile> clsKELReaderProfiles::Item(Int32 Position) const
{
    return fields_->itemOrNothing(Position);
}

Boolean clsKELReaderProfiles::Exists(std::string_view Key) const
{
    return holds(fields_->kelProfiles, Key);
}

Boolean clsKELReaderProfiles::Exists(Int32 Position) const
{
    return holds(fields_->kelProfiles, Position);
}

kelProfileType clsKELReaderProfiles::ProfileType() const
{
    return fields_->eProfileType;
}

void clsKELReaderProfiles::ProfileType(kelProfileType value)
{
    bool bRefill = false;
    const auto variables = KEL_PARAMETERS(value) + KEL_LOCALS(bRefill) + moduleOf(*fields_);
    guarded("KELReader81 - clsKELReaderProfiles.ProfileType", variables, [&] {
        bRefill = value != fields_->eProfileType || Count() == 0;
        fields_->eProfileType = value;
        if (bRefill)
            FillProfiles();
    });
}

void clsKELReaderProfiles::Remove(std::string_view Index)
{
    guarded(kSourceRemove, KEL_PARAMETERS(Index) + moduleOf(*fields_), [&] { fields_->kelProfiles.Remove(Index); });
}

void clsKELReaderProfiles::Remove(Int32 Index)
{
    guarded(kSourceRemove, KEL_PARAMETERS(Index) + moduleOf(*fields_), [&] { fields_->kelProfiles.Remove(Index); });
}

void clsKELReaderProfiles::RemoveAll()
{
    Int32 lPosition = 0;
    guarded("KELReader81 - clsKELReaderProfiles.RemoveAll", KEL_LOCALS(lPosition) + moduleOf(*fields_), [&] {
        for (lPosition = Count(); lPosition >= 1; --lPosition)
            Remove(lPosition);
    });
}

void clsKELReaderProfiles::FillProfiles()
{
    guarded("KELReader81 - clsKELReaderProfiles.FillProfiles", moduleOf(*fields_), [&] {
        RemoveAll();
        Add(noReader());
        for (const CatalogueGroup& group : catalogue()) {
            if ((fields_->eProfileType & group.ProfileType) == 0)
                continue;
            for (const CatalogueModel& model : group.Models)
                Add(model);
        }
    });
}

void clsKELReaderProfiles::Add(const CatalogueModel& model)
{
    fields_->kelProfiles.Add(makeReference<clsKELReaderProfile>(profileValues(model)), CStr(model.ReaderType));
}

} // namespace kel
