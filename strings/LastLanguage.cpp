// SPDX-License-Identifier: MIT
#include "strings/LastLanguage.h"

#include "platform/Platform.h"

namespace kel {

namespace {

constexpr auto kHive = kelReaderRegistryKeyLocalMachine;
constexpr const char* kSubKey = R"(Software\WhippleWare\VBLM)";
constexpr const char* kValueName = "LastLanguage";
constexpr std::size_t kBufferSize = 64;

Boolean readLanguage(std::string& Language)
{
    const auto value = platform().registry().read(kHive, kSubKey, kValueName);
    if (!value || (value->type != RegistryType::Text && value->type != RegistryType::ExpandableText))
        return False;
    if (platform().registry().lookUpLength(*value) > kBufferSize)
        return False;
    Language = value->data;
    if (Language.ends_with('\0'))
        Language.pop_back();
    return !Language.empty();
}

} // namespace

Boolean ReadWriteLanguageToRegistry(Int32 Action, std::string& Language)
{
    switch (Action) {
    case kRegistryActionRead: return readLanguage(Language);
    case kRegistryActionWrite:
        return platform().registry().write(kHive, kSubKey, kValueName, {RegistryType::Text, Language});
    default: return False;
    }
}

} // namespace kel
