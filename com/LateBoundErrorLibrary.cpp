// SPDX-License-Identifier: MIT
#include "com/LateBoundErrorLibrary.h"

#include "com/LateBound.h"
#include "com/Text.h"

#include <array>

namespace kel::com {

namespace {

class LateBoundErrorLibrary final : public ErrorLibraryObject {
public:
    explicit LateBoundErrorLibrary(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    void ErrorHandler(const CrashReport& report) override
    {
        const std::array arguments{OleVariant::of(report.number),          OleVariant::ofText(report.component),
                                   OleVariant::ofText(report.module),      OleVariant::ofText(report.procedure),
                                   OleVariant::ofText(report.description), OleVariant::of(report.line),
                                   OleVariant::ofText(report.variables),   OleVariant::ofText(report.version)};
        object_.call(L"ErrorHandler", arguments);
    }

    /// Whatever it gives: the value is not used, and may be of any type.
    [[nodiscard]] Int32 Action() override
    {
        static_cast<void>(object_.get(L"Action"));
        return 0;
    }

private:
    LateBound object_;
};

} // namespace

std::shared_ptr<ErrorLibraryObject> createRegisteredErrorLibrary(const std::string& className)
{
    const OwnedText name(newText(className));
    CLSID classID;
    ComPtr<IDispatch> object;
    if (FAILED(CLSIDFromProgID(name.get(), &classID)) ||
        FAILED(CoCreateInstance(classID, nullptr, CLSCTX_SERVER, IID_IDispatch, object.outVoid())))
        return nullptr;
    return std::make_shared<LateBoundErrorLibrary>(std::move(object));
}

} // namespace kel::com
