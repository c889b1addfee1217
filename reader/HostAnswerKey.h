// SPDX-License-Identifier: MIT
#pragma once

#include "contract/AnswerKeyObject.h"

namespace kel {

/// The host's answer key as the drivers use it: a fault of the processor in the key, in a question or in its choices is
/// the host's. Nothing stays nothing.
[[nodiscard]] Reference<AnswerKeyObject> hostAnswerKey(Reference<AnswerKeyObject> key);

} // namespace kel
