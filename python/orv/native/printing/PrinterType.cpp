// The Python class Printer. Compiled templates call it for every piece of text, so that it is a
// plain type of the interpreter: its methods take their arguments without conversion.

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <orbel/Diagnostics.hpp>

#include "python/orv/native/Bindings.hpp"
#include "python/orv/native/SectionNames.hpp"
#include "python/orv/native/Text.hpp"
#include "python/orv/native/printing/NamedFiles.hpp"
#include "python/orv/native/printing/Printer.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// Where tags are, as numbers.
class TagTable {
 public:
  // The number of a position, the same for the same object.
  std::size_t numberOf(PyObject* position) {
    const auto [known, isNew] = numbers_.try_emplace(position, positions_.size());
    if (isNew) positions_.push_back(py::reinterpret_borrow<py::object>(position));
    return known->second;
  }
  const py::object& position(std::size_t number) const { return positions_[number]; }

  int visitPositions(visitproc visit, void* arg) const {
    for (const py::object& known : positions_) Py_VISIT(known.ptr());
    return 0;
  }
  void clear() {
    numbers_.clear();
    positions_.clear();
  }

 private:
  std::vector<py::object> positions_;
  std::unordered_map<PyObject*, std::size_t> numbers_;
};

struct PrinterObject {
  PyObject_HEAD Printer* printer;
  // Functions of the template side; see _native.pyi.
  PyObject* textOf;
  PyObject* refuse;
  PyObject* find;
  PyObject* repeated;
  TagTable* tags;
  NamedFiles* found;
  // Whether the next enter() opens no capture, as what it encloses is printed as it is.
  bool printsNext;
  // The position of the argument that write() failed on; -1 for none.
  Py_ssize_t failedArgument;
};

using Arguments = PyObject* const*;

PrinterObject& objectOf(PyObject* self) { return *reinterpret_cast<PrinterObject*>(self); }
Printer& printerOf(PyObject* self) { return *objectOf(self).printer; }

Trace& traceOf(PyObject* self) {
  const std::shared_ptr<Trace>& trace = printerOf(self).files().trace;
  if (!trace) throw py::value_error("the run is not traced");
  return *trace;
}

