#include "reader/clsKELReaderBarcodes.h"

#include "failure/guarded.h"

namespace kel {

Int32 clsKELReaderBarcodes::Count() const
{
    return kelBarcodes_.Count();
}

void clsKELReaderBarcodes::Add(Reference<clsKELReaderBarcode> Item, std::optional<Int32> Before,
                               std::optional<Int32> After)
{
    guarded("KELReader81 - clsKELReaderBarcodes.Add", [&] { kelBarcodes_.Add(Item, Before, After); });
}

void clsKELReaderBarcodes::Remove(Int32 Index)
{
    guarded("KELReader81 - clsKELReaderBarcodes.Remove", [&] { kelBarcodes_.Remove(Index); });
}

void clsKELReaderBarcodes::RemoveAll()
{
    guarded("KELReader81 - clsKELReaderBarcodes.RemoveAll", [&] {
        for (Int32 lPosition = Count(); lPosition >= 1; --lPosition)
            kelBarcodes_.Remove(lPosition);
    });
}

Reference<clsKELReaderBarcode> clsKELReaderBarcodes::Item(Int32 Index) const
{
    Reference<clsKELReaderBarcode> oItem;
    guarded("KELReader81 - clsKELReaderBarcodes.Item", [&] {
        if (Exists(Index))
            oItem = kelBarcodes_.Item(Index);
    });
    return oItem;
}

Boolean clsKELReaderBarcodes::Exists(Int32 Index) const
{
    Boolean bResult = False;
    ignoringFailures([&] { bResult = !kelBarcodes_.Item(Index).isNothing(); });
    return bResult;
}

} // namespace kel
