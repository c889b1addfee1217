// SPDX-License-Identifier: MIT
#include "python/Bindings.h"
#include "python/SheetBinding.h"
#include "python/Values.h"

#include <pybind11/numpy.h>

#include <limits>

namespace kel::python {

namespace py = pybind11;

namespace {

/// The published object of a reader, and its printer, with their own names for what the reader's class leaves out.
struct RawReader {
    std::shared_ptr<ReaderSession> session;

    template <class Use>
    auto use(Use wanted) const
    {
        return session->call([&](LiveSource& source) { return wanted(source.reader.object()); });
    }
};

struct RawPrinter {
    std::shared_ptr<ReaderSession> session;

    template <class Use>
    auto use(Use wanted) const
    {
        return session->call([&](LiveSource& source) { return wanted(*source.reader.object().Printer()); });
    }
};

/// A copy of the marks: the reader keeps its own.
py::object arrayOf(const MarkArray& marks)
{
    if (!marks.isDimensioned())
        return py::none();
    return py::array_t<Int16>({marks.rows(), marks.columns()}, marks.elements().data());
}

/// Sizes page by page; an array without bounds is an empty list.
py::list listOf(const PageArray& sizes)
{
    py::list list;
    for (Int32 page = 1; sizes.isDimensioned() && page <= sizes.UBound(); ++page)
        list.append(sizes(page));
    return list;
}

PageArray pagesOf(const py::handle& value, const char* what)
{
    if (!py::isinstance<py::sequence>(value) || py::isinstance<py::str>(value))
        refuse(what, "a list of sizes, one a page", value);
    std::vector<Int16> sizes;
    for (const py::handle& size : py::cast<py::sequence>(value))
        sizes.push_back(static_cast<Int16>(wholeNumber(size, what, 0, std::numeric_limits<Int16>::max())));
    return PageArray::of(1, std::move(sizes));
}

template <class Owner, class Object, class T>
void addReadOnly(py::class_<Owner>& owner, const char* name, T (Object::*get)() const)
{
    owner.def_property_readonly(name, [get](const Owner& raw) {
        const auto value = raw.use([&](Object& object) { return (object.*get)(); });
        if constexpr (std::is_same_v<T, MarkArray>)
            return arrayOf(value);
        else
            return toPython(value);
    });
}

template <class T, class Owner, class Object, class Set>
void addProperty(py::class_<Owner>& owner, const char* name, T (Object::*get)() const, void (Object::*set)(Set))
{
    owner.def_property(
        name, [get](const Owner& raw) { return toPython(raw.use([&](Object& object) { return (object.*get)(); })); },
        [set, name](const Owner& raw, const py::object& value) {
            const T wanted = fromPython<T>(value, name);
            raw.use([&](Object& object) { (object.*set)(wanted); });
        });
}

void addPages(py::class_<RawReader>& reader, const char* name, PageArray (clsKELReader::*get)() const,
              void (clsKELReader::*set)(const PageArray&))
{
    reader.def_property(
        name,
        [get](const RawReader& raw) { return listOf(raw.use([&](clsKELReader& object) { return (object.*get)(); })); },
        [set, name](const RawReader& raw, const py::object& value) {
            const PageArray wanted = pagesOf(value, name);
            raw.use([&](clsKELReader& object) { (object.*set)(wanted); });
        });
}

py::list windowsOf(const RawReader& raw)
{
    struct Row {
        const char* name;
        Int16 (clsKELReaderWindow::*get)() const;
    };
    using W = clsKELReaderWindow;
    constexpr Row kRows[] = {{"StartRow", &W::StartRow}, {"NumRows", &W::NumRows},
                             {"RowGap", &W::RowGap},     {"StartCol", &W::StartCol},
                             {"NumCols", &W::NumCols},   {"ColGap", &W::ColGap},
                             {"Page", &W::Page},         {"Orientation", &W::Orientation},
                             {"NumItems", &W::NumItems}, {"NumChoices", &W::NumChoices}};
    const auto windows = raw.use([](clsKELReader& object) {
        std::vector<clsKELReaderWindow> all;
        for (Int32 i = 1; i <= object.Windows()->Count(); ++i)
            all.push_back(*object.Windows()->Item(i));
        return all;
    });
    py::list list;
    for (const clsKELReaderWindow& window : windows) {
        py::dict record;
        for (const Row& row : kRows)
            record[row.name] = (window.*row.get)();
        list.append(record);
    }
    return list;
}

void addPrinter(py::module_& module)
{
    using P = clsKELReaderPrinter;
    py::class_<RawPrinter> printer(module, "RawPrinter", "The printer of the published object, with its own names.");
    addProperty<Boolean, RawPrinter, P, Boolean>(printer, "Enabled", &P::Enabled, &P::Enabled);
    addProperty<Boolean, RawPrinter, P, Boolean>(printer, "Active", &P::Active, &P::Active);
    addProperty<std::string, RawPrinter, P, const std::string&>(printer, "Buffer1", &P::Buffer1, &P::Buffer1);
    addProperty<std::string, RawPrinter, P, const std::string&>(printer, "Buffer2", &P::Buffer2, &P::Buffer2);
    addProperty<std::string, RawPrinter, P, const std::string&>(printer, "Buffer3", &P::Buffer3, &P::Buffer3);
    addProperty<Int16, RawPrinter, P, Int16>(printer, "Distance", &P::Distance, &P::Distance);
    addReadOnly<RawPrinter, P, Int16>(printer, "BufferCount", &P::BufferCount);
    addReadOnly<RawPrinter, P, Int16>(printer, "FilledBufferCount", &P::FilledBufferCount);
    addReadOnly<RawPrinter, P, Int32>(printer, "MinPosition", &P::MinPosition);
    addReadOnly<RawPrinter, P, Int32>(printer, "MaxPosition", &P::MaxPosition);
    addReadOnly<RawPrinter, P, Int32>(printer, "MaxCharacters", &P::MaxCharacters);
}

} // namespace

void addRawReader(py::module_& module)
{
    using R = clsKELReader;
    addPrinter(module);
    py::class_<RawReader> reader(
        module, "RawReader",
        "What the reader's class leaves out of the published object, with its own names and manners.");
    reader.def(py::init([](const std::shared_ptr<ReaderSession>& session) { return RawReader{session}; }))
        .def_property_readonly("Printer", [](const RawReader& raw) { return RawPrinter{raw.session}; })
        .def_property_readonly("Windows", &windowsOf)
        .def("LoadDefaults", [](const RawReader& raw, const py::object& type) {
            const auto wanted = fromPython<kelReaderType>(type, "eReaderType");
            return toPython(raw.use([&](clsKELReader& object) { return object.LoadDefaults(wanted); }));
        });
    addReadOnly<RawReader, R, Boolean>(reader, "CancelScan", &R::CancelScan);
    addProperty<std::string, RawReader, R, const std::string&>(reader, "HelpFile", &R::HelpFile, &R::HelpFile);
    addReadOnly<RawReader, R, MarkArray>(reader, "Side1Array", &R::Side1Array);
    addReadOnly<RawReader, R, MarkArray>(reader, "Side2Array", &R::Side2Array);
    addReadOnly<RawReader, R, Int16>(reader, "Side1TimingMarks", &R::Side1TimingMarks);
    addReadOnly<RawReader, R, Int16>(reader, "Side2TimingMarks", &R::Side2TimingMarks);
    addPages(reader, "Side1Rows", &R::Side1Rows, &R::Side1Rows);
    addPages(reader, "Side1Cols", &R::Side1Cols, &R::Side1Cols);
    addPages(reader, "Side2Rows", &R::Side2Rows, &R::Side2Rows);
    addPages(reader, "Side2Cols", &R::Side2Cols, &R::Side2Cols);
}

} // namespace kel::python
