#include "profiles/clsKELReaderProfiles.h"

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

template <class Index>
Reference<clsKELReaderProfile> itemOrNothing(const Profiles& profiles, Index index)
{
    Reference<clsKELReaderProfile> cProfile;
    guarded(kSourceItem, [&] {
        if (holds(profiles, index))
            cProfile = profiles.Item(index);
    });
    return cProfile;
}

} // namespace

struct clsKELReaderProfiles::Fields {
    Profiles kelProfiles;
    kelProfileType eProfileType = kelProfileTypeAll;
};

clsKELReaderProfiles::clsKELReaderProfiles()
{
    FillProfiles();
}

clsKELReaderProfiles::~clsKELReaderProfiles() = default;

Int32 clsKELReaderProfiles::Count() const
{
    Int32 lResult = 0;
    guarded("KELReader81 - clsKELReaderProfiles.Count", [&] { lResult = fields_->kelProfiles.Count(); });
    return lResult;
}

Reference<clsKELReaderProfile> clsKELReaderProfiles::Item(std::string_view Key) const
{
    return itemOrNothing(fields_->kelProfiles, Key);
}

Reference<clsKELReaderProfile> clsKELReaderProfiles::Item(Int32 Position) const
{
    return itemOrNothing(fields_->kelProfiles, Position);
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
    guarded("KELReader81 - clsKELReaderProfiles.ProfileType", [&] {
        const bool bRefill = value != fields_->eProfileType || Count() == 0;
        fields_->eProfileType = value;
        if (bRefill)
            FillProfiles();
    });
}

void clsKELReaderProfiles::Remove(std::string_view Key)
{
    guarded(kSourceRemove, [&] { fields_->kelProfiles.Remove(Key); });
}

void clsKELReaderProfiles::Remove(Int32 Position)
{
    guarded(kSourceRemove, [&] { fields_->kelProfiles.Remove(Position); });
}

void clsKELReaderProfiles::RemoveAll()
{
    guarded("KELReader81 - clsKELReaderProfiles.RemoveAll", [&] {
        for (Int32 lPosition = Count(); lPosition >= 1; --lPosition)
            Remove(lPosition);
    });
}

void clsKELReaderProfiles::FillProfiles()
{
    guarded("KELReader81 - clsKELReaderProfiles.FillProfiles", [&] {
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
