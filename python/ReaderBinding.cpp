// SPDX-License-Identifier: MIT
#include "python/Bindings.h"
#include "python/RequestOf.h"
#include "python/SheetBinding.h"
#include "python/Values.h"

#include <KELReader81U/host/Reports.h>
#include <KELReader81U/host/UsageError.h>

namespace kel::python {

namespace py = pybind11;

namespace {

using SharedReader = std::shared_ptr<ReaderSession>;

/// A callback of Python's, which any thread may let go of.
MoreDataAsked moreDataOf(const py::object& callback)
{
    if (callback.is_none())
        return {};
    const std::shared_ptr<py::object> held(new py::object(callback), [](py::object* object) {
        const py::gil_scoped_acquire acquire;
        delete object;
    });
    return [held](const Dictionary& record) {
        const py::gil_scoped_acquire acquire;
        return py::cast<bool>(py::bool_((*held)(toPython(record))));
    };
}

SharedReader makeReader(const py::dict& arguments, const py::object& moreData)
{
    const host::Request request = requestOf(arguments);
    const MoreDataAsked asked = moreDataOf(moreData);
    return std::make_shared<ReaderSession>([&] { return std::make_unique<LiveSource>(request, asked); });
}

py::list reportsOf(const std::vector<host::Failure>& failures)
{
    py::list reports;
    for (const host::Failure& failure : failures)
        reports.append(toPython(failure));
    return reports;
}

/// The result of a search or a question, and what was reported meanwhile.
template <class Ask>
py::tuple asked(ReaderSession& reader, Ask ask)
{
    std::vector<host::Failure> failures;
    const auto answer = reader.call([&](LiveSource& source) {
        auto result = ask(source.reader);
        failures = source.reader.failures();
        return result;
    });
    return py::make_tuple(answer ? toPython(*answer) : py::object(py::none()), reportsOf(failures));
}

/// Loads or saves the settings of a key, with the reports.
py::tuple settings(ReaderSession& reader, const std::string& key, bool load)
{
    const std::optional<RegistryPath> path = registryPath(key);
    if (!path)
        throw host::UsageError("'" + key +
                               "' is not a key of the settings; write HIVE\\SUBKEY with a hive such as HKCU.");
    std::vector<host::Failure> failures;
    const bool done = reader.call([&](LiveSource& source) {
        const host::Reports reports([&](const host::Failure& failure) { failures.push_back(failure); });
        clsKELReader& object = source.reader.object();
        return static_cast<bool>(load ? object.LoadSettings(path->hive, path->subKey)
                                      : object.SaveSettings(path->hive, path->subKey));
    });
    return py::make_tuple(done, reportsOf(failures));
}

using ReaderClass = py::class_<ReaderSession, SharedReader>;

template <class T, class Set>
void addProperty(ReaderClass& reader, const char* name, T (clsKELReader::*get)() const, void (clsKELReader::*set)(Set),
                 const char* doc)
{
    reader.def_property(
        name,
        [get](ReaderSession& session) {
            return toPython(session.call([&](LiveSource& source) { return (source.reader.object().*get)(); }));
        },
        [set, name](ReaderSession& session, const py::object& value) {
            const T wanted = fromPython<T>(value, name);
            session.call([&](LiveSource& source) { (source.reader.object().*set)(wanted); });
        },
        doc);
}

template <class T>
void addReadOnly(ReaderClass& reader, const char* name, T (clsKELReader::*get)() const, const char* doc)
{
    reader.def_property_readonly(
        name,
        [get](ReaderSession& session) {
            return toPython(session.call([&](LiveSource& source) { return (source.reader.object().*get)(); }));
        },
        doc);
}

void addProperties(ReaderClass& reader)
{
    using R = clsKELReader;
    addReadOnly<kelReaderType>(reader, "reader_type", &R::ReaderType, "The model's number.");
    addReadOnly<std::string>(reader, "reader_name", &R::ReaderName, "The model's name.");
    addProperty<Int16, Int16>(reader, "port", &R::Port, &R::Port, "The serial port, 1 to 16.");
    addProperty<kelReaderBaudRate, kelReaderBaudRate>(reader, "baud_rate", &R::BaudRate, &R::BaudRate,
                                                      "The line's speed in baud.");
    addProperty<kelReaderDataBits, kelReaderDataBits>(reader, "data_bits", &R::DataBits, &R::DataBits,
                                                      "The line's data bits.");
    addProperty<std::string, const std::string&>(reader, "parity", &R::Parity, &R::Parity,
                                                 "The line's parity: N, E, O, M or S.");
    addProperty<float, float>(reader, "stop_bits", &R::StopBits, &R::StopBits, "The line's stop bits: 1, 1.5 or 2.");
    addProperty<kelReaderFlowControl, kelReaderFlowControl>(reader, "flow_control", &R::FlowControl, &R::FlowControl,
                                                            "The line's handshaking, a FlowControl.");
    addProperty<Int32, Int32>(reader, "timeout", &R::Timeout, &R::Timeout,
                              "How long the reader may take to answer, in seconds; what is not 1 to 600 becomes 10 at "
                              "the start.");
    addProperty<Int32, Int32>(reader, "sleep_time", &R::SleepTime, &R::SleepTime,
                              "The base of all fixed pauses of the dialogue, in milliseconds; more for a slow reader.");
    addProperty<Boolean, Boolean>(reader, "reader_grade", &R::ReaderGrade, &R::ReaderGrade,
                                  "Whether the reader grades by itself.");
    addProperty<Boolean, Boolean>(reader, "duplex", &R::Duplex, &R::Duplex, "Whether both sides are read.");
    addProperty<Boolean, Boolean>(reader, "duplex_form", &R::DuplexForm, &R::DuplexForm,
                                  "Whether the form has two sides.");
    addProperty<Boolean, Boolean>(reader, "barcode", &R::Barcode, &R::Barcode, "Whether barcodes are read.");
    addProperty<Boolean, Boolean>(reader, "feeder", &R::Feeder, &R::Feeder, "Whether the sheet feeder is used.");
    addProperty<Boolean, Boolean>(reader, "rejecter", &R::Rejecter, &R::Rejecter,
                                  "Whether rejected sheets go to the second output.");
    addProperty<Int16, Int16>(reader, "mark_cut_off", &R::MarkCutOff, &R::MarkCutOff,
                              "The mark cut-off; kept, and read by no driver.");
    addProperty<Int16, Int16>(reader, "mark_discrimination", &R::MarkDiscrimination, &R::MarkDiscrimination,
                              "The mark discrimination of the Sekonic serial readers.");
    addProperty<Int16, Int16>(reader, "recognition_threshold", &R::RecognitionThreshold, &R::RecognitionThreshold,
                              "The recognition threshold, on the scale of the model.");
    addProperty<Boolean, Boolean>(reader, "windowing", &R::Windowing, &R::Windowing,
                                  "Window reading as the options dialog shows it; readers go by recognition_mode.");
    addProperty<kelRecognitionType, kelRecognitionType>(reader, "recognition_mode", &R::RecognitionMode,
                                                        &R::RecognitionMode,
                                                        "Whole pages or read windows, a RecognitionMode.");
}

} // namespace

void addReader(py::module_& module)
{
    ReaderClass reader(module, "Reader", "A reader on a thread of its own.");
    reader.def(py::init(&makeReader))
        .def("next", &nextSheet<ReaderSession>)
        .def("end", &ReaderSession::end)
        .def("close", &ReaderSession::close)
        .def("stop", &ReaderSession::stop)
        .def_property_readonly("is_open", &ReaderSession::isOpen)
        .def("take_notes", [](ReaderSession& session) { return reportsOf(session.takeNotes()); })
        .def("take_faults", [](ReaderSession& session) { return reportsOf(session.takeFaults()); })
        .def("locate",
             [](ReaderSession& session, const py::object& startPort) {
                 const auto start = static_cast<Int16>(wholeNumber(startPort, "start_port", 0, 16));
                 return asked(session, [&](host::Reader& object) { return object.locate(start); });
             })
        .def("firmware",
             [](ReaderSession& session) {
                 return asked(session, [](host::Reader& object) { return object.firmware(); });
             })
        .def("load", [](ReaderSession& session, const std::string& key) { return settings(session, key, true); })
        .def("save", [](ReaderSession& session, const std::string& key) { return settings(session, key, false); })
        .def_property_readonly("form",
                               [](ReaderSession& session) {
                                   return session.call([](LiveSource& source) { return source.reader.form(); });
                               })
        .def("simulator_errors", [](ReaderSession& session) {
            py::list errors;
            for (const std::string& error :
                 session.call([](LiveSource& source) { return source.reader.simulatorErrors(); }))
                errors.append(text(error));
            return errors;
        });
    addProperties(reader);
}

void addReplay(py::module_& module)
{
    using SharedReplay = std::shared_ptr<ReplaySession>;
    py::class_<ReplaySession, SharedReplay>(module, "Replay", "A recorded session on a thread of its own.")
        .def(py::init([](const std::string& words, const std::string& fileName, const host::Form* form) {
            auto replay = std::make_unique<host::Replay>(words, fileName);
            if (form)
                replay->request().form = *form;
            return std::make_shared<ReplaySession>([&] { return std::make_unique<ReplaySource>(std::move(replay)); });
        }))
        .def("next", &nextSheet<ReplaySession>)
        .def("end", &ReplaySession::end)
        .def("close", &ReplaySession::close)
        .def("stop", &ReplaySession::stop)
        .def_property_readonly("is_open", &ReplaySession::isOpen)
        .def("take_notes", [](ReplaySession& session) { return reportsOf(session.takeNotes()); })
        .def("take_faults", [](ReplaySession& session) { return reportsOf(session.takeFaults()); })
        .def_property_readonly("form",
                               [](ReplaySession& session) {
                                   return session.call(
                                       [](ReplaySource& source) { return source.replay->request().form; });
                               })
        .def_property_readonly("differences",
                               [](ReplaySession& session) {
                                   py::list sentences;
                                   for (const std::string& words :
                                        session.call([](ReplaySource& source) { return source.replay->differences(); }))
                                       sentences.append(text(words));
                                   return sentences;
                               })
        .def_property_readonly("unsent", [](ReplaySession& session) {
            return text(session.call([](ReplaySource& source) { return source.replay->unsent(); }));
        });
}

} // namespace kel::python
