// SPDX-License-Identifier: MIT
#include "com/Arguments.h"

#include "com/Boundary.h"
#include "com/LateBound.h"

#include <algorithm>
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

/// What a script's own array holds, element by element under its number.
OleVariant elementsOfObject(const ComPtr<IDispatch>& object)
{
    const LateBound array(object);
    const Int32 length = array.get(L"length").asInt32();
    OleVariant elements;
    elements.get().parray = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(std::max(length, Int32{0})));
    if (!elements.get().parray)
        throw RuntimeFailure(FailureCode::OutOfMemory);
    elements.get().vt = VT_ARRAY | VT_VARIANT;
    for (LONG index = 0; index < length; ++index) {
        OleVariant element = array.get(std::to_wstring(index).c_str());
        demand(SafeArrayPutElement(elements.get().parray, &index, &element.get()));
    }
    return elements;
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
    if (parameter.type == kNumberArray) {
        prepareArray(prepared, argument, given);
        return;
    }
    changeType(argument.value.get(), given, parameter.type);
    argument.handBack = (argument.given->vt & VT_BYREF) != 0;
    prepared = referenceTo(argument.value.get(), parameter.type);
}

void Arguments::prepareArray(VARIANT& prepared, Argument& argument, VARIANT& given)
{
    VARIANT* array = &given;
    if (given.vt == VT_DISPATCH && given.pdispVal) {
        argument.value = elementsOfObject(ComPtr<IDispatch>(given.pdispVal));
        array = &argument.value.get();
    }
    if ((array->vt & VT_ARRAY) == 0)
        throw RuntimeFailure(FailureCode::TypeMismatch);
    prepared.vt = VT_BYREF | kNumberArray;
    prepared.pparray = (array->vt & VT_BYREF) != 0 ? array->pparray : &array->parray;
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

} // namespace kel::com
