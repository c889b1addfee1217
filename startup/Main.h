// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

namespace kel {

/// Start-up: joins the parts of the component together for the system that it runs on. It does its work once, however
/// often it is called.
///
/// It runs by itself when the shared library is loaded. A program that takes the objects from a static library calls
/// it first thing.
KEL_INTERNAL void Main();

} // namespace kel
