#include "reader/clsKELReaderWindows.h"

#include "failure/guarded.h"

namespace kel {

Int32 clsKELReaderWindows::Count() const
{
    return kelWindows_.Count();
}

void clsKELReaderWindows::Add(Reference<clsKELReaderWindow> Item, std::optional<Int32> Before,
                              std::optional<Int32> After)
{
    guarded("KELReader81 - clsKELReaderWindows.Add", [&] { kelWindows_.Add(Item, Before, After); });
}

void clsKELReaderWindows::Remove(Int32 Position)
{
    guarded("KELReader81 - clsKELReaderWindows.Remove", [&] { kelWindows_.Remove(Position); });
}

void clsKELReaderWindows::RemoveAll()
{
    guarded("KELReader81 - clsKELReaderWindows.RemoveAll", [&] {
        for (Int32 lPosition = Count(); lPosition >= 1; --lPosition)
            kelWindows_.Remove(lPosition);
    });
}

Reference<clsKELReaderWindow> clsKELReaderWindows::Item(Int32 Position) const
{
    Reference<clsKELReaderWindow> oItem;
    guarded("KELReader81 - clsKELReaderWindows.Item", [&] {
        if (Exists(Position))
            oItem = kelWindows_.Item(Position);
    });
    return oItem;
}

Boolean clsKELReaderWindows::Exists(Int32 Position) const
{
    Boolean bResult = False;
    ignoringFailures([&] { bResult = !kelWindows_.Item(Position).isNothing(); });
    return bResult;
}

} // namespace kel
