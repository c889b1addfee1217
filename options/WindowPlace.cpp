// SPDX-License-Identifier: MIT
#include "options/WindowPlace.h"

#include "platform/Platform.h"

namespace kel {

namespace {

constexpr kelReaderRegistryKey kHive = kelReaderRegistryKeyCurrentUser;
constexpr const char* kSubKey = "Software\\KELReader81U\\Options";
constexpr const char* kName = "Window";

class RegisteredPlace final : public WindowPlace {
    std::string recall() override
    {
        const auto kept = platform().registry().read(kHive, kSubKey, kName);
        return kept && kept->type == RegistryType::Text ? kept->data : std::string();
    }
    void keep(const std::string& place) override
    {
        if (place != recall())
            platform().registry().write(kHive, kSubKey, kName, {RegistryType::Text, place});
    }
};

} // namespace

WindowPlace& registeredWindowPlace()
{
    static RegisteredPlace place;
    return place;
}

} // namespace kel
