// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderBarcodes.h"

#include "contract/OrderedCollection.h"
#include "failure/ObjectLife.h"
#include "failure/guarded.h"

namespace kel {

struct clsKELReaderBarcodes::Fields {
    [[nodiscard]] std::string dumpMembers() const { return dumpOfValue("kelBarcodes", collectionVariant(kelBarcodes)); }

    ObjectLife life{"clsKELReaderBarcodes,1"};
    OrderedCollection<clsKELReaderBarcode> kelBarcodes;
};

clsKELReaderBarcodes::clsKELReaderBarcodes() = default;
clsKELReaderBarcodes::clsKELReaderBarcodes(const clsKELReaderBarcodes& other) = default;
clsKELReaderBarcodes& clsKELReaderBarcodes::operator=(const clsKELReaderBarcodes& other) = default;
clsKELReaderBarcodes::~clsKELReaderBarcodes()
{
    fields_->life.ends();
}

Int32 clsKELReaderBarcodes::Count() const
{
    return fields_->kelBarcodes.Count();
}

void clsKELReaderBarcodes::Add(Reference<clsKELReaderBarcode> Item, std::optional<Int32> Before,
                               std::optional<Int32> After)
{
    guarded("KELReader81 - clsKELReaderBarcodes.Add", KEL_PARAMETERS(Item, Before, After) + moduleOf(*fields_),
            [&] { fields_->kelBarcodes.Add(Item, Before, After); });
}

void clsKELReaderBarcodes::Remove(Int32 Index)
{
    guarded("KELReader81 - clsKELReaderBarcodes.Remove", KEL_PARAMETERS(Index) + moduleOf(*fields_),
            [&] { fields_->kelBarcodes.Remove(Index); });
}

void clsKELReaderBarcodes::RemoveAll()
{
    Int32 lPosition = 0;
    guarded("KELReader81 - clsKELReaderBarcodes.RemoveAll", KEL_LOCALS(lPosition) + moduleOf(*fields_), [&] {
        for (lPosition = Count(); lPosition >= 1; --lPosition)
            fields_->kelBarcodes.Remove(lPosition);
    });
}

Reference<clsKELReaderBarcode> clsKELReaderBarcodes::Item(Int32 Index) const
{
    Reference<clsKELReaderBarcode> oItem;
    guarded("KELReader81 - clsKELReaderBarcodes.Item", KEL_PARAMETERS(Index) + moduleOf(*fields_), [&] {
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
