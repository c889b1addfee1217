// SPDX-License-Identifier: MIT
#pragma once

#include "host/UsageError.h"

namespace kel {

/// The command was called rightly and cannot do it; exit status 1. A `host::UsageError` has exit status 2.
using CommandFailure = host::OperationError;

} // namespace kel
