// SPDX-License-Identifier: MIT
#include "com/TypeInformation.h"

#include "com/Boundary.h"
#include "com/Server.h"
#include "com/Text.h"

#include <algorithm>
#include <cwctype>
#include <list>
#include <mutex>

namespace kel::com {

namespace {

std::wstring lowerName(const wchar_t* name)
{
    std::wstring lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](wchar_t letter) { return static_cast<wchar_t>(std::towlower(letter)); });
    return lower;
}

/// A type that has another name: an enumeration is a 32-bit number, a class or an interface is an object.
VARTYPE typeBehindName(ITypeInfo& information, HREFTYPE name)
{
    ComPtr<ITypeInfo> named;
    demand(information.GetRefTypeInfo(name, named.out()));
    TYPEATTR* attributes = nullptr;
    demand(named->GetTypeAttr(&attributes));
    const VARTYPE type = attributes->typekind == TKIND_ENUM ? VT_I4 : VT_DISPATCH;
    named->ReleaseTypeAttr(attributes);
    return type;
}

Parameter parameterOf(ITypeInfo& information, const TYPEDESC& description)
{
    switch (description.vt) {
    case VT_PTR: {
        // A pointer to an object is the object; any other pointer is a reference.
        const Parameter behind = parameterOf(information, *description.lptdesc);
        if (behind.type == VT_DISPATCH && description.lptdesc->vt == VT_USERDEFINED)
            return behind;
        return {behind.type, true};
    }
    case VT_SAFEARRAY: return {static_cast<VARTYPE>(VT_ARRAY | description.lptdesc->vt), false};
    case VT_USERDEFINED: return {typeBehindName(information, description.hreftype), false};
    default: return {description.vt, false};
    }
}

struct Known {
    GUID guid;
    TypeInformation information;
};

/// The interfaces asked for so far. Kept to the end of the process: objects are released until then.
struct KnownInterfaces {
    std::mutex mutex;
    std::list<Known> all;
};

KnownInterfaces& knownInterfaces()
{
    static auto* const place = new KnownInterfaces;
    return *place;
}

} // namespace

TypeInformation::TypeInformation(ComPtr<ITypeInfo> information) : information_(std::move(information))
{
    TYPEATTR* attributes = nullptr;
    demand(information_->GetTypeAttr(&attributes));
    const UINT count = attributes->typekind == TKIND_DISPATCH ? attributes->cFuncs : 0;
    information_->ReleaseTypeAttr(attributes);
    for (UINT index = 0; index < count; ++index) {
        FUNCDESC* description = nullptr;
        demand(information_->GetFuncDesc(index, &description));
        addMember(*description);
        addName(description->memid);
        information_->ReleaseFuncDesc(description);
    }
}

void TypeInformation::addMember(const FUNCDESC& description)
{
    Member member{description.invkind, {}};
    for (SHORT index = 0; index < description.cParams; ++index)
        member.parameters.push_back(parameterOf(*information_.get(), description.lprgelemdescParam[index].tdesc));
    members_[description.memid].push_back(std::move(member));
}

void TypeInformation::addName(DISPID id)
{
    OwnedText name;
    UINT count = 0;
    if (SUCCEEDED(information_->GetNames(id, name.out(), 1, &count)) && count == 1)
        ids_.emplace(lowerName(name.get()), id);
}

const Member* TypeInformation::member(DISPID id, WORD flags) const
{
    const auto found = members_.find(id);
    if (found == members_.end())
        return nullptr;
    const auto fits = [flags](const Member& member) { return (member.kind & flags) != 0; };
    const auto member = std::find_if(found->second.begin(), found->second.end(), fits);
    return member == found->second.end() ? nullptr : &*member;
}

DISPID TypeInformation::idOfName(const wchar_t* name) const
{
    const auto found = ids_.find(lowerName(name));
    return found == ids_.end() ? DISPID_UNKNOWN : found->second;
}

ComPtr<ITypeLib> typeLibrary()
{
    ComPtr<ITypeLib> library;
    demand(LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library.out()));
    return library;
}

const TypeInformation& typeInformationOf(REFGUID guid)
{
    KnownInterfaces& known = knownInterfaces();
    const std::lock_guard lock(known.mutex);
    for (const Known& one : known.all) {
        if (IsEqualGUID(one.guid, guid))
            return one.information;
    }
    ComPtr<ITypeInfo> information;
    demand(typeLibrary()->GetTypeInfoOfGuid(guid, information.out()));
    return known.all.emplace_back(Known{guid, TypeInformation(std::move(information))}).information;
}

} // namespace kel::com
