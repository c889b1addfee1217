// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

namespace kel::python {

// Each adds its classes and functions to the module.

void addSheet(pybind11::module_& module);
void addReader(pybind11::module_& module);
void addRawReader(pybind11::module_& module);
void addForm(pybind11::module_& module);
void addModels(pybind11::module_& module);
void addPorts(pybind11::module_& module);
void addSimulation(pybind11::module_& module);
void addReplay(pybind11::module_& module);

} // namespace kel::python
