// SPDX-License-Identifier: MIT
#include "com/ScriptingDictionary.h"

#include "com/LateBound.h"
#include "types/Reference.h"

#include <array>
#include <limits>

namespace kel::com {

namespace {

constexpr std::int32_t kCannotCreateObject = 429;

/// The numbers of answers are 16 bits wide, so that a host finds them by a number of its own kind.
OleVariant number(Int32 value)
{
    if (value >= std::numeric_limits<Int16>::min() && value <= std::numeric_limits<Int16>::max())
        return OleVariant::of(static_cast<Int16>(value));
    return OleVariant::of(value);
}

struct AsVariant {
    OleVariant operator()(std::monostate) const { return {}; }
    OleVariant operator()(Int32 value) const { return number(value); }
    OleVariant operator()(const std::string& text) const { return OleVariant::ofSheetText(text); }
};

} // namespace

std::shared_ptr<DictionaryObject> newScriptingDictionary()
{
    CLSID classID;
    ComPtr<IDispatch> object;
    if (FAILED(CLSIDFromProgID(L"Scripting.Dictionary", &classID)) ||
        FAILED(CoCreateInstance(classID, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.outVoid())))
        throw RuntimeFailure(kCannotCreateObject, "ActiveX component can't create object");
    return std::make_shared<ScriptingDictionary>(std::move(object));
}

ComPtr<IDispatch> filledScriptingDictionary(const Dictionary& record)
{
    const Reference<DictionaryObject> own = objectOf(record);
    ComPtr<IDispatch> object = static_cast<const ScriptingDictionary&>(*own).object();
    const LateBound dictionary(object);
    dictionary.call(L"RemoveAll", {});
    dictionary.put(L"CompareMode", OleVariant::of(record.CompareMode()));
    const auto keys = record.Keys();
    const auto items = record.Items();
    for (std::size_t index = 0; index < keys.size(); ++index) {
        const std::array entry{std::visit(AsVariant{}, keys[index]), std::visit(AsVariant{}, items[index])};
        dictionary.call(L"Add", entry);
    }
    return object;
}

} // namespace kel::com
