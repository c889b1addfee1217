#pragma once

#include "com/ComPtr.h"

#include <oaidl.h>

namespace kel {
class Dictionary;
}

namespace kel::com {

/// A new `Scripting.Dictionary` of the system; failure 429 where it cannot be created.
[[nodiscard]] ComPtr<IDispatch> newScriptingDictionary();

/// Puts what a record holds into a scripting dictionary in the place of what that holds.
void fillScriptingDictionary(const ComPtr<IDispatch>& object, const Dictionary& record);

} // namespace kel::com
