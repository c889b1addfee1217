// SPDX-License-Identifier: MIT
#include "python/Values.h"

#include <KELReader81U/host/ReaderAdvice.h>
#include <KELReader81U/host/UsageError.h>

#include <variant>
#include <vector>

namespace kel::python {

namespace py = pybind11;

py::str text(const std::string& utf8)
{
    PyObject* const decoded = PyUnicode_DecodeUTF8(utf8.data(), static_cast<Py_ssize_t>(utf8.size()), "strict");
    if (decoded)
        return py::reinterpret_steal<py::str>(decoded);
    PyErr_Clear(); // a reader's own words, within a text of the database
    return lineText(utf8);
}

py::str lineText(const std::string& bytes)
{
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeLatin1(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "strict"));
}

std::string lineBytes(const py::handle& value, const char* what)
{
    if (PyUnicode_Check(value.ptr())) {
        const auto bytes = py::reinterpret_steal<py::object>(PyUnicode_AsLatin1String(value.ptr()));
        if (bytes)
            return py::cast<std::string>(bytes);
        PyErr_Clear();
    }
    refuse(what, "a text of the characters of Latin-1", value);
}

py::object toPython(const host::FieldValue& value)
{
    if (const auto* truth = std::get_if<bool>(&value))
        return py::bool_(*truth);
    if (const auto* number = std::get_if<Int32>(&value))
        return py::int_(*number);
    if (const auto* words = std::get_if<std::string>(&value))
        return text(*words);
    return py::none();
}

py::dict toPython(const Dictionary& record)
{
    const auto key = [](const DictionaryKey& wanted) -> py::object {
        if (const auto* number = std::get_if<Int32>(&wanted))
            return py::int_(*number);
        return lineText(std::get<std::string>(wanted));
    };
    const auto item = [](const DictionaryItem& wanted) -> py::object {
        if (const auto* number = std::get_if<Int32>(&wanted))
            return py::int_(*number);
        if (const auto* words = std::get_if<std::string>(&wanted))
            return lineText(*words);
        return py::none();
    };
    py::dict fields;
    const std::vector<DictionaryKey> keys = record.Keys();
    const std::vector<DictionaryItem> items = record.Items();
    for (std::size_t i = 0; i < keys.size(); ++i)
        fields[key(keys[i])] = item(items[i]);
    return fields;
}

py::dict toPython(const host::Failure& failure)
{
    // A report about a port knows more than the page for operators.
    const host::AdviceRow* const advice = host::adviceOn(failure);
    std::string cause = advice ? advice->cause : "";
    std::string remedy = advice ? advice->remedy : "";
    if (!failure.cause.empty())
        cause = (failure.device.empty() ? "Port " + std::to_string(failure.port) : failure.device) + " " +
                failure.cause + ".";
    if (!failure.remedy.empty())
        remedy = failure.remedy;
    py::dict report;
    report["number"] = failure.number;
    report["type"] = failure.type;
    report["title"] = text(failure.title);
    report["source"] = text(failure.source);
    report["description"] = text(failure.description);
    report["line"] = failure.line;
    report["port"] = failure.port;
    report["device"] = text(failure.device);
    report["cause"] = text(cause);
    report["remedy"] = text(remedy);
    report["sentence"] = text(host::failureSentence(failure));
    return report;
}

void refuse(const std::string& what, const std::string& wanted, const py::handle& value)
{
    throw host::UsageError(what + " has to be " + wanted + ", not " + py::cast<std::string>(py::repr(value)) + ".");
}

std::int64_t wholeNumber(const py::handle& value, const char* what, std::int64_t lowest, std::int64_t highest)
{
    // A truth value is a number of Python's, and none of a reader's.
    if (!PyBool_Check(value.ptr()) && PyIndex_Check(value.ptr())) {
        const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
        const long long number = index ? PyLong_AsLongLong(index.ptr()) : -1;
        if (!PyErr_Occurred() && number >= lowest && number <= highest)
            return number;
        PyErr_Clear();
    }
    refuse(what, "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest), value);
}

} // namespace kel::python
