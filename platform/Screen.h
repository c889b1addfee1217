// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <string>

namespace kel {

/// The sign in a box.
enum class BoxIcon {
    None,        ///< no sign
    Information, ///< an "i"
    Exclamation, ///< a warning sign
};

/// The buttons of a box.
enum class BoxButtons {
    Ok,               ///< one button
    AbortRetryIgnore, ///< three
};

/// The button that was pressed.
enum class BoxAnswer {
    Ok,     ///< the only one
    Abort,  ///< of three
    Retry,  ///< of three
    Ignore, ///< of three
};

/// Mouse pointer shapes that the component sets.
inline constexpr Int32 kMousePointerDefault = 0;
inline constexpr Int32 kMousePointerHourglass = 11;

/// The boxes and sounds of the component itself. Without a screen a box goes to standard error and is answered with Ok,
/// or Abort where that is offered.
class Screen {
public:
    virtual ~Screen() = default;
    /// Shows a box and waits for the answer.
    virtual BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) = 0;

    /// A short sound.
    virtual void Beep() = 0;

    /// The shape of the pointer.
    [[nodiscard]] virtual Int32 MousePointer() const = 0;
    virtual void MousePointer(Int32 shape) = 0;
};

} // namespace kel