// Calls `operation` and turns what it throws into a Python exception; the result is null then.
template <class Operation>
PyObject* guarded(Operation&& operation) {
  try {
    return operation();
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (const py::builtin_exception& error) {
    error.set_error();
  } catch (const orbel::HostException& diagnostic) {
    raiseDiagnostic(diagnostic);
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  }
  return nullptr;
}

PyObject* none() { return Py_NewRef(Py_None); }

void requireCount(const char* method, Py_ssize_t count, Py_ssize_t least, Py_ssize_t most) {
  if (count >= least && count <= most) return;
  throw py::type_error(std::string(method) + "() got " + std::to_string(count) + " arguments");
}

long numberArgument(PyObject* value) {
  const long number = PyLong_AsLong(value);
  if (number == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  return number;
}

int fileArgument(PyObject* value) {
  const long file = numberArgument(value);
  if (file < -1 || file > INT_MAX) throw py::value_error("there is no such file");
  return static_cast<int>(file);
}

int sectionArgument(PyObject* section) {
  if (!PyLong_CheckExact(section)) return sectionNumber(utf8(section, "a section's name"));
  const long number = numberArgument(section);
  if (number < 0 || number > textSection) {
    throw py::value_error("there is no section number " + std::to_string(number));
  }
  return static_cast<int>(number);
}

// Calls a function of the template side.
py::object call(PyObject* function, PyObject* argument) {
  if (function == nullptr) throw py::value_error("the printer is gone");
  auto result = py::reinterpret_steal<py::object>(PyObject_CallOneArg(function, argument));
  if (!result) throw py::error_already_set();
  return result;
}

// The file that a tag means by what it names, `arguments[at]` if it is there, or by what it is in.
int targetOf(PrinterObject& self, Arguments arguments, Py_ssize_t count, Py_ssize_t at) {
  if (at >= count || arguments[at] == Py_None) {
    const int current = self.printer->top().current;
    if (current >= 0) return current;
    return fileArgument(call(self.find, Py_None).ptr());
  }
  if (PyUnicode_CheckExact(arguments[at])) {
    const int file = self.found->find(self.printer->files(), arguments[at]);
    if (file >= 0) return file;
  }
  return fileArgument(call(self.find, arguments[at]).ptr());
}

// Appends the UTF-8 form of a text that is not ASCII. The text keeps no copy of it.
void appendEncoded(std::string& bytes, PyObject* text) {
  const Py_ssize_t length = PyUnicode_GET_LENGTH(text);
  const int kind = PyUnicode_KIND(text);
  const void* data = PyUnicode_DATA(text);
  for (Py_ssize_t i = 0; i < length; ++i) {
    const Py_UCS4 c = PyUnicode_READ(kind, data, i);
    if (c >= 0xD800 && c <= 0xDFFF) {
      throw py::value_error(
          "the text of a section holds a lone surrogate, which UTF-8 cannot express");
    }
    if (c < 0x80) {
      bytes += static_cast<char>(c);
      continue;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr unsigned char leads[] = {0, 0xC0, 0xE0, 0xF0};
    bytes += static_cast<char>(leads[more] | (c >> (6 * more)));
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6) {
      bytes += static_cast<char>(0x80 | ((c >> shift) & 0x3F));
    }
  }
}

void requireNoNul(std::string_view bytes) {
  if (bytes.find('\0') == std::string_view::npos) return;
  throw py::value_error("the text holds a NUL character, which no file of text can hold");
}

// Text outside of every section: white space is dropped, the template side refuses all else.
void printOutside(PrinterObject& self, PyObject* text) {
  const bool isBlank = PyUnicode_IS_COMPACT_ASCII(text) &&
                       asciiOf(text).find_first_not_of(" \t\n\r\f\v") == std::string_view::npos;
  if (!isBlank) call(self.refuse, text);
}

void printText(PrinterObject& self, PyObject* text) {
  Body& body = self.printer->top();
  if (body.kind == Body::Kind::outside) {
    printOutside(self, text);
  } else if (PyUnicode_IS_COMPACT_ASCII(text)) {
    requireNoNul(asciiOf(text));
    body.text.append(asciiOf(text));
  } else {
    const std::size_t before = body.text.size();
    appendEncoded(body.text, text);
    requireNoNul(std::string_view(body.text).substr(before));
  }
}

// A float, or an int that is too large for a long.
void printRare(PrinterObject& self, PyObject* number) {
  const auto text = py::reinterpret_steal<py::object>(PyObject_Str(number));
  if (!text) throw py::error_already_set();
  printText(self, text.ptr());
}

void printInt(PrinterObject& self, PyObject* number) {
  Body& body = self.printer->top();
  int overflow = 0;
  const long value = PyLong_AsLongAndOverflow(number, &overflow);
  if (overflow != 0 || body.kind == Body::Kind::outside) {
    printRare(self, number);
    return;
  }
  char digits[24];
  const char* end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
  body.text.append(digits, static_cast<std::size_t>(end - digits));
}

void print(PrinterObject& self, PyObject* value) {
  if (PyUnicode_CheckExact(value)) {
    printText(self, value);
  } else if (PyLong_CheckExact(value)) {
    printInt(self, value);
  } else if (PyFloat_CheckExact(value) && std::isfinite(PyFloat_AS_DOUBLE(value))) {
    printRare(self, value);
  } else {
    const py::object text = call(self.textOf, value);
    if (!PyUnicode_Check(text.ptr())) throw py::type_error("a value was made no text of");
    printText(self, text.ptr());
  }
}

PyObject* write(PyObject* self, Arguments arguments, Py_ssize_t count) {
  PrinterObject& object = objectOf(self);
  return guarded([&] {
    const std::size_t before = object.printer->top().text.size();
    for (Py_ssize_t i = 0; i < count; ++i) {
      object.failedArgument = i;
      print(object, arguments[i]);
    }
    object.printer->count(object.printer->top().text.size() - before);
    object.failedArgument = -1;
    return none();
  });
}

// Whether the text of a body goes where it came from is known.
bool isTraced(Body::Kind kind) {
  return kind != Body::Kind::outside && kind != Body::Kind::capture;
}

// write() for a run that is traced: the last argument is the site of the first one, the sites of
// the others follow it.
PyObject* writeTraced(PyObject* self, Arguments arguments, Py_ssize_t count) {
  PrinterObject& object = objectOf(self);
  return guarded([&] {
    requireCount("write_traced", count, 1, PY_SSIZE_T_MAX);
    auto site = static_cast<std::uint32_t>(numberArgument(arguments[count - 1]));
    traceOf(self).ran(site);
    for (Py_ssize_t i = 0; i + 1 < count; ++i) {
      Body& body = object.printer->top();
      const std::size_t before = body.text.size();
      object.failedArgument = i;
      print(object, arguments[i]);
      const std::size_t size = body.text.size() - before;
      object.printer->count(size);
      if (size != 0 && isTraced(body.kind)) {
        body.traced.ranges.append(size, {site, traceOf(self).links().current()});
      }
      ++site;
    }
    object.failedArgument = -1;
    return none();
  });
}

// Enters the site and label, each a number. The result is for leaveLink().
PyObject* enterLink(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("enter_link", count, 2, 2);
    const auto site = static_cast<std::uint32_t>(numberArgument(arguments[0]));
    traceOf(self).ran(site);
    Links& links = traceOf(self).links();
    const std::size_t depth = links.depth();
    links.enter(site, static_cast<std::uint32_t>(numberArgument(arguments[1])));
    return PyLong_FromSize_t(depth);
  });
}

