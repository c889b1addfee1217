// SPDX-License-Identifier: MIT
#include "python/Bindings.h"
#include "python/Session.h"

#include <KELReader81U/RuntimeFailure.h>
#include <KELReader81U/host/Failure.h>
#include <KELReader81U/host/UsageError.h>

#include <utility>

namespace py = pybind11;

namespace {

/// A class of exceptions of the package; its C++ counterparts are thrown as it.
py::object addException(py::module_& module, const char* name, PyObject* base, const char* doc)
{
    const std::string qualified = std::string("kelreader.") + name;
    py::object made =
        py::reinterpret_steal<py::object>(PyErr_NewExceptionWithDoc(qualified.c_str(), doc, base, nullptr));
    module.attr(name) = made;
    return made;
}

} // namespace

PYBIND11_MODULE(_core, module)
{
    using namespace kel::python;
    static PyObject* const usageError =
        addException(module, "UsageError", PyExc_ValueError,
                     "Something was asked for in a wrong way: an unknown model, a value that does not fit, a form file "
                     "that is broken. Its text is one sentence.")
            .release()
            .ptr();
    static PyObject* const operationError =
        addException(module, "OperationError", PyExc_OSError,
                     "What was asked for rightly cannot be done, such as a file that cannot be written.")
            .release()
            .ptr();
    static PyObject* const inUseError =
        addException(module, "InUseError", PyExc_RuntimeError, "A second thread uses an object while a first one does.")
            .release()
            .ptr();
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(std::move(thrown));
        } catch (const kel::host::UsageError& error) {
            PyErr_SetString(usageError, error.what());
        } catch (const kel::host::OperationError& error) {
            PyErr_SetString(operationError, error.what());
        } catch (const kel::python::InUse& error) {
            PyErr_SetString(inUseError, error.what());
        } catch (const kel::RuntimeFailure& failure) {
            PyErr_SetString(operationError, failure.what());
        } catch (const std::logic_error& error) {
            PyErr_SetString(usageError, error.what());
        }
    });
    addForm(module);
    addSheet(module);
    addReader(module);
    addRawReader(module);
    addReplay(module);
    addModels(module);
    addPorts(module);
    addSimulation(module);
}
