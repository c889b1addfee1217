// SPDX-License-Identifier: MIT
#pragma once

#include "com/Wrapper.h"
#include "contract/clsKELReaderPrinter.h"

namespace kel::com {

/// The sheet printer for a host.
class PrinterObject final : public Wrapper<_clsKELReaderPrinter, clsKELReaderPrinter> {
public:
    explicit PrinterObject(std::shared_ptr<clsKELReaderPrinter> native)
        : Wrapper(std::move(native), CLSID_clsKELReaderPrinter)
    {
    }

    STDMETHODIMP SetType(::kelReaderType value) override
    {
        return atBoundary(iid(), [&] { native().SetType(Automation<kelReaderType>::take(value)); });
    }

    KEL_COM_PROPERTY(Boolean, Enabled)
    KEL_COM_GET(Boolean, Initialized)
    KEL_COM_PROPERTY(Boolean, Active)
    KEL_COM_PROPERTY(SheetText, Buffer1)
    KEL_COM_PROPERTY(SheetText, Buffer2)
    KEL_COM_PROPERTY(SheetText, Buffer3)
    KEL_COM_GET(Int16, FilledBufferCount)
    KEL_COM_GET(Int16, BufferCount)
    KEL_COM_PROPERTY(Int16, Distance)
    KEL_COM_GET(Int32, MinPosition)
    KEL_COM_GET(Int32, MaxPosition)
    KEL_COM_GET(Int32, MaxCharacters)
};

} // namespace kel::com
