// Reads an input as a model: its first byte chooses the format. Whatever it holds, the reader ends
// soon, with a value or with an error.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <pybind11/embed.h>

#include "python/orv/native/models/Element.hpp"
#include "python/orv/native/models/ModelBuilder.hpp"
#include "python/orv/native/models/Places.hpp"
#include "python/orv/native/models/Readers.hpp"
#include "python/orv/native/models/SourceText.hpp"

namespace {

void readXml(const std::string& data) {
  const orv::Element root(std::make_shared<const orv::XmlModel>(data, "model"),
                          orv::XmlDocument::root);
  root.children();
  root.attributes();
  root.text();
}

void readText(char format, const std::string& data) {
  orv::Places places;
  orv::ModelRemarks warnings;
  orv::ModelRemarks repeatedNames;
  orv::ModelBuilder builder(&places, places.addFile("model"), repeatedNames);
  const std::string_view text = orv::sourceText(data);
  if (format == 'j') orv::readJson(text, builder);
  if (format == 'y') orv::readYaml(text, builder, warnings);
  if (format == 't') orv::readToml(text, builder);
  if (format == 'c') orv::readCsv(text, builder);
  builder.finish();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  ::setenv("PYTHONMALLOC", "malloc", 1);
  pybind11::initialize_interpreter();
  pybind11::class_<orv::Element>(pybind11::module_::import("__main__"), "Element");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  if (size == 0) return 0;
  const std::string data(reinterpret_cast<const char*>(input) + 1, size - 1);
  const char format = "jytcx"[input[0] % 5];
  try {
    if (format == 'x') {
      readXml(data);
    } else {
      readText(format, data);
    }
  } catch (const orv::ModelError&) {
    return 0;
  } catch (pybind11::error_already_set& error) {
    if (!error.matches(PyExc_MemoryError)) throw;
  }
  return 0;
}
