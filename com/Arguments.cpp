#include "com/Arguments.h"

#include "com/Boundary.h"
#include "com/LateBound.h"
#include "com/SafeArrays.h"

#include <cstddef>
#include <string>

namespace kel::com {

namespace {

constexpr VARTYPE kNumberArray = VT_ARRAY | VT_I2;

/// Where the bytes of a value stand in a variant of its type.
void* contents(VARIANT& value)
{
    return &value.bVal;
}

/// A variant that refers to the contents of another.
VARIANT referenceTo(VARIANT& value, VARTYPE type)
{
    VARIANT reference;
    VariantInit(&reference);
    reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
    reference.byref = contents(value);
    return reference;
}

/// What a script's own array of numbers holds, element by element under its number.
OleVariant numbersOfObject(const ComPtr<IDispatch>& object)
{
    const LateBound array(object);
    const Int32 length = array.get(L"length").asInt32();
    PageArray numbers = PageArray::of(0, {});
    for (Int32 index = 0; index < length; ++index)
        numbers.elements().push_back(array.get(std::to_wstring(index).c_str()).asInt16());
    OleVariant result;
    result.get().parray = safeArrayOf(numbers);
    result.get().vt = kNumberArray;
    return result;
}

} // namespace

Arguments::Arguments(const Member& member, const DISPPARAMS& given)
    : variants_(given.cArgs), arguments_(given.cArgs), prepared_(given)
{
    const std::size_t count = given.cArgs;
    for (std::size_t index = 0; index < count; ++index) {
        arguments_[index].given = &given.rgvarg[index];
        variants_[index] = given.rgvarg[index];

        // A named argument says which parameter it is for; but the value of a property is the last one.
        std::size_t position = count - 1 - index;
        if (index < given.cNamedArgs) {
            const DISPID name = given.rgdispidNamedArgs[index];
            position = name == DISPID_PROPERTYPUT ? member.parameters.size() - 1 : static_cast<std::size_t>(name);
        }
        if (position < member.parameters.size())
            prepare(variants_[index], arguments_[index], member.parameters[position]);
    }
    prepared_.rgvarg = variants_.data();
}

void Arguments::prepare(VARIANT& prepared, Argument& argument, const Parameter& parameter)
{
    VARIANT& given = const_cast<VARIANT&>(behindReference(*argument.given));
    if (isMissing(given) && given.vt == VT_ERROR) {
        prepared = given;
        return;
    }
    if (parameter.type == VT_DISPATCH && (given.vt == VT_EMPTY || given.vt == VT_NULL)) {
        argument.value = OleVariant::of(static_cast<IDispatch*>(nullptr));
        prepared = parameter.byReference ? referenceTo(argument.value.get(), VT_DISPATCH) : argument.value.get();
        return;
    }
    if (!parameter.byReference) {
        prepared = given; // Automation converts values by itself
        return;
    }
    if (given.vt == (VT_BYREF | parameter.type)) {
        prepared = given;
        return;
    }
    if (parameter.type == kNumberArray)
        argument.value = asNumberArray(given);
    else
        changeType(argument.value.get(), given, parameter.type);
    argument.handBack = (argument.given->vt & VT_BYREF) != 0 && parameter.type != kNumberArray;
    prepared = referenceTo(argument.value.get(), parameter.type);
}

void Arguments::handBack()
{
    for (Argument& argument : arguments_) {
        if (!argument.handBack)
            continue;
        VARIANT& given = const_cast<VARIANT&>(behindReference(*argument.given));
        if ((given.vt & VT_BYREF) == 0) {
            demand(VariantCopy(&given, &argument.value.get()));
            continue;
        }
        // A place of another type: a number where a shorter or longer one is declared. What is there has to stay
        // in its form, so only numbers go back.
        const auto type = static_cast<VARTYPE>(given.vt & ~VT_BYREF);
        switch (type) {
        case VT_I2: *given.piVal = argument.value.asInt16(); break;
        case VT_I4: *given.plVal = argument.value.asInt32(); break;
        case VT_INT: *given.pintVal = argument.value.asInt32(); break;
        case VT_R8: *given.pdblVal = argument.value.as(VT_R8).get().dblVal; break;
        default: break;
        }
    }
}

OleVariant asNumberArray(const VARIANT& given)
{
    const VARIANT& value = behindReference(given);
    if (value.vt == VT_DISPATCH && value.pdispVal)
        return numbersOfObject(ComPtr<IDispatch>(value.pdispVal));
    if ((value.vt & VT_ARRAY) == 0)
        throw RuntimeFailure(FailureCode::TypeMismatch);
    const SAFEARRAY* const array = (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
    OleVariant result;
    result.get().parray = safeArrayOf(pageArrayOf(array));
    result.get().vt = kNumberArray;
    return result;
}

} // namespace kel::com
