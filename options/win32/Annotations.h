// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <utility>
#include <windows.h>

struct IAccPropServices;

namespace kel {

/// What assistive programs are to be told of a window beyond what the system finds out: it takes the name of a field
/// from the label before it, and the value from what is in it. This goes to the system's annotation service; where
/// there is none, nothing happens.
class Annotations {
public:
    enum class What { Name, Value, Description };

    Annotations();
    ~Annotations();
    Annotations(const Annotations&) = delete;
    Annotations& operator=(const Annotations&) = delete;

    /// Says something of a window, in place of what was said before; an empty text takes that back.
    void say(HWND window, What what, const std::wstring& text);

    /// Takes back all that was said, as has to be done while the windows are still there.
    void takeBack();

private:
    IAccPropServices* service_ = nullptr;
    std::map<std::pair<HWND, What>, std::wstring> said_;
};

} // namespace kel
