// SPDX-License-Identifier: MIT
#include "failure/VariantDump.h"

#include "types/CaughtFailure.h"

#include <optional>

namespace kel {

namespace {

constexpr Int32 kMostDimensions = 4;

std::string blanks(Int32 count)
{
    return std::string(static_cast<std::size_t>(count), ' ');
}

std::string_view bareName(std::string_view sName)
{
    return sName.substr(0, sName.find(' '));
}

std::string openingTag(std::string_view sName)
{
    return "<" + std::string(sName) + ">";
}

std::string closingTag(std::string_view sName)
{
    return "</" + std::string(bareName(sName)) + ">" + std::string(kLineEnd);
}

std::string errorText()
{
    return "{Error " + CStr(caughtFailure().number()) + " formatting for output}";
}

/// The dimensions of an array as far as they can be found out: one less than the first whose lower bound cannot be had,
/// and none at all where all four can.
Int32 dimensionCount(const ArrayValue& array)
{
    for (Int32 dimension = 1; dimension <= kMostDimensions; ++dimension) {
        try {
            static_cast<void>(array.bounds(dimension).lower);
        } catch (const RuntimeFailure&) {
            return dimension - 1;
        }
    }
    return 0;
}

std::optional<DimensionBounds> boundsOf(const ArrayValue& array, Int32 dimension)
{
    try {
        const DimensionBounds bounds = array.bounds(dimension);
        if (bounds.upper >= bounds.lower)
            return bounds;
    } catch (const RuntimeFailure&) {
        return std::nullopt;
    }
    return std::nullopt;
}

class ArrayDump {
public:
    ArrayDump(std::string_view sName, const ArrayValue& array, Int32 lDepth, Int32 lIndent)
        : sName_(sName), array_(array), lDepth_(lDepth), lIndent_(lIndent)
    {
    }

    std::string text()
    {
        text_ = blanks(lIndent_) + openingTag(sName_) + std::string(kLineEnd);
        try {
            addContents();
        } catch (const std::exception&) {
            addRemark(errorText());
        }
        return text_ + blanks(lIndent_) + closingTag(sName_);
    }

private:
    void addContents()
    {
        const Int32 dimensions = dimensionCount(array_);
        if (dimensions > 3) {
            addRemark("{Dump truncated at " + CStr(dimensions) + " dimensions}");
            return;
        }
        std::vector<DimensionBounds> bounds;
        // Four and more dimensions count as none, and go the way of three.
        const Int32 looked = dimensions == 0 ? 3 : dimensions;
        for (Int32 dimension = 1; dimension <= looked; ++dimension) {
            const std::optional<DimensionBounds> found = boundsOf(array_, dimension);
            if (!found) {
                addRemark(dimension == 1 ? "{UnInitialised Array}"
                                         : "{UnInitialised Array Dimension " + CStr(dimension) + "}");
                return;
            }
            bounds.push_back(*found);
        }
        std::vector<Int32> indexes;
        addElements(bounds, indexes);
    }

    void addElements(std::span<const DimensionBounds> bounds, std::vector<Int32>& indexes)
    {
        if (bounds.empty()) {
            addElement(indexes);
            return;
        }
        for (std::int64_t index = bounds.front().lower; index <= bounds.front().upper; ++index) {
            indexes.push_back(static_cast<Int32>(index));
            addElements(bounds.subspan(1), indexes);
            indexes.pop_back();
        }
    }

    void addElement(std::span<const Int32> indexes)
    {
        std::string sIndexes;
        for (const Int32 index : indexes)
            sIndexes.append(sIndexes.empty() ? "" : ",").append(CStr(index));
        text_ += dumpOfValue(sName_ + " Index=\"" + sIndexes + "\"", array_.at(indexes), lDepth_ - 1, lIndent_ + 2);
    }

    void addRemark(const std::string& remark) { text_ += blanks(lIndent_ + 2) + remark + std::string(kLineEnd); }

    std::string sName_;
    const ArrayValue& array_;
    Int32 lDepth_;
    Int32 lIndent_;
    std::string text_;
};

/// Nothing, or the name of the object's type, or what is in it.
std::string objectText(std::string_view sName, const ObjectValue& object, Int32 lDepth, Int32 lIndent)
{
    if (object.typeName.empty())
        return "{Nothing}";
    if (!object.elements)
        return "{" + object.typeName + "}";
    std::string text(kLineEnd);
    Int32 lNumber = 0;
    for (const Variant& element : object.elements())
        text += dumpOfValue(std::string(sName) + "[" + CStr(++lNumber) + "]", element, lDepth, lIndent + 2);
    return text + blanks(lIndent);
}

std::string textOf(std::string_view sName, const Variant& vValue, Int32 lDepth, Int32 lIndent)
{
    if (std::holds_alternative<EmptyValue>(vValue))
        return "{Empty}";
    if (std::holds_alternative<NullValue>(vValue))
        return "{Null}";
    if (const auto* data = std::get_if<DataObjectValue>(&vValue))
        return data->isNothing ? "{Nothing}" : "{DataObject}";
    if (const auto* record = std::get_if<RecordValue>(&vValue))
        return "{UDT - " + record->typeName + "}";
    if (const auto* object = std::get_if<ObjectValue>(&vValue))
        return objectText(sName, *object, lDepth, lIndent);
    return replaceAll(valueText(vValue), std::string_view("\0", 1), "{Null}");
}

} // namespace

std::string dumpLine(std::string_view sName, std::string_view value, Int32 lIndent)
{
    return blanks(lIndent) + openingTag(sName) + std::string(value) + closingTag(sName);
}

std::string dumpOfValue(std::string_view sName, const Variant& vValue, Int32 lDepth, Int32 lIndent)
{
    if (const auto* array = std::get_if<ArrayValue>(&vValue))
        return ArrayDump(sName, *array, lDepth, lIndent).text();
    try {
        return dumpLine(sName, textOf(sName, vValue, lDepth, lIndent), lIndent);
    } catch (const std::exception&) {
        return dumpLine(sName, errorText(), lIndent);
    }
}

} // namespace kel
