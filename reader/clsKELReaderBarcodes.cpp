#include "reader/clsKELReaderBarcodes.h"

#include "failure/guarded.h"
#include "reader/OrderedCollection.h"

namespace kel {

struct clsKELReaderBarcodes::Fields {
    OrderedCollection<clsKELReaderBarcode> kelBarcodes;
};

clsKELReaderBarcodes::clsKELReaderBarcodes() = default;
clsKELReaderBarcodes::clsKELReaderBarcodes(const clsKELReaderBarcodes& other) = default;
clsKELReaderBarcodes& clsKELReaderBarcodes::operator=(const clsKELReaderBarcodes& other) = default;
clsKELReaderBarcodes::~clsKELReaderBarcodes() = default;

Int32 clsKELReaderBarcodes::Count() const
{
    return fields_->kelBarcodes.Count();
}

void clsKELReaderBarcodes::Add(Reference<clsKELReaderBarcode> Item, std::optional<Int32> Before,
                               std::optional<Int32> After)
{
    guarded("KELReader81 - clsKELReaderBarcodes.Add", [&] { fields_->kelBarcodes.Add(Item, Before, After); });
}

void clsKELReaderBarcodes::Remove(Int32 Index)
{
    guarded("KELReader81 - clsKELReaderBarcodes.Remove", [&] { fields_->kelBarcodes.Remove(Index); });
}

void clsKELReaderBarcodes::RemoveAll()
{
    guarded("KELReader81 - clsKELReaderBarcodes.RemoveAll", [&] {
        for (Int32 lPosition = Count(); lPosition >= 1; --lPosition)
            fields_->kelBarcodes.Remove(lPosition);
    });
}

Reference<clsKELReaderBarcode> clsKELReaderBarcodes::Item(Int32 Index) const
{
    Reference<clsKELReaderBarcode> oItem;
    guarded("KELReader81 - clsKELReaderBarcodes.Item", [&] {
        if (Exists(Index))
            oItem = fields_->kelBarcodes.Item(Index);
    });
    return oItem;
}

Boolean clsKELReaderBarcodes::Exists(Int32 Index) const
{
    Boolean bResult = False;
    ignoringFailures([&] { bResult = !fields_->kelBarcodes.Item(Index).isNothing(); });
    return bResult;
}

} // namespace kel