// Enters the body of a loop: its site, the element at hand, what it iterates over, and at which
// position of it, or -1. The result is for leaveLink().
PyObject* enterLoop(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("enter_loop", count, 4, 4);
    const auto site = static_cast<std::uint32_t>(numberArgument(arguments[0]));
    traceOf(self).ran(site);
    Links& links = traceOf(self).links();
    const std::size_t depth = links.depth();
    links.enterLoop(site, py::reinterpret_borrow<py::object>(arguments[1]),
                    py::reinterpret_borrow<py::object>(arguments[2]), numberArgument(arguments[3]));
    return PyLong_FromSize_t(depth);
  });
}

PyObject* leaveLink(PyObject* self, PyObject* depth) {
  return guarded([&] {
    traceOf(self).leaveTo(static_cast<std::size_t>(numberArgument(depth)));
    return none();
  });
}

PyObject* section(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("section", count, 1, 2);
    const int file = targetOf(objectOf(self), arguments, count, 1);
    printerOf(self).openSection(file, sectionArgument(arguments[0]));
    return none();
  });
}

PyObject* function(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("function", count, 3, 3);
    const int file = targetOf(objectOf(self), arguments, count, 1);
    printerOf(self).openFunction(file, utf8WithoutNul(arguments[0], "a function's name"),
                                 objectOf(self).tags->numberOf(arguments[2]));
    return none();
  });
}

// Tells the template side of a function whose name another one of its file has.
void reportRepeated(const PrinterObject& self, const Body& function, std::size_t first) {
  if (self.repeated == nullptr) return;
  py::handle(self.repeated)(function.file, toPython(function.name), self.tags->position(first));
}

PyObject* fill(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("fill", count, 1, 2);
    const int file = targetOf(objectOf(self), arguments, count, 1);
    printerOf(self).openFill(file, utf8WithoutNul(arguments[0], "a custom section's name"));
    return none();
  });
}

PyObject* outside(PyObject* self, PyObject*) {
  return guarded([&] {
    Printer& printer = printerOf(self);
    printer.openOutside(printer.top().current);
    return none();
  });
}

PyObject* file(PyObject* self, PyObject* index) {
  return guarded([&] {
    printerOf(self).openFile(fileArgument(index));
    return none();
  });
}

PyObject* bound(PyObject* self, PyObject* bytes) {
  return guarded([&] {
    const std::size_t most = PyLong_AsSize_t(bytes);
    if (PyErr_Occurred() != nullptr) throw py::error_already_set();
    printerOf(self).bound(most);
    return none();
  });
}

PyObject* target(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("target", count, 0, 1);
    return PyLong_FromLong(targetOf(objectOf(self), arguments, count, 0));
  });
}

PyObject* close(PyObject* self, PyObject*) {
  return guarded([&] {
    printerOf(self).close();
    return none();
  });
}

PyObject* closeFill(PyObject* self, PyObject*) {
  return guarded([&] {
    const Body& body = printerOf(self).close();
    const std::shared_ptr<Trace>& trace = printerOf(self).files().trace;
    if (trace) trace->fill(body.file, body.name, body.traced.ranges);
    return py::make_tuple(body.file, toPython(body.name), toPython(body.text)).release().ptr();
  });
}

PyObject* printNext(PyObject* self, PyObject*) {
  objectOf(self).printsNext = true;
  return none();
}

// The depth of the capture that is opened; 0 for none.
PyObject* enter(PyObject* self, PyObject*) {
  PrinterObject& object = objectOf(self);
  if (std::exchange(object.printsNext, false)) return PyLong_FromLong(0);
  return guarded([&] {
    object.printer->openCapture();
    return PyLong_FromSize_t(object.printer->depth());
  });
}

