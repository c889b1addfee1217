// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderWindows.h"

#include "contract/OrderedCollection.h"
#include "failure/ObjectLife.h"
#include "failure/guarded.h"

namespace kel {

struct clsKELReaderWindows::Fields {
    [[nodiscard]] std::string dumpMembers() const { return dumpOfValue("kelWindows", collectionVariant(kelWindows)); }

    ObjectLife life{"clsKELReaderWindows,1"};
    OrderedCollection<clsKELReaderWindow> kelWindows;
};

clsKELReaderWindows::clsKELReaderWindows() = default;
clsKELReaderWindows::clsKELReaderWindows(const clsKELReaderWindows& other) = default;
clsKELReaderWindows& clsKELReaderWindows::operator=(const clsKELReaderWindows& other) = default;
clsKELReaderWindows::~clsKELReaderWindows()
{
    fields_->life.ends();
}

Int32 clsKELReaderWindows::Count() const
{
    return fields_->kelWindows.Count();
}

void clsKELReaderWindows::Add(Reference<clsKELReaderWindow> Item, std::optional<Int32> Before,
                              std::optional<Int32> After)
{
    guarded("KELReader81 - clsKELReaderWindows.Add", KEL_PARAMETERS(Item, Before, After) + moduleOf(*fields_),
            [&] { fields_->kelWindows.Add(Item, Before, After); });
}

void clsKELReaderWindows::Remove(Int32 Position)
{
    guarded("KELReader81 - clsKELReaderWindows.Remove", KEL_PARAMETERS(Position) + moduleOf(*fields_),
            [&] { fields_->kelWindows.Remove(Position); });
}

void clsKELReaderWindows::RemoveAll()
{
    Int32 lPosition = 0;
    guarded("KELReader81 - clsKELReaderWindows.RemoveAll", KEL_LOCALS(lPosition) + moduleOf(*fields_), [&] {
        for (lPosition = Count(); lPosition >= 1; --lPosition)
            fields_->kelWindows.Remove(lPosition);
    });
}

Reference<clsKELReaderWindow> clsKELReaderWindows::Item(Int32 Position) const
{
    Reference<clsKELReaderWindow> oItem;
    guarded("KELReader81 - clsKELReaderWindows.Item", KEL_PARAMETERS(Position) + moduleOf(*fields_), [&] {
        if (Exists(Position))
            oItem = fields_->kelWindows.Item(Position);
    });
    return oItem;
}

Boolean clsKELReaderWindows::Exists(Int32 Position) const
{
    Boolean bResult = False;
    ignoringFailures([&] { bResult = !fields_->kelWindows.Item(Position).isNothing(); });
    return bResult;
}

} // namespace kel
