// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsRegistry.h"

#include "platform/windows/WindowsText.h"

#include <algorithm>
#include <utility>
#include <windows.h>

namespace kel {

namespace {

constexpr REGSAM kReadAccess = 0x20019;
constexpr REGSAM kWriteAccess = 0x20006;

/// The class and the length of the security attributes under which a key is created.
char keyClass[] = "1";
constexpr DWORD kSecurityAttributesLength = 50;

/// What a look-up has room for; a longer value takes a second one.
constexpr DWORD kUsualValue = 1024;

/// The longest name of a value or a key, with its terminator.
constexpr DWORD kLongestName = 16384;

HKEY predefined(kelReaderRegistryKey hive)
{
    return reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(hive)));
}

/// A key that is open, or null.
class OpenKey {
public:
    OpenKey() = default;
    OpenKey(kelReaderRegistryKey hive, std::string_view subKey, REGSAM access)
    {
        if (::RegOpenKeyExA(predefined(hive), ansiText(subKey).c_str(), 0, access, &key_) != ERROR_SUCCESS)
            key_ = nullptr;
    }
    ~OpenKey()
    {
        if (key_)
            ::RegCloseKey(key_);
    }
    OpenKey(OpenKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    OpenKey& operator=(OpenKey&&) = delete;

    /// The key for writing, which comes into being if it is not there.
    [[nodiscard]] static OpenKey created(kelReaderRegistryKey hive, std::string_view subKey)
    {
        SECURITY_ATTRIBUTES security{};
        security.nLength = kSecurityAttributesLength;
        security.bInheritHandle = TRUE;
        OpenKey made;
        DWORD ignored = 0;
        if (::RegCreateKeyExA(predefined(hive), ansiText(subKey).c_str(), 0, keyClass, 0, kWriteAccess, &security,
                              &made.key_, &ignored) != ERROR_SUCCESS)
            made.key_ = nullptr;
        return made;
    }

    [[nodiscard]] explicit operator bool() const noexcept { return key_ != nullptr; }
    [[nodiscard]] HKEY get() const noexcept { return key_; }

private:
    HKEY key_ = nullptr;
};

/// All that an enumeration gives; `next` asks for the entry of a number.
template <class Next>
std::vector<std::string> namesOf(const OpenKey& key, Next next)
{
    std::vector<std::string> names;
    if (!key)
        return names;
    std::vector<char> name(kLongestName);
    for (DWORD index = 0;; ++index) {
        DWORD length = kLongestName;
        if (next(index, name.data(), length) != ERROR_SUCCESS)
            return names;
        names.push_back(utf8FromAnsi({name.data(), length}));
    }
}

} // namespace

std::optional<RegistryValue> WindowsRegistry::read(kelReaderRegistryKey hive, std::string_view subKey,
                                                   std::string_view name)
{
    const OpenKey key(hive, subKey, kReadAccess);
    if (!key)
        return std::nullopt;
    const std::string ansiName = ansiText(name);
    std::string data;
    DWORD type = 0;
    DWORD size = kUsualValue;
    LSTATUS status = ERROR_MORE_DATA;
    // The value may grow between two look-ups.
    while (status == ERROR_MORE_DATA) {
        data.assign(size, '\0');
        status = ::RegQueryValueExA(key.get(), ansiName.c_str(), nullptr, &type, reinterpret_cast<LPBYTE>(data.data()),
                                    &size);
    }
    if (status != ERROR_SUCCESS)
        return std::nullopt;
    data.resize(size);
    RegistryValue value{static_cast<RegistryType>(type), std::move(data)};
    if (isText(value.type))
        value.data = utf8FromAnsi(value.data);
    return value;
}

std::size_t WindowsRegistry::lookUpLength(const RegistryValue& value) const
{
    if (!isText(value.type))
        return value.data.size();
    // The system ends a text that came without an end.
    const std::string text = ansiText(value.data);
    return text.size() - (text.ends_with('\0') ? 1 : 0);
}

bool WindowsRegistry::create(kelReaderRegistryKey hive, std::string_view subKey)
{
    return static_cast<bool>(OpenKey::created(hive, subKey));
}

bool WindowsRegistry::write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
                            const RegistryValue& value)
{
    const OpenKey key = OpenKey::created(hive, subKey);
    if (!key)
        return false;
    const std::string data = isText(value.type) ? ansiText(value.data) : value.data;
    return ::RegSetValueExA(key.get(), ansiText(name).c_str(), 0, static_cast<DWORD>(value.type),
                            reinterpret_cast<const BYTE*>(data.c_str()),
                            static_cast<DWORD>(data.size())) == ERROR_SUCCESS;
}

bool WindowsRegistry::remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name)
{
    if (name) {
        const OpenKey key(hive, subKey, kWriteAccess);
        return key && ::RegDeleteValueA(key.get(), ansiText(*name).c_str()) == ERROR_SUCCESS;
    }
    return ::RegDeleteTreeA(predefined(hive), ansiText(subKey).c_str()) == ERROR_SUCCESS;
}

bool WindowsRegistry::exists(kelReaderRegistryKey hive, std::string_view subKey)
{
    return static_cast<bool>(OpenKey(hive, subKey, kReadAccess));
}

std::vector<std::string> WindowsRegistry::valueNames(kelReaderRegistryKey hive, std::string_view subKey)
{
    const OpenKey key(hive, subKey, kReadAccess);
    return namesOf(key, [&](DWORD index, char* name, DWORD& length) {
        return ::RegEnumValueA(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
    });
}

std::vector<std::string> WindowsRegistry::subKeys(kelReaderRegistryKey hive, std::string_view subKey)
{
    const OpenKey key(hive, subKey, kReadAccess);
    return namesOf(key, [&](DWORD index, char* name, DWORD& length) {
        return ::RegEnumKeyExA(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
    });
}

} // namespace kel