PyObject* leave(PyObject* self, PyObject* entered) {
  return guarded([&]() -> PyObject* {
    const long depth = numberArgument(entered);
    if (depth == 0) return PyUnicode_New(0, 0);
    Printer& printer = printerOf(self);
    if (static_cast<std::size_t>(depth) != printer.depth()) {
      throw py::value_error("the captures are not closed in the order in which they were opened");
    }
    return toPython(printer.close().text).release().ptr();
  });
}

// An indentation as two arguments give it: the text in front of lines, and whether directives get
// it too.
Indentation indentationOf(Arguments arguments) {
  std::string lines = textArgument(arguments[0], "an indentation");
  if (lines.size() > Indentation::longest) {
    throw py::value_error("an indentation has at most " + std::to_string(Indentation::longest) +
                          " characters, not " + std::to_string(lines.size()));
  }
  const int indentsDirectives = PyObject_IsTrue(arguments[1]);
  if (indentsDirectives < 0) throw py::error_already_set();
  return {lines, indentsDirectives != 0 ? lines : std::string()};
}

PyObject* indent(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("indent", count, 2, 2);
    printerOf(self).openIndent(indentationOf(arguments));
    return none();
  });
}

PyObject* user(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("user", count, 2, 3);
    const long site = count == 3 ? numberArgument(arguments[2]) : 0;
    printerOf(self).openUser(utf8WithoutNul(arguments[0], "a marker"),
                             textArgument(arguments[1], "a marker"),
                             static_cast<std::uint32_t>(site));
    return none();
  });
}

PyObject* place(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("place", count, 3, 3);
    const long placement = numberArgument(arguments[0]);
    if (placement < 0) throw py::value_error("there is no such placement");
    printerOf(self).place(static_cast<std::size_t>(placement), indentationOf(arguments + 1));
    return none();
  });
}

PyObject* isWaiting(PyObject* self, Arguments arguments, Py_ssize_t count) {
  return guarded([&] {
    requireCount("is_waiting", count, 2, 2);
    const int file = fileArgument(arguments[0]);
    return PyBool_FromLong(
        static_cast<long>(printerOf(self).isWaiting(file, sectionArgument(arguments[1]))));
  });
}

PyObject* finish(PyObject* self, PyObject* retrieve) {
  return guarded([&] {
    const auto placer = py::reinterpret_borrow<py::object>(retrieve);
    printerOf(self).finish([&](std::size_t number, const Body& body) {
      const int section = sectionNumber(printerOf(self).files(), body.file, body.section);
      const std::string& name = sectionNames()[static_cast<std::size_t>(section)];
      const py::object text = placer(number, body.file, toPython(name));
      return textArgument(text, "the text of a custom section");
    });
    return none();
  });
}

PyObject* nameOf(Body::Kind kind) {
  constexpr const char* names[] = {"outside", "section", "function", "fill",
                                   "capture", "indent",  "user"};
  return PyUnicode_FromString(names[static_cast<std::size_t>(kind)]);
}

PyObject* getKind(PyObject* self, void*) { return nameOf(printerOf(self).top().kind); }

PyObject* getDestination(PyObject* self, void*) {
  return nameOf(printerOf(self).destination().kind);
}

PyObject* getDestinationFile(PyObject* self, void*) {
  return PyLong_FromLong(printerOf(self).destination().file);
}

PyObject* getIsInUser(PyObject* self, void*) {
  return PyBool_FromLong(static_cast<long>(printerOf(self).isInUser()));
}

PyObject* getDepth(PyObject* self, void*) { return PyLong_FromSize_t(printerOf(self).depth()); }

PyObject* getFailedArgument(PyObject* self, void*) {
  return PyLong_FromSsize_t(objectOf(self).failedArgument);
}

