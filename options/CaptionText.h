// SPDX-License-Identifier: MIT
#pragma once

#include "options/Controls.h"

#include <string>
#include <string_view>

namespace kel {

/// A caption without the mark of its access key and without the colon of a label.
[[nodiscard]] inline std::string plainCaption(std::string caption)
{
    // A mark goes, and of two the second is a text's.
    for (std::size_t at = caption.find('&'); at != std::string::npos; at = caption.find('&', at + 1))
        caption.erase(at, 1);
    for (const std::string_view ending : {":", "\u00a0", " "}) {
        if (caption.ends_with(ending))
            caption.resize(caption.size() - ending.size());
    }
    return caption;
}

/// What a setting of a form is called: on it, or on the label before it.
[[nodiscard]] inline std::string settingName(const ControlHost& form, const Control& setting)
{
    const Control* before = nullptr;
    for (const Control* const each : form.Controls()) {
        if (each == &setting && dynamic_cast<const Label*>(before))
            return plainCaption(before->Caption());
        before = each;
    }
    return plainCaption(setting.Caption());
}

} // namespace kel
