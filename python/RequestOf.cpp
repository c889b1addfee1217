// SPDX-License-Identifier: MIT
#include "python/RequestOf.h"

#include "python/Values.h"

#include <KELReader81U/host/UsageError.h>

#include <limits>

namespace kel::python {

namespace py = pybind11;

namespace {

std::string textOf(const py::handle& value, const std::string& name)
{
    if (!py::isinstance<py::str>(value))
        refuse(name, "a text", value);
    return py::cast<std::string>(value);
}

std::vector<std::string> textsOf(const py::handle& value, const std::string& name)
{
    std::vector<std::string> texts;
    for (const py::handle& element : py::cast<py::sequence>(value))
        texts.push_back(textOf(element, name));
    return texts;
}

/// The name of a model, or its number.
host::Model modelOf(const py::handle& value)
{
    if (py::isinstance<py::str>(value))
        return py::cast<std::string>(value);
    return std::to_string(wholeNumber(value, "model", 0, std::numeric_limits<Int16>::max()));
}

} // namespace

host::Request requestOf(const py::dict& arguments)
{
    host::Request request;
    const auto use = [&](const char* name, auto take) {
        if (arguments.contains(name))
            take(py::object(arguments[name]));
    };
    use("model", [&](const py::object& value) { request.model = modelOf(value); });
    use("settings", [&](const py::object& value) {
        const std::string key = textOf(value, "settings");
        request.settings = registryPath(key);
        if (!request.settings)
            throw host::UsageError("'" + key +
                                   "' is not a key of the settings; write HIVE\\SUBKEY with a hive such as HKCU.");
    });
    use("port", [&](const py::object& value) { request.port = static_cast<Int16>(wholeNumber(value, "port", 1, 16)); });
    use("device", [&](const py::object& value) { request.device = textOf(value, "device"); });
    use("form", [&](const py::object& value) { request.form = py::cast<const host::Form&>(value); });
    use("answer_key", [&](const py::object& value) {
        request.answerKey = host::parseAnswerKey(textOf(value, "answer_key"), "the answer key");
    });
    use("answer_key_file",
        [&](const py::object& value) { request.answerKey = host::readAnswerKeyFile(textOf(value, "answer_key")); });
    use("simulated", [&](const py::object& value) { request.simulated = simulationOf(py::cast<py::dict>(value)); });
    use("usb_library", [&](const py::object& value) { request.usbLibrary = textOf(value, "usb_library"); });
    use("trace", [&](const py::object& value) { request.traceFile = textOf(value, "trace"); });
    use("max_sheets", [&](const py::object& value) { request.maxSheets = fromPython<Int32>(value, "max_sheets"); });
    use("printing", [&](const py::object& value) {
        request.print.ownTexts = static_cast<bool>(fromPython<Boolean>(value, "printing"));
    });
    use("print_distance",
        [&](const py::object& value) { request.print.distance = fromPython<Int16>(value, "print_distance"); });
    if (!request.model && !request.settings)
        throw host::UsageError(
            "Which model? Say Reader(\"Scanmark 2500\", ...), or settings=KEY for one that is kept.");
    return request;
}

host::Simulation simulationOf(const py::dict& arguments)
{
    constexpr std::int64_t kMostSheets = 1'000'000; // more than anybody feeds
    host::Simulation simulation;
    const auto use = [&](const char* name, auto take) {
        if (arguments.contains(name))
            take(py::object(arguments[name]));
    };
    use("sheets", [&](const py::object& value) { simulation.sheets = textOf(value, "sheets"); });
    use("seed", [&](const py::object& value) {
        simulation.seed =
            static_cast<std::uint64_t>(wholeNumber(value, "seed", 0, std::numeric_limits<std::int64_t>::max()));
    });
    use("count", [&](const py::object& value) {
        simulation.count = static_cast<std::uint64_t>(wholeNumber(value, "count", 0, kMostSheets));
    });
    use("faults", [&](const py::object& value) { simulation.faults = textsOf(value, "faults"); });
    use("options", [&](const py::object& value) { simulation.settings = textsOf(value, "options"); });
    use("wire_speed", [&](const py::object& value) {
        simulation.unlimited = !static_cast<bool>(fromPython<Boolean>(value, "wire_speed"));
    });
    return simulation;
}

} // namespace kel::python
