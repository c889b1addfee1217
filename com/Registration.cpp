// SPDX-License-Identifier: MIT
#include "com/Registration.h"

#include "com/Boundary.h"
#include "com/Server.h"
#include "com/Text.h"
#include "com/TypeInformation.h"

#include "KELReader81U.h"

#include <olectl.h>

#include <array>
#include <string>
#include <vector>

namespace kel::com {

namespace {

constexpr wchar_t kClasses[] = L"Software\\Classes";
constexpr wchar_t kLibraryName[] = L"KELReader81U";
/// The system's marshallers of interfaces that a type library describes: of dual ones, and of event interfaces.
constexpr wchar_t kDualMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kDispatchMarshaller[] = L"{00020420-0000-0000-C000-000000000046}";
#ifdef _WIN64
constexpr wchar_t kPlatform[] = L"win64";
constexpr REGSAM kOtherView = KEY_WOW64_32KEY;
#else
constexpr wchar_t kPlatform[] = L"win32";
constexpr REGSAM kOtherView = KEY_WOW64_64KEY;
#endif

bool is64BitSystem()
{
#ifdef _WIN64
    return true;
#else
    BOOL emulated = FALSE;
    return IsWow64Process(GetCurrentProcess(), &emulated) && emulated;
#endif
}

/// A key below the hive's classes and one of its values; the default value has no name.
struct Entry {
    std::wstring key;
    std::wstring name;
    std::wstring text;
};

/// What registration writes: the keys that are the server's own, with everything below them, and their values. Of these
/// the classes and interfaces are those of one width of programs; the names of classes and the type library are seen by
/// both, and are needed as long as a server of either is there.
struct Plan {
    std::wstring libraryVersion; // the type library's, which hosts name: "8.1"
    std::vector<std::wstring> ownKeys;
    std::vector<std::wstring> sharedKeys;
    std::vector<Entry> entries;

