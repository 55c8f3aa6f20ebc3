#ifndef ORV_TEXTSINK_HPP
#define ORV_TEXTSINK_HPP

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <pybind11/pybind11.h>

#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"

namespace orv {

// Where the text of templates enters the library: it knows the file that is being written and puts
// text into that file's sections. One call per piece of text, whatever the number of files.
//
// Text that contains a NUL is not ready: something is to be put in its place at the end. It is
// handed to `defer(file, section, text, function)` instead, and so is everything that comes for the
// same section later, so that its order stays; `function` is None for plain text.
class TextSink {
 public:
  // Keeps `files` alive and calls `defer` as long as it lives.
  TextSink(std::shared_ptr<PackagedFiles> files, pybind11::object defer);

  // The index of the file being written; -1 for none. Any other index throws the library's
  // diagnostic.
  int current() const { return current_; }
  void select(int index);

  // Append to the current file, or to the file `index`. Throw pybind11::value_error when there is
  // no current file or the file has no such section.
  void append(pybind11::handle text, pybind11::handle section);
  void appendTo(pybind11::handle text, pybind11::handle section, int index);
  void addFunction(pybind11::handle body, pybind11::handle name);
  void addFunctionTo(pybind11::handle body, pybind11::handle name, int index);

  bool isDeferred(int index, Varn::VarnFileSectionKind kind) const;
  // From now on text goes straight into the library again.
  void stopDeferring() { deferred_.clear(); }

 private:
  int requireCurrent() const;
  bool deferIfNotReady(int index, Varn::VarnFileSectionKind kind, pybind11::handle text,
                       std::string_view characters, pybind11::handle function);

  std::shared_ptr<PackagedFiles> files_;
  pybind11::object defer_;
  int current_ = -1;
  // By file, one bit for each kind of section; as long as the last file that has any.
  std::vector<std::uint32_t> deferred_;
};

}  // namespace orv

#endif
