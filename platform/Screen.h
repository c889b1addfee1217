#pragma once

#include "types/Numbers.h"

#include <string>

namespace kel {

enum class BoxIcon { None, Information, Exclamation };
enum class BoxButtons { Ok, AbortRetryIgnore };
enum class BoxAnswer { Ok, Abort, Retry, Ignore };

/// Mouse pointer shapes that the component sets.
inline constexpr Int32 kMousePointerDefault = 0;
inline constexpr Int32 kMousePointerHourglass = 11;

/// What the component shows and sounds by itself. Without a screen a box goes to standard error and is answered Ok,
/// or Abort where that is offered.
class Screen {
public:
    virtual ~Screen() = default;
    virtual BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) = 0;
    virtual void Beep() = 0;
    [[nodiscard]] virtual Int32 MousePointer() const = 0;
    virtual void MousePointer(Int32 shape) = 0;
};

} // namespace kel
