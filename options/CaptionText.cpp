// SPDX-License-Identifier: MIT
#include "options/CaptionText.h"

#include "types/Text.h"

#include <string_view>

namespace kel {

std::string plainCaption(const std::string& caption)
{
    std::string plain = replaceAll(replaceAll(replaceAll(caption, "&&", "\x01"), "&", ""), "\x01", "&");
    for (const std::string_view ending : {":", "\u00a0", " "}) {
        if (plain.ends_with(ending))
            plain.resize(plain.size() - ending.size());
    }
    return plain;
}

} // namespace kel