PyObject* create(PyTypeObject* type, PyObject* arguments, PyObject* named) {
  PyObject* files = nullptr;
  PyObject* textOf = nullptr;
  PyObject* refuse = nullptr;
  PyObject* find = nullptr;
  PyObject* repeated = nullptr;
  constexpr const char* names[] = {"files", "text_of", "refuse", "find", "repeated", nullptr};
  if (PyArg_ParseTupleAndKeywords(arguments, named, "OOOOO:Printer", const_cast<char**>(names),
                                  &files, &textOf, &refuse, &find, &repeated) == 0) {
    return nullptr;
  }
  return guarded([&]() -> PyObject* {
    std::shared_ptr<PackagedFiles> repository;
    if (py::isinstance<PackagedFiles>(files)) {
      repository = py::cast<std::shared_ptr<PackagedFiles>>(files);
    } else {
      throw py::type_error("expected a Repository");
    }
    auto tags = std::make_unique<TagTable>();
    auto found = std::make_unique<NamedFiles>();
    PyObject* self = type->tp_alloc(type, 0);
    if (self == nullptr) return nullptr;
    const auto owner = py::reinterpret_steal<py::object>(self);
    PrinterObject& object = objectOf(self);
    object.tags = tags.release();
    object.found = found.release();
    object.printer = new Printer(
        std::move(repository),
        [&object](const Body& body, std::size_t first) { reportRepeated(object, body, first); });
    object.textOf = Py_NewRef(textOf);
    object.refuse = Py_NewRef(refuse);
    object.find = Py_NewRef(find);
    object.repeated = Py_NewRef(repeated);
    object.failedArgument = -1;
    return py::object(owner).release().ptr();
  });
}

int traverse(PyObject* self, visitproc visit, void* arg) {
  const PrinterObject& object = objectOf(self);
  Py_VISIT(Py_TYPE(self));
  Py_VISIT(object.textOf);
  Py_VISIT(object.refuse);
  Py_VISIT(object.find);
  Py_VISIT(object.repeated);
  return object.tags == nullptr ? 0 : object.tags->visitPositions(visit, arg);
}

int clear(PyObject* self) {
  PrinterObject& object = objectOf(self);
  Py_CLEAR(object.textOf);
  Py_CLEAR(object.refuse);
  Py_CLEAR(object.find);
  Py_CLEAR(object.repeated);
  if (object.tags != nullptr) object.tags->clear();
  return 0;
}

void destroy(PyObject* self) {
  PyTypeObject* type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  static_cast<void>(clear(self));
  delete objectOf(self).printer;
  delete objectOf(self).tags;
  delete objectOf(self).found;
  type->tp_free(self);
  Py_DECREF(type);
}

// A method that takes its arguments as an array.
PyMethodDef method(const char* name, PyObject* (*call)(PyObject*, Arguments, Py_ssize_t)) {
  return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(call)), METH_FASTCALL,
          nullptr};
}

PyMethodDef methods[] = {
    method("write", &write),
    method("write_traced", &writeTraced),
    method("enter_link", &enterLink),
    method("enter_loop", &enterLoop),
    {"leave_link", &leaveLink, METH_O, nullptr},
    method("section", &section),
    method("function", &function),
    method("fill", &fill),
    method("indent", &indent),
    method("place", &place),
    method("user", &user),
    method("target", &target),
    method("is_waiting", &isWaiting),
    {"bound", &bound, METH_O, nullptr},
    {"file", &file, METH_O, nullptr},
    {"outside", &outside, METH_NOARGS, nullptr},
    {"close", &close, METH_NOARGS, nullptr},
    {"close_fill", &closeFill, METH_NOARGS, nullptr},
    {"print_next", &printNext, METH_NOARGS, nullptr},
    {"enter", &enter, METH_NOARGS, nullptr},
    {"leave", &leave, METH_O, nullptr},
    {"finish", &finish, METH_O, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyGetSetDef properties[] = {
    {"kind", &getKind, nullptr, nullptr, nullptr},
    {"destination", &getDestination, nullptr, nullptr, nullptr},
    {"destination_file", &getDestinationFile, nullptr, nullptr, nullptr},
    {"is_in_user", &getIsInUser, nullptr, nullptr, nullptr},
    {"depth", &getDepth, nullptr, nullptr, nullptr},
    {"failed_argument", &getFailedArgument, nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

PyType_Slot slots[] = {
    {Py_tp_new, reinterpret_cast<void*>(&create)},
    {Py_tp_dealloc, reinterpret_cast<void*>(&destroy)},
    {Py_tp_traverse, reinterpret_cast<void*>(&traverse)},
    {Py_tp_clear, reinterpret_cast<void*>(&clear)},
    {Py_tp_methods, methods},
    {Py_tp_getset, properties},
    {0, nullptr},
};

PyType_Spec spec = {"orv._native.Printer", sizeof(PrinterObject), 0,
                    Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC, slots};

}  // namespace

void bindPrinter(py::module_& module) {
  const auto type = py::reinterpret_steal<py::object>(PyType_FromSpec(&spec));
  if (!type) throw py::error_already_set();
  module.attr("Printer") = type;
  module.attr("LONGEST_INDENTATION") = Indentation::longest;
}

}  // namespace orv
