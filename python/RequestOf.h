// SPDX-License-Identifier: MIT
#pragma once

#include <KELReader81U/host/Request.h>
#include <pybind11/pybind11.h>

namespace kel::python {

/// What the keyword arguments of the package's `Reader` ask for. UsageError for a value that does not fit.
host::Request requestOf(const pybind11::dict& arguments);

/// What those of `simulate` ask for.
host::Simulation simulationOf(const pybind11::dict& arguments);

} // namespace kel::python
