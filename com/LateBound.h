// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "com/OleVariant.h"
#include "types/SourceLocation.h"

#include <span>

namespace kel::com {

/// An object of the host's whose members are reached by name at run time, as a host's own language does it. A call
/// that fails is a run-time failure: with the number and the text that the object gave, or 438 where it has no such
/// member.
class LateBound {
public:
    /// An object that is nothing is failure 91.
    explicit LateBound(ComPtr<IDispatch> object, SourceLocation where = SourceLocation::current());

    [[nodiscard]] const ComPtr<IDispatch>& object() const noexcept { return object_; }

    /// Whether the object has a member of that name.
    [[nodiscard]] bool has(const wchar_t* member) const;

    /// What a property, or a function, gives.
    [[nodiscard]] OleVariant get(const wchar_t* member, std::span<const OleVariant> arguments = {},
                                 SourceLocation where = SourceLocation::current()) const;
    [[nodiscard]] OleVariant get(const wchar_t* member, const OleVariant& argument,
                                 SourceLocation where = SourceLocation::current()) const
    {
        return get(member, {&argument, 1}, where);
    }

    void put(const wchar_t* member, const OleVariant& value, SourceLocation where = SourceLocation::current()) const;

    /// Calls a method; the arguments in the order of its declaration.
    OleVariant call(const wchar_t* member, std::span<const OleVariant> arguments,
                    SourceLocation where = SourceLocation::current()) const;

    /// An element of a collection, by its `Item` or as the object's default.
    [[nodiscard]] OleVariant item(const OleVariant& index, SourceLocation where = SourceLocation::current()) const;

private:
    [[nodiscard]] DISPID idOf(const wchar_t* member, const SourceLocation& where) const;
    OleVariant invoke(DISPID id, WORD flags, std::span<const OleVariant> arguments, const SourceLocation& where) const;

    ComPtr<IDispatch> object_;
};

} // namespace kel::com
