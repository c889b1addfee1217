#include "profiles/clsKELReaderProfiles.h"

#include "failure/guarded.h"
#include "profiles/Catalogue.h"
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

clsKELReaderProfiles::clsKELReaderProfiles()
{
    FillProfiles();
}

Int32 clsKELReaderProfiles::Count() const
{
    Int32 lResult = 0;
    guarded("KELReader81 - clsKELReaderProfiles.Count", [&] { lResult = kelProfiles_.Count(); });
    return lResult;
}

Reference<clsKELReaderProfile> clsKELReaderProfiles::Item(std::string_view Key) const
{
    return itemOrNothing(kelProfiles_, Key);
}

Reference<clsKELReaderProfile> clsKELReaderProfiles::Item(Int32 Position) const
{
    return itemOrNothing(kelProfiles_, Position);
}

Boolean clsKELReaderProfiles::Exists(std::string_view Key) const
{
    return holds(kelProfiles_, Key);
}

Boolean clsKELReaderProfiles::Exists(Int32 Position) const
{
    return holds(kelProfiles_, Position);
}

void clsKELReaderProfiles::ProfileType(kelProfileType value)
{
    guarded("KELReader81 - clsKELReaderProfiles.ProfileType", [&] {
        const bool bRefill = value != eProfileType_ || Count() == 0;
        eProfileType_ = value;
        if (bRefill)
            FillProfiles();
    });
}

void clsKELReaderProfiles::Remove(std::string_view Key)
{
    guarded(kSourceRemove, [&] { kelProfiles_.Remove(Key); });
}

void clsKELReaderProfiles::Remove(Int32 Position)
{
    guarded(kSourceRemove, [&] { kelProfiles_.Remove(Position); });
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
            if ((eProfileType_ & group.ProfileType) == 0)
                continue;
            for (const CatalogueModel& model : group.Models)
                Add(model);
        }
    });
}

void clsKELReaderProfiles::Add(const CatalogueModel& model)
{
    kelProfiles_.Add(makeReference<clsKELReaderProfile>(profileValues(model)), CStr(model.ReaderType));
}

} // namespace kel
