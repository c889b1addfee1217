// SPDX-License-Identifier: MIT
#include "python/Bindings.h"
#include "python/RequestOf.h"
#include "python/SheetBinding.h"
#include "python/Values.h"

#include <KELReader81U/clsKELReaderProfiles.h>
#include <KELReader81U/host/ModelLookup.h>
#include <KELReader81U/host/Ports.h>
#include <KELReader81U/host/UsageError.h>

namespace kel::python {

namespace py = pybind11;

namespace {

py::list listOf(const std::vector<std::string>& texts)
{
    py::list list;
    for (const std::string& words : texts)
        list.append(text(words));
    return list;
}

/// Name and value of each property of a model's record, in the order of the catalogue.
py::list propertiesOf(const clsKELReaderProfile& profile)
{
    py::list properties;
    forEachProperty(profile, [&](std::string_view name, const auto& value) {
        properties.append(py::make_tuple(std::string(name), toPython(value)));
    });
    return properties;
}

py::list models(const std::string& maker)
{
    clsKELReaderProfiles profiles;
    if (!maker.empty())
        profiles.ProfileType(host::makerNamed(maker));
    py::list list;
    for (Int32 position = 1; position <= profiles.Count(); ++position) {
        const Reference<clsKELReaderProfile> profile = profiles.Item(position);
        if (profile->ReaderType() != kelReaderTypeNone)
            list.append(propertiesOf(*profile));
    }
    return list;
}

py::list ports()
{
    std::vector<host::PortState> states;
    {
        const py::gil_scoped_release release; // each port is tried
        states = host::portStates();
    }
    py::list list;
    for (const host::PortState& state : states)
        list.append(py::make_tuple(state.port ? py::object(py::int_(*state.port)) : py::none(),
                                   state.device ? py::object(text(*state.device)) : py::none(), text(state.description),
                                   state.opens, text(state.reason)));
    return list;
}

/// A simulated reader at the far end of a pseudo-terminal, until it is ended.
class SimulatedDevice {
public:
    SimulatedDevice(kelReaderType model, const host::Simulation& simulation, const host::Form& form)
        : reader_(std::make_unique<host::SimulatedReader>(model, simulation, form)), device_(reader_->device())
    {
    }
    ~SimulatedDevice() { static_cast<void>(end()); }
    SimulatedDevice(const SimulatedDevice&) = delete;
    SimulatedDevice& operator=(const SimulatedDevice&) = delete;

    [[nodiscard]] const std::string& device() const { return device_; }

    std::vector<std::string> end()
    {
        const py::gil_scoped_release release;
        if (const std::unique_ptr<host::SimulatedReader> reader = std::move(reader_))
            return reader->end();
        return {};
    }

private:
    std::unique_ptr<host::SimulatedReader> reader_;
    std::string device_;
};

py::tuple rowOf(const host::Form& form, const SheetView& sheet)
{
    const std::vector<host::FieldValue> values = host::rowOf(form.fields, sheet.held->sheet);
    py::tuple row(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        row[i] = toPython(values[i]);
    return row;
}

} // namespace

void addForm(py::module_& module)
{
    py::class_<host::Form>(module, "Form", "A form as a form file describes it.")
        .def_static("from_file", [](const std::string& file) { return host::readFormFile(file); })
        .def_static("from_text", [](const std::string& json) { return host::parseForm(json, "the form"); })
        .def_property_readonly(
            "columns", [](const host::Form& form) { return listOf(host::columnsOf(form.fields)); },
            "The columns of a table of its sheets: \"sheet\", \"barcodes\", \"rejected\", \"printed\", then its "
            "fields.")
        .def_property_readonly(
            "fields",
            [](const host::Form& form) {
                py::list names;
                for (const host::Field& field : form.fields)
                    names.append(text(field.name));
                return names;
            },
            "The names of its fields.")
        .def("row", &rowOf, py::arg("sheet"), "A sheet's values, one a column.")
        .def("__repr__",
             [](const host::Form& form) { return "<Form with " + std::to_string(form.fields.size()) + " fields>"; });
}

void addModels(py::module_& module)
{
    module.def("models", &models);
    module.def("model_number", [](const std::string& name) { return static_cast<Int32>(host::modelNamed(name)); });
    module.def("is_usb_model", [](Int32 number) { return host::isUsbModel(static_cast<kelReaderType>(number)); });
}

void addPorts(py::module_& module)
{
    module.def("ports", &ports);
    module.def("map_port", [](const py::object& port, const std::string& device) {
        const auto number = static_cast<Int16>(wholeNumber(port, "port", host::kFirstPort, host::kLastPort));
        if (!host::mapPort(number, device))
            throw host::UsageError(device.empty() ? "A port needs a device; unmap_port() removes it."
                                                  : "The settings cannot be written; see which folder "
                                                    "KELREADER_REGISTRY_DIR or ~/.config/kelreader is.");
    });
    module.def("unmap_port", [](const py::object& port) {
        return host::unmapPort(static_cast<Int16>(wholeNumber(port, "port", host::kFirstPort, host::kLastPort)));
    });
}

void addSimulation(py::module_& module)
{
    py::class_<SimulatedDevice>(module, "SimulatedDevice")
        .def(py::init([](Int32 model, const py::dict& arguments, const host::Form& form) {
            return std::make_unique<SimulatedDevice>(static_cast<kelReaderType>(model), simulationOf(arguments), form);
        }))
        .def_property_readonly("device", [](const SimulatedDevice& simulated) { return text(simulated.device()); })
        .def("end", [](SimulatedDevice& simulated) { return listOf(simulated.end()); });
    module.def("form_of_sheets", [](Int32 model, const py::dict& arguments) {
        return host::formOfSheets(simulationOf(arguments), static_cast<kelReaderType>(model));
    });
}

} // namespace kel::python
