#include "com/ScriptingDictionary.h"

#include "com/LateBound.h"
#include "contract/Dictionary.h"

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

ComPtr<IDispatch> newScriptingDictionary()
{
    CLSID classID;
    ComPtr<IDispatch> object;
    if (FAILED(CLSIDFromProgID(L"Scripting.Dictionary", &classID)) ||
        FAILED(CoCreateInstance(classID, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.outVoid())))
        throw RuntimeFailure(kCannotCreateObject, "ActiveX component can't create object");
    return object;
}

void fillScriptingDictionary(const ComPtr<IDispatch>& object, const Dictionary& record)
{
    const LateBound dictionary(object);
    dictionary.call(L"RemoveAll", {});
    dictionary.put(L"CompareMode", OleVariant::of(record.CompareMode()));
    const auto keys = record.Keys();
    const auto items = record.Items();
    for (std::size_t index = 0; index < keys.size(); ++index) {
        const std::array entry{std::visit(AsVariant{}, keys[index]), std::visit(AsVariant{}, items[index])};
        dictionary.call(L"Add", entry);
    }
}

} // namespace kel::com
