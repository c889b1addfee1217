#include "reader/clsKELReaderWindows.h"

#include "failure/guarded.h"
#include "reader/OrderedCollection.h"

namespace kel {

struct clsKELReaderWindows::Fields {
    OrderedCollection<clsKELReaderWindow> kelWindows;
};

clsKELReaderWindows::clsKELReaderWindows() = default;
clsKELReaderWindows::clsKELReaderWindows(const clsKELReaderWindows& other) = default;
clsKELReaderWindows& clsKELReaderWindows::operator=(const clsKELReaderWindows& other) = default;
clsKELReaderWindows::~clsKELReaderWindows() = default;

Int32 clsKELReaderWindows::Count() const
{
    return fields_->kelWindows.Count();
}

void clsKELReaderWindows::Add(Reference<clsKELReaderWindow> Item, std::optional<Int32> Before,
                              std::optional<Int32> After)
{
    guarded("KELReader81 - clsKELReaderWindows.Add", [&] { fields_->kelWindows.Add(Item, Before, After); });
}

void clsKELReaderWindows::Remove(Int32 Position)
{
    guarded("KELReader81 - clsKELReaderWindows.Remove", [&] { fields_->kelWindows.Remove(Position); });
}

void clsKELReaderWindows::RemoveAll()
{
    guarded("KELReader81 - clsKELReaderWindows.RemoveAll", [&] {
        for (Int32 lPosition = Count(); lPosition >= 1; --lPosition)
            fields_->kelWindows.Remove(lPosition);
    });
}

Reference<clsKELReaderWindow> clsKELReaderWindows::Item(Int32 Position) const
{
    Reference<clsKELReaderWindow> oItem;
    guarded("KELReader81 - clsKELReaderWindows.Item", [&] {
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
