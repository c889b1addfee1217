// SPDX-License-Identifier: MIT
#include "python/SheetBinding.h"

#include "python/Bindings.h"
#include "python/Values.h"

#include <KELReader81U/host/UsageError.h>
#include <pybind11/numpy.h>

namespace kel::python {

namespace py = pybind11;

namespace {

/// The marks of a side: the sheet's own memory, which lives as long as the array; None for a side without bounds.
py::object arrayOf(const py::object& sheet, const MarkArray& marks)
{
    if (!marks.isDimensioned())
        return py::none();
    py::array_t<Int16> array({marks.rows(), marks.columns()}, marks.elements().data(), sheet);
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return array;
}

py::list linesOf(std::span<const std::string> texts)
{
    py::list lines;
    for (const std::string& words : texts)
        lines.append(lineText(words));
    return lines;
}

std::shared_ptr<ReaderSession> demandInReader(const SheetView& view, const char* what)
{
    std::shared_ptr<ReaderSession> session = view.session.lock();
    if (!session || !view.held->inReader)
        throw host::UsageError("Sheet " + std::to_string(view.held->sheet.number) + " is not in the reader any more; " +
                               what + " works until the loop comes to the next sheet.");
    return session;
}

void reject(const SheetView& view)
{
    demandInReader(view, "reject()")->call([](LiveSource& source) { source.reader.reject(); });
    view.held->sheet.rejected = true;
}

void eject(const SheetView& view)
{
    demandInReader(view, "eject()")->call([](LiveSource& source) { source.reader.eject(); });
}

void print(const SheetView& view, const py::args& lines)
{
    const std::shared_ptr<ReaderSession> session = demandInReader(view, "print()");
    std::vector<std::string> texts;
    for (const py::handle& line : lines)
        texts.push_back(lineBytes(line, "a line to print"));
    const Int16 room = session->call([&](LiveSource& source) {
        clsKELReaderPrinter& printer = *source.reader.object().Printer();
        const Int16 most = printer.Active() ? printer.BufferCount() : Int16{0};
        if (texts.size() > static_cast<std::size_t>(most))
            return most;
        texts.resize(3);
        printer.Buffer1(texts[0]);
        printer.Buffer2(texts[1]);
        printer.Buffer3(texts[2]);
        return most;
    });
    if (room == 0)
        throw host::UsageError("This reader is not set up to print; say printing=True, on a model with a printer.");
    if (py::len(lines) > static_cast<std::size_t>(room))
        throw host::UsageError("This model prints at most " + std::to_string(room) + (room == 1 ? " line" : " lines") +
                               " on a sheet.");
    view.held->toPrint = true;
}

std::string representation(const SheetView& view)
{
    const host::Sheet& sheet = view.held->sheet;
    const auto size = [](const MarkArray& marks) {
        return marks.isDimensioned() ? std::to_string(marks.rows()) + " x " + std::to_string(marks.columns())
                                     : std::string("not read");
    };
    return "<Sheet " + std::to_string(sheet.number) + ": side1 " + size(sheet.side1) + ", side2 " + size(sheet.side2) +
           ">";
}

} // namespace

void addSheet(py::module_& module)
{
    const auto sheet = [](const SheetView& view) -> const host::Sheet& { return view.held->sheet; };
    py::class_<SheetView>(module, "Sheet", "A sheet that was read.")
        .def_property_readonly(
            "number", [=](const SheetView& view) { return sheet(view).number; }, "Its number in the batch, from 1.")
        .def_property_readonly(
            "side1", [=](const py::object& view) { return arrayOf(view, sheet(view.cast<SheetView&>()).side1); },
            "The marks of side 1: an array of int16, rows by columns, 0 for no mark; None if it was not read. It is "
            "the sheet's own memory, so it cannot be written to; copy() makes an array that can.")
        .def_property_readonly(
            "side2", [=](const py::object& view) { return arrayOf(view, sheet(view.cast<SheetView&>()).side2); },
            "The marks of side 2, as side1.")
        .def_property_readonly(
            "side1_timing_marks", [=](const SheetView& view) { return sheet(view).side1TimingMarks; },
            "How many timing marks the reader counted on side 1; -1 if it reported none.")
        .def_property_readonly(
            "side2_timing_marks", [=](const SheetView& view) { return sheet(view).side2TimingMarks; },
            "The same of side 2.")
        .def_property_readonly(
            "read_at",
            [](const SheetView& view) {
                return std::chrono::duration<double>(view.held->readAt.time_since_epoch()).count();
            },
            "When it was read, in the seconds of time.monotonic().")
        .def_property_readonly(
            "barcodes", [=](const SheetView& view) { return linesOf(sheet(view).texts()); },
            "The barcodes, in the order of the form's zones; an empty text for one that was not read.")
        .def_property_readonly(
            "record",
            [=](const SheetView& view) -> py::object {
                if (!sheet(view).record)
                    return py::none();
                return toPython(*sheet(view).record);
            },
            "The named fields, from readers that deliver such, questions under their numbers; None from all others.")
        .def_property_readonly(
            "rejected", [=](const SheetView& view) { return sheet(view).rejected; }, "Whether the sheet was rejected.")
        .def_property_readonly(
            "printed", [=](const SheetView& view) { return sheet(view).printed; },
            "Whether the sheet was printed on; known once the loop has come to the next one.")
        .def_property_readonly(
            "printed_lines", [=](const SheetView& view) { return linesOf(sheet(view).printedLines); },
            "The lines that were printed.")
        .def_property_readonly(
            "in_reader", [](const SheetView& view) { return view.held->inReader && !view.session.expired(); },
            "Whether the sheet can still be rejected or printed on.")
        .def("reject", &reject,
             "Sends the sheet to the reject side. It is not printed on. A sheet is decided on once: further calls, of "
             "eject() too, do nothing.")
        .def("eject", &eject, "Sends the sheet out now; without it, it goes when the next one comes.")
        .def("print", &print,
             py::doc("Has the sheet printed on when the loop goes on, a text a line of the printer. "
                     "The reader has to be made with printing=True."))
        .def("__repr__", &representation);
}

} // namespace kel::python
