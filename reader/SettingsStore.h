// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Export.h"

#include <string>
#include <string_view>

namespace kel {

class ReaderSession;

/// Keeps a reader's settings as values of one registry key, all of them in text form.
/// A store that cannot be read gives the defaults, and one that cannot be written is no failure.
class KEL_INTERNAL SettingsStore {
public:
    SettingsStore(kelReaderRegistryKey lRegistryKey, std::string sRegistrySubKey);

    /// Sets the 19 settings from their values, in an order in which the model comes first: the printer depends on it.
    /// False, after a report, at a text that is no truth value or a number that does not fit; what came before is set.
    Boolean LoadSettings(ReaderSession& session) const;

    /// Writes the 19 settings. True whether or not the registry takes them.
    Boolean SaveSettings(ReaderSession& session) const;

    /// A value as text, or the default where there is none. A value held as a number comes as "&h" and its bytes in
    /// hexadecimal, each without padding and cut at the first zero byte; one of any other type is empty.
    [[nodiscard]] std::string LoadValue(std::string_view sValueName, const std::string& sDefaultValue) const;

    /// Writes a text; an empty one becomes a single blank, in the caller's hand too. True if it was written.
    Boolean SaveValue(std::string_view sValueName, std::string& sValue) const;

private:
    kelReaderRegistryKey lRegistryKey_;
    std::string sRegistrySubKey_;
};

} // namespace kel
