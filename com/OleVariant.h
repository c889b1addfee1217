// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "types/Boolean.h"
#include "types/Numbers.h"

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace kel::com {

/// A VARIANT that owns what it holds.
class OleVariant {
public:
    OleVariant() noexcept { VariantInit(&value_); }
    OleVariant(const OleVariant& other);
    OleVariant(OleVariant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
    OleVariant& operator=(OleVariant other) noexcept;
    ~OleVariant() { VariantClear(&value_); }

    [[nodiscard]] static OleVariant of(Int16 value);
    [[nodiscard]] static OleVariant of(Int32 value);
    [[nodiscard]] static OleVariant of(Boolean value);
    /// A reference of the variant's own; nothing is an object too.
    [[nodiscard]] static OleVariant of(IDispatch* object);
    /// A copy, of what a reference refers to as well.
    [[nodiscard]] static OleVariant copyOf(const VARIANT& other);
    /// A text for people, of a sheet, of a line; see Text.h.
    [[nodiscard]] static OleVariant ofText(std::string_view utf8);
    [[nodiscard]] static OleVariant ofSheetText(std::string_view bytes);
    [[nodiscard]] static OleVariant ofLineText(std::string_view bytes);

    [[nodiscard]] VARIANT& get() noexcept { return value_; }
    [[nodiscard]] const VARIANT& get() const noexcept { return value_; }
    [[nodiscard]] VARTYPE type() const noexcept { return value_.vt; }
    /// Where a call puts a value that it gives; lets go of the present one.
    [[nodiscard]] VARIANT* out() noexcept;

    /// The value as another type; 13 "Type mismatch" or 6 "Overflow" if it is none.
    [[nodiscard]] OleVariant as(VARTYPE type) const;
    [[nodiscard]] Int32 asInt32() const;
    [[nodiscard]] Int16 asInt16() const;
    [[nodiscard]] Boolean asBoolean() const;
    [[nodiscard]] std::string asText() const;
    [[nodiscard]] std::string asSheetText() const;
    [[nodiscard]] std::string asLineText() const;
    /// The object; 424 "Object required" if the value is none, and nothing if it is nothing.
    [[nodiscard]] ComPtr<IDispatch> asObject() const;

private:
    /// A text that is the variant's from now on.
    [[nodiscard]] static OleVariant owning(BSTR text) noexcept;

    VARIANT value_;
};

/// The value of a variant that refers to another variant, and that variant itself otherwise.
[[nodiscard]] const VARIANT& behindReference(const VARIANT& value) noexcept;

/// Whether an optional argument was left out.
[[nodiscard]] bool isMissing(const VARIANT& value) noexcept;

/// A value as another type, as Automation converts it; 13 "Type mismatch" or 6 "Overflow" if it cannot.
void changeType(VARIANT& to, const VARIANT& from, VARTYPE type);

} // namespace kel::com
