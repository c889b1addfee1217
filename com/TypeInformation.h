// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"

#include <oaidl.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace kel::com {

/// A parameter as the type library declares it.
struct Parameter {
    VARTYPE type = VT_EMPTY;  ///< what it holds, without VT_BYREF
    bool byReference = false; ///< the call may change it
};

/// A member of an interface: one accessor of a property, or a method.
struct Member {
    INVOKEKIND kind = INVOKE_FUNC;
    std::vector<Parameter> parameters;
};

/// What the embedded type library says of an interface.
class TypeInformation {
public:
    explicit TypeInformation(ComPtr<ITypeInfo> information);

    [[nodiscard]] ITypeInfo& information() const noexcept { return *information_.get(); }
    /// One of the accessors named by `flags` (DISPATCH_...), or nothing.
    [[nodiscard]] const Member* member(DISPID id, WORD flags) const;
    /// The number of a member's name, DISPID_UNKNOWN if there is none; in any case of letters.
    [[nodiscard]] DISPID idOfName(const wchar_t* name) const;

private:
    void addMember(const FUNCDESC& description);
    void addName(DISPID id);

    ComPtr<ITypeInfo> information_;
    std::unordered_map<DISPID, std::vector<Member>> members_;
    std::unordered_map<std::wstring, DISPID> ids_; // by the name in lower case
};

/// The embedded type library.
[[nodiscard]] ComPtr<ITypeLib> typeLibrary();

/// What the type library says of an interface or a class; found once for the life of the process.
[[nodiscard]] const TypeInformation& typeInformationOf(REFGUID guid);

} // namespace kel::com
