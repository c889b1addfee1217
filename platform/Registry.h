// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The kinds of registry values that have a meaning here; others are kept by their number.
enum class RegistryType : std::uint32_t {
    None = 0,
    Text = 1,
    ExpandableText = 2,
    Binary = 3,
    Number = 4,
    MultiText = 7,
    Number64 = 11,
};

/// A registry value as it is stored: its type and its bytes (a number in little-endian order, a text without a
/// terminator, in UTF-8 off Windows).
struct RegistryValue {
    RegistryType type = RegistryType::Text;
    std::string data;

    friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

/// Whether values of this kind are texts.
[[nodiscard]] constexpr bool isText(RegistryType type)
{
    return type == RegistryType::Text || type == RegistryType::ExpandableText || type == RegistryType::MultiText;
}

/// A store of typed values by hive, subkey and name, with the rules of the Windows registry: subkeys and names are
/// compared without regard to case, a subkey is a path with backslashes. Nothing here throws: a store that cannot be
/// reached answers as one without access.
class KEL_INTERNAL Registry {
public:
    virtual ~Registry() = default;

    /// The value, or nothing if the key or the name is not there or may not be read.
    [[nodiscard]] virtual std::optional<RegistryValue> read(kelReaderRegistryKey hive, std::string_view subKey,
                                                            std::string_view name) = 0;

    /// What a look-up of a value into a buffer needs room for, in characters of the system's ANSI encoding: the
    /// characters of a text, and the bytes of anything else.
    [[nodiscard]] virtual std::size_t lookUpLength(const RegistryValue& value) const;

    /// Creates the key, and those above it, if it is not there; false if that is not permitted or fails.
    virtual bool create(kelReaderRegistryKey hive, std::string_view subKey) = 0;

    /// Creates the key if need be and writes the value; false if that is not permitted or fails.
    virtual bool write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
                       const RegistryValue& value) = 0;

    /// Removes a value, or with an empty optional the key with everything below it; false if it was not there.
    virtual bool remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name) = 0;

    /// Whether the key exists; the names of its values, in order; the names of the keys directly below it.
    [[nodiscard]] virtual bool exists(kelReaderRegistryKey hive, std::string_view subKey) = 0;
    [[nodiscard]] virtual std::vector<std::string> valueNames(kelReaderRegistryKey hive, std::string_view subKey) = 0;
    [[nodiscard]] virtual std::vector<std::string> subKeys(kelReaderRegistryKey hive, std::string_view subKey) = 0;
};

} // namespace kel
