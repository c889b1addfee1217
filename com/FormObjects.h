// SPDX-License-Identifier: MIT
#pragma once

#include "com/PositionCollection.h"
#include "contract/clsKELReaderBarcodes.h"
#include "contract/clsKELReaderWindows.h"

namespace kel::com {

/// A read window for a host.
class WindowObject final : public Wrapper<_clsKELReaderWindow, clsKELReaderWindow> {
public:
    explicit WindowObject(std::shared_ptr<clsKELReaderWindow> native)
        : Wrapper(std::move(native), CLSID_clsKELReaderWindow)
    {
    }

    KEL_COM_PROPERTY(Int16, StartRow)
    KEL_COM_PROPERTY(Int16, NumRows)
    KEL_COM_PROPERTY(Int16, RowGap)
    KEL_COM_PROPERTY(Int16, StartCol)
    KEL_COM_PROPERTY(Int16, NumCols)
    KEL_COM_PROPERTY(Int16, ColGap)
    KEL_COM_PROPERTY(Int16, Page)
    KEL_COM_PROPERTY(Int16, Orientation)
    KEL_COM_PROPERTY(Int16, NumItems)
    KEL_COM_PROPERTY(Int16, NumChoices)
};

/// The read windows of a form for a host.
class WindowsObject final : public PositionCollection<_clsKELReaderWindows, clsKELReaderWindows, _clsKELReaderWindow,
                                                      clsKELReaderWindow, WindowObject> {
public:
    explicit WindowsObject(std::shared_ptr<clsKELReaderWindows> native)
        : PositionCollection(std::move(native), CLSID_clsKELReaderWindows, "KELReader81 - clsKELReaderWindows.Add",
                             "KELReader81 - clsKELReaderWindows.Remove")
    {
    }
};

/// A barcode zone for a host.
class BarcodeObject final : public Wrapper<_clsKELReaderBarcode, clsKELReaderBarcode> {
public:
    explicit BarcodeObject(std::shared_ptr<clsKELReaderBarcode> native)
        : Wrapper(std::move(native), CLSID_clsKELReaderBarcode)
    {
    }

    KEL_COM_PROPERTY(Int16, Page)
    KEL_COM_PROPERTY(Int16, Distance)
    KEL_COM_PROPERTY(Int16, Length)
    KEL_COM_PROPERTY(kelBarcodeType, Symbology)
    KEL_COM_PROPERTY(kelBarcodeOrientation, Orientation)
};

/// The barcode zones of a form for a host.
class BarcodesObject final : public PositionCollection<_clsKELReaderBarcodes, clsKELReaderBarcodes,
                                                       _clsKELReaderBarcode, clsKELReaderBarcode, BarcodeObject> {
public:
    explicit BarcodesObject(std::shared_ptr<clsKELReaderBarcodes> native)
        : PositionCollection(std::move(native), CLSID_clsKELReaderBarcodes, "KELReader81 - clsKELReaderBarcodes.Add",
                             "KELReader81 - clsKELReaderBarcodes.Remove")
    {
    }
};

} // namespace kel::com