    void add(std::wstring key, std::wstring text) { entries.push_back({std::move(key), {}, std::move(text)}); }
    void add(std::wstring key, std::wstring name, std::wstring text)
    {
        entries.push_back({std::move(key), std::move(name), std::move(text)});
    }
};

std::wstring textOfGuid(REFGUID guid)
{
    std::array<wchar_t, 64> text{};
    StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
    return text.data();
}

struct TypeNames {
    std::wstring name;
    std::wstring description;
};

TypeNames namesOf(ITypeInfo& type)
{
    OwnedText name;
    OwnedText description;
    demand(type.GetDocumentation(MEMBERID_NIL, name.out(), description.out(), nullptr, nullptr));
    return {std::wstring(name.view()), std::wstring(description.view())};
}

void planClass(Plan& plan, const TypeNames& names, REFCLSID classID)
{
    const std::wstring id = textOfGuid(classID);
    const std::wstring key = L"CLSID\\" + id;
    const std::wstring progID = std::wstring(kLibraryName) + L"." + names.name;
    plan.ownKeys.push_back(key);
    plan.add(key, names.description);
    plan.add(key + L"\\InprocServer32", modulePath());
    plan.add(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    plan.add(key + L"\\ProgID", progID);
    plan.add(key + L"\\Programmable", L"");
    plan.add(key + L"\\TypeLib", textOfGuid(LIBID_KELReader81U));
    plan.add(key + L"\\VERSION", plan.libraryVersion);
    plan.sharedKeys.push_back(progID);
    plan.add(progID, names.description);
    plan.add(progID + L"\\CLSID", id);
}

void planInterface(Plan& plan, const TypeNames& names, REFIID iid, bool dual)
{
    const std::wstring key = L"Interface\\" + textOfGuid(iid);
    plan.ownKeys.push_back(key);
    plan.add(key, names.name);
    plan.add(key + L"\\ProxyStubClsid32", dual ? kDualMarshaller : kDispatchMarshaller);
    plan.add(key + L"\\TypeLib", textOfGuid(LIBID_KELReader81U));
    plan.add(key + L"\\TypeLib", L"Version", plan.libraryVersion);
}

void planLibrary(Plan& plan, ITypeLib& library)
{
    OwnedText description;
    demand(library.GetDocumentation(-1, nullptr, description.out(), nullptr, nullptr));
    const std::wstring path = modulePath();
    const std::wstring key = L"TypeLib\\" + textOfGuid(LIBID_KELReader81U) + L"\\" + plan.libraryVersion;
    plan.ownKeys.push_back(key + L"\\0\\" + kPlatform);
    plan.sharedKeys.push_back(key);
    plan.add(key, std::wstring(description.view()));
    plan.add(key + L"\\0\\" + kPlatform, path);
    plan.add(key + L"\\FLAGS", L"0");
    plan.add(key + L"\\HELPDIR", path.substr(0, path.find_last_of(L'\\')));
}

std::wstring versionOf(ITypeLib& library)
{
    TLIBATTR* attributes = nullptr;
    demand(library.GetLibAttr(&attributes));
    const std::wstring version =
        std::to_wstring(attributes->wMajorVerNum) + L"." + std::to_wstring(attributes->wMinorVerNum);
    library.ReleaseTLibAttr(attributes);
    return version;
}

Plan makePlan()
{
    Plan plan;
    const ComPtr<ITypeLib> library = typeLibrary();
    plan.libraryVersion = versionOf(*library.get());
    for (UINT index = 0; index < library->GetTypeInfoCount(); ++index) {
        ComPtr<ITypeInfo> type;
        demand(library->GetTypeInfo(index, type.out()));
        TYPEATTR* attributes = nullptr;
        demand(type->GetTypeAttr(&attributes));
        const TYPEATTR told = *attributes;
        type->ReleaseTypeAttr(attributes);
        if (told.typekind == TKIND_COCLASS)
            planClass(plan, namesOf(*type.get()), told.guid);
        else if (told.typekind == TKIND_DISPATCH)
            planInterface(plan, namesOf(*type.get()), told.guid, (told.wTypeFlags & TYPEFLAG_FDUAL) != 0);
    }
    planLibrary(plan, *library.get());
    return plan;
}

HKEY hiveOf(RegistrationScope scope)
{
    return scope == RegistrationScope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring pathOf(const std::wstring& key)
{
    return std::wstring(kClasses) + L"\\" + key;
}

LSTATUS write(HKEY hive, const Entry& entry)
{
    HKEY key = nullptr;
    LSTATUS status = RegCreateKeyExW(hive, pathOf(entry.key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                                     nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS)
        return status;
    const auto bytes = static_cast<DWORD>((entry.text.size() + 1) * sizeof(wchar_t));
    status = RegSetValueExW(key, entry.name.empty() ? nullptr : entry.name.c_str(), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(entry.text.c_str()), bytes);
    RegCloseKey(key);
    return status;
}

bool isEmptyKey(HKEY hive, const std::wstring& path)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    DWORD keys = 0;
    DWORD values = 0;
    const LSTATUS status = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                                            nullptr, nullptr, nullptr);
    RegCloseKey(key);
    return status == ERROR_SUCCESS && keys == 0 && values == 0;
}

/// Removes a key with everything below it, and the keys above it that are left empty, up to the hive's classes.
LSTATUS remove(HKEY hive, const std::wstring& key)
{
    std::wstring path = pathOf(key);
    const LSTATUS status = RegDeleteTreeW(hive, path.c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND)
        return status;
    for (;;) {
        path.resize(path.find_last_of(L'\\'));
        if (path.size() <= std::size(kClasses) - 1 || !isEmptyKey(hive, path))
            return ERROR_SUCCESS;
        RegDeleteKeyW(hive, path.c_str());
    }
}

/// Whether the server of the other width is registered: in the other view of the registry, which a system of 32 bits
/// does not have.
bool isOtherWidthThere(HKEY hive)
{
    const std::wstring path = pathOf(L"CLSID\\" + textOfGuid(CLSID_clsKELReader) + L"\\InprocServer32");
    HKEY key = nullptr;
    if (RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ | kOtherView, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return is64BitSystem();
}

HRESULT removeKeys(HKEY hive, const std::vector<std::wstring>& keys)
{
    HRESULT result = S_OK;
    for (const std::wstring& key : keys) {
        const LSTATUS status = remove(hive, key);
        if (status != ERROR_SUCCESS)
            result = HRESULT_FROM_WIN32(static_cast<DWORD>(status));
    }
    return result;
}

HRESULT removeAll(HKEY hive, const Plan& plan)
{
    const HRESULT own = removeKeys(hive, plan.ownKeys);
    const HRESULT shared = isOtherWidthThere(hive) ? S_OK : removeKeys(hive, plan.sharedKeys);
    return FAILED(own) ? own : shared;
}

} // namespace

HRESULT registerServer(RegistrationScope scope) noexcept
try {
    const Plan plan = makePlan();
    const HKEY hive = hiveOf(scope);
    for (const Entry& entry : plan.entries) {
        const LSTATUS status = write(hive, entry);
        if (status != ERROR_SUCCESS) {
            static_cast<void>(removeAll(hive, plan));
            return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
        }
    }
    return S_OK;
} catch (const ComFailure&) {
    return SELFREG_E_TYPELIB;
} catch (...) {
    return E_OUTOFMEMORY;
}

HRESULT unregisterServer(RegistrationScope scope) noexcept
try {
    return removeAll(hiveOf(scope), makePlan());
} catch (const ComFailure&) {
    return SELFREG_E_TYPELIB;
} catch (...) {
    return E_OUTOFMEMORY;
}

} // namespace kel::com
